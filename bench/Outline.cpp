// The outlines of thirty bubbles, 360 vertices each. OpenGL only keeps the vertices, so that what
// is measured is the arithmetic.

#include "Job.h"

#include "Boid.h"
#include "LiteralBoid.h"
#include "NullGL.h"

#include <GL/gl.h>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr std::size_t BUBBLES = 30;
constexpr int POINTS = 360;

struct Point {
    float x, y;
};

std::vector<Point> vertices; ///< those of all glVertex2f since the last reset

using Bubbles = std::vector<std::unique_ptr<Boid>>;

void literalOutline(const Boid& bubble)
{
    literal::Boid<float> twin;
    twin.vel = {bubble.vel.x, bubble.vel.y, bubble.vel.z};
    twin.counter = bubble.counter;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(0.8f, 0.8f, 1.0f, 0.5f);
    glBegin(GL_LINE_LOOP);
    twin.outline([](float x, float y) { glVertex2f(x, y); });
    glEnd();
    glDisable(GL_BLEND);
}

/// The same calls with vertices that are there already.
void calls(const Boid& bubble)
{
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(0.8f, 0.8f, 1.0f, 0.5f);
    glBegin(GL_LINE_LOOP);
    for (int i = 0; i < POINTS; ++i) {
        glVertex2f(bubble.vel.x, bubble.vel.y);
    }
    glEnd();
    glDisable(GL_BLEND);
}

std::shared_ptr<Bubbles> newBubbles()
{
    auto bubbles = std::make_shared<Bubbles>();
    std::minstd_rand random(1);
    std::uniform_real_distribution<float> number(-7, 7);
    for (std::size_t i = 0; i < BUBBLES; ++i) {
        auto bubble = std::make_unique<Boid>();
        bubble->type = BOID_BUBBLE;
        bubble->vel = Vec3(number(random), number(random), 0);
        bubbles->push_back(std::move(bubble));
    }
    return bubbles;
}

template<typename Draw>
bench::Contender contender(const char* name, const std::shared_ptr<Bubbles>& bubbles, Draw draw)
{
    const auto reset = [bubbles] {
        vertices.clear();
        int phase = 0;
        for (const auto& bubble : *bubbles) {
            bubble->counter = phase += 2;
        }
    };
    const auto run = [bubbles, draw] {
        for (const auto& bubble : *bubbles) {
            draw(*bubble);
        }
    };
    return {name, run, reset, [=] {
                reset();
                run();
                return bench::hashOf(vertices.data(), vertices.size() * sizeof(Point));
            }};
}

bench::Job outlines()
{
    nullgl::hooks().vertex = [](float x, float y) { vertices.push_back({x, y}); };
    const auto bubbles = newBubbles();
    bench::Contender least = contender("lower bound", bubbles, calls);
    least.result = {};
    return {"30 bubble outlines",
            "outline",
            BUBBLES,
            {contender("kelpix", bubbles, [](Boid& bubble) { bubble.draw(); }),
             contender("reference", bubbles, literalOutline), least}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {outlines});
}

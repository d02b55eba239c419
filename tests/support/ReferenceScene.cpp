#include "ReferenceScene.h"

#include <GL/glew.h>

namespace reference {
namespace {

constexpr int CELLS = 10; // in a row, and in a column

/// Multiplies a transform into GL's modelview matrix for as long as it lives.
class Pushed {
public:
    explicit Pushed(const Mat& transform)
    {
        float elements[16];
        for (std::size_t i = 0; i < 16; ++i) {
            elements[i] = transform[i].value;
        }
        glPushMatrix();
        glMultMatrixf(elements);
    }
    Pushed(const Pushed&) = delete;
    Pushed& operator=(const Pushed&) = delete;
    ~Pushed() { glPopMatrix(); }
};

Mat read(GLenum what)
{
    float elements[16];
    glGetFloatv(what, elements);
    Mat m;
    for (std::size_t i = 0; i < 16; ++i) {
        m[i] = elements[i];
    }
    return m;
}

/// The planes of the view in the frame of the current modelview matrix.
Planes currentPlanes()
{
    return planesOf(read(GL_PROJECTION_MATRIX), read(GL_MODELVIEW_MATRIX));
}

int cut(Single coordinate)
{
    return static_cast<int>(coordinate.value);
}

} // namespace

void Cell::add(const Boid* boid)
{
    if (vacated.empty()) {
        slots.push_back(boid);
    } else {
        slots[static_cast<std::size_t>(vacated.back())] = boid;
        vacated.pop_back();
    }
}

void Cell::remove(int id)
{
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i] != nullptr && slots[i]->id == id) {
            slots[i] = nullptr;
            vacated.push_back(static_cast<int>(i));
        }
    }
}

Scene::Scene(unsigned seed, const Recording& recorded) : random(seed), recording(recorded)
{
    for (int id = 0; id < 100; ++id) {
        addFish(id);
    }
    for (int id = 0; id < 3; ++id) {
        children.emplace_back(std::make_unique<Sensor>(id, random));
    }
}

void Scene::addFish(int id)
{
    auto fish = std::make_unique<Boid>(random);
    const auto coordinate = [this] {
        const Single hundredths(random.next() % 90 / 100.0);
        return Single(hundredths.wide() + 0.1);
    };
    const Single y = coordinate();
    const Single x = coordinate();
    fish->translate({x, y, 0.0f});
    fish->scale(0.001f);
    fish->id = id;
    children.emplace_back(std::move(fish));
}

void Scene::emitBubble(Single x)
{
    auto bubble = std::make_unique<Boid>(random);
    bubble->translate({x, 0.01f, 0.0f});
    bubble->scale(0.001f);
    bubble->id = 10;
    bubble->bubble = true;
    children.emplace_back(std::move(bubble));
    ++emittedBubbles;
}

std::vector<Triple> Scene::sensorPositions() const
{
    std::vector<Triple> positions;
    for (const Child& child : children) {
        if (const auto* sensor = std::get_if<std::unique_ptr<Sensor>>(&child)) {
            positions.push_back((*sensor)->pos);
        }
    }
    return positions;
}

void Scene::update(int step)
{
    for (Child& child : children) {
        if (auto* boid = std::get_if<std::unique_ptr<Boid>>(&child)) {
            update(**boid);
        } else {
            Sensor& sensor = *std::get<std::unique_ptr<Sensor>>(child);
            auto& series = recording[static_cast<std::size_t>(sensor.id)];
            sensor.update(series.at(static_cast<std::size_t>(step)));
        }
    }
}

Cell* Scene::cellAt(Single x, Single y)
{
    const Single edge(CELLS);
    if (!(x >= 0.0f && edge >= x && y >= 0.0f && edge >= y)) {
        return nullptr;
    }
    const auto i = static_cast<std::size_t>(CELLS * cut(y) + cut(x));
    return i < cells.size() ? &cells[i] : nullptr;
}

void Scene::update(Boid& boid)
{
    boid.pos = boid.place();
    Cell* const now = cellAt(boid.pos.x * 10.0f, boid.pos.y * 10.0f);
    if (!boid.outOfBound && (now == nullptr || now != boid.cell)) {
        if (boid.cell != nullptr) {
            boid.cell->remove(boid.id);
        }
        boid.cell = now;
        if (now != nullptr) {
            now->add(&boid);
        } else {
            boid.outOfBound = true;
        }
    }
    if (boid.cell == nullptr) {
        boid.alive = false;
        return;
    }
    boid.move(neighboursOf(boid), sensorPositions(), random);
}

std::vector<const Boid*> Scene::neighboursOf(const Boid& boid) const
{
    const Single x = boid.pos.x * 10.0f;
    const Single y = boid.pos.y * 10.0f;
    const auto from = [](Single low) { return cut(low) < 0 ? 0 : cut(low); };
    const auto to = [](Single high) { return cut(high) > CELLS ? CELLS : cut(high); };
    std::vector<const Boid*> found;
    for (int column = from(x - 1.0f); column < to(x + 1.5f); ++column) {
        for (int row = from(y - 1.0f); row < to(y + 1.5f); ++row) {
            for (const Boid* other : cells[static_cast<std::size_t>(CELLS * row + column)].slots) {
                if (other != nullptr && other->id != boid.id &&
                    Single(0.1f) >= distance(other->pos, boid.pos)) {
                    found.push_back(other);
                }
            }
        }
    }
    return found;
}

void Scene::draw()
{
    glMatrixMode(GL_MODELVIEW);
    visibleNodes = 2; // root and pivot are never culled
    culledBoids = 0;
    reapedBoids = 0;
    emittedBubbles = 0;
    const Pushed inRoot(root);
    const Pushed inPivot(pivot);
    const Pushed inWorld(world);
    if (boxIsInView(currentPlanes(), {0.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 0.0f})) {
        drawWorld();
    }
}

void Scene::drawWorld()
{
    ++visibleNodes;
    if (sinceEmission > 14) {
        emitBubble(0.5f);
        emitBubble(0.8f);
        emitBubble(0.2f);
        sinceEmission = 0;
    }
    ++sinceEmission;

    for (auto child = children.begin(); child != children.end();) {
        if (auto* boid = std::get_if<std::unique_ptr<Boid>>(&*child)) {
            if (!(*boid)->alive) {
                child = children.erase(child);
                ++reapedBoids;
                continue;
            }
            if (draw(**boid)) {
                visibleNodes += 2; // the boid and its sprite
            } else {
                ++culledBoids;
            }
        } else {
            std::get<std::unique_ptr<Sensor>>(*child)->rep.draw(random);
            visibleNodes += 2; // the sensor and its body
        }
        ++child;
    }
}

bool Scene::draw(Boid& boid)
{
    const Pushed inBoid(boid.transform);
    if (!pointIsInside(currentPlanes(), {0.0f, 0.0f, 0.0f})) {
        return false;
    }
    if (boid.bubble) {
        boid.advanceOutline();
    }
    return true;
}

} // namespace reference

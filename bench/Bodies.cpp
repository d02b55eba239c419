// Making the display lists of the three figures' bodies, which the first frame waits for.

#include <GL/glew.h>

#include "Child.h"
#include "Context.h"
#include "Job.h"
#include "ReadyBody.h"

#include "SensorRep.h"

#include <array>
#include <cstdlib>
#include <memory>

namespace {

using bench::ReadyBody;

constexpr std::size_t FIGURES = 3;
double evaluations = 0; // of trigonometric functions, by the project's code

} // namespace

// The linker sends the project's calls here.
extern "C" {
double __real_sin(double);
double __real_cos(double);
void __real_sincos(double, double*, double*);

double __wrap_sin(double x)
{
    ++evaluations;
    return __real_sin(x);
}

double __wrap_cos(double x)
{
    ++evaluations;
    return __real_cos(x);
}

void __wrap_sincos(double x, double* sine, double* cosine)
{
    evaluations += 2;
    __real_sincos(x, sine, cosine);
}
}

namespace {

/// The first display list of each body.
using Bodies = std::array<unsigned, FIGURES>;

Bodies makeOwn()
{
    Bodies bodies;
    for (unsigned& first : bodies) {
        auto* rep = new SensorRep; // lives as long as its process
        rep->genBaseAnim();
        first = rep->baseAnim[0];
    }
    return bodies;
}

Bodies makeReady(const ReadyBody& body)
{
    Bodies bodies;
    for (unsigned& first : bodies) {
        first = body.compile();
    }
    return bodies;
}

/// Hashes what a few frames of each body draw.
double hashOf(const Bodies& bodies)
{
    std::vector<float> buffer(std::size_t{1} << 20);
    std::uint64_t hash = 0;
    for (const unsigned first : bodies) {
        for (const unsigned frame : {1u, 119u, 239u}) {
            glFeedbackBuffer(static_cast<GLsizei>(buffer.size()), GL_3D_COLOR_TEXTURE,
                             buffer.data());
            glRenderMode(GL_FEEDBACK);
            glCallList(first + frame);
            const GLint used = glRenderMode(GL_RENDER);
            hash = bench::hashOf(&used, sizeof used, hash);
            hash =
                bench::hashOf(buffer.data(), static_cast<std::size_t>(used) * sizeof(float), hash);
        }
    }
    return static_cast<double>(hash >> 12);
}

/// Makes the bodies in a new process each time, where nothing is left of those before.
template<typename Make>
bench::Contender inTime(const char* name, Make make)
{
    return {.name = name,
            .result =
                [make] {
                    return static_cast<std::uint64_t>(bench::inChild([make] {
                        bench::makeContext();
                        return hashOf(make());
                    }));
                },
            .measure =
                [make] {
                    return bench::inChild([make] {
                        bench::makeContext();
                        const double start = bench::threadClock();
                        make();
                        return bench::threadClock() - start;
                    });
                }};
}

/// The peak of the memory of the whole process.
template<typename Make>
bench::Contender inMemory(const char* name, Make make)
{
    return {.name = name, .measure = [make] {
                return bench::inChild([make] {
                    bench::makeContext();
                    make();
                    return bench::peakMemory();
                });
            }};
}

bench::Job makingTime()
{
    const auto body = std::make_shared<const ReadyBody>(ReadyBody::compute());
    return {
        "bodies of the figures",
        "list",
        FIGURES * ReadyBody::FRAMES,
        {inTime("kelpix", makeOwn), inTime("lower bound", [body] { return makeReady(*body); })}};
}

bench::Job makingMemory()
{
    const auto body = std::make_shared<const ReadyBody>(ReadyBody::compute());
    return {
        "bodies of the figures, memory",
        "start",
        1,
        {inMemory("kelpix", makeOwn), inMemory("lower bound", [body] { return makeReady(*body); })},
        "bytes"};
}

/// How many deformations of a point all calls of trigonometric functions amount to, without the
/// calls for the sphere and for the segments' scales. It is less than the number of points: the
/// compiler takes what depends on the frame alone out of the loops.
double deformations()
{
    return bench::inChild([] {
        SensorRep rep;
        evaluations = 0;
        rep.get_mod_p(0, 1, 0, 1);
        const double each = evaluations;

        evaluations = 0;
        for (int i = 0; i < ReadyBody::ROWS; ++i) {
            for (int j = 0; j < ReadyBody::COLUMNS; ++j) {
                rep.get_p(i, j);
            }
        }
        const double sphere = evaluations;
        const double scales = 2.0 * ReadyBody::FRAMES * ReadyBody::SEGMENTS;

        bench::makeContext();
        evaluations = 0;
        makeOwn();
        return (evaluations - FIGURES * (sphere + scales)) / each;
    });
}

bench::Job pointsDeformed()
{
    return {"bodies of the figures, points deformed",
            "start",
            1,
            {{.name = "kelpix", .measure = deformations}},
            "points"};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {makingTime, makingMemory, pointsDeformed});
}

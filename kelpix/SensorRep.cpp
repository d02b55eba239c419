#include "SensorRep.h"

#include <GL/glew.h>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int GRID = 16; // rings and sectors of the body
constexpr int SEGMENTS = 6;
constexpr int FRAMES = 240;
constexpr std::size_t TENTACLE_POINTS = 24;

/// Degrees to radians: a product in single precision, widened for functions of double precision.
double radians(float degrees)
{
    return static_cast<double>(DEG2RAD * degrees);
}

/// Fixed behavior: the angles of the body are not reduced to one turn. Without a truncation this
/// formula leaves only a rounding residue near 0. Pinned by
/// SensorRepTest.EveryPointOfEveryFrameIsTheReferencesToTheBit; do not correct.
float wrapResidue(float angle)
{
    return angle + (angle / 360) * -360;
}

/// The corners of the deformed grid. The last column repeats the first, one turn later; its values
/// differ in their last bits.
using Grid = std::array<std::array<Vec3, GRID + 1>, GRID>;

void emitQuad(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d)
{
    glBegin(GL_POLYGON);
    glTexCoord2f(0, 0);
    glVertex3f(a.x, a.y, a.z);
    glTexCoord2f(1, 0);
    glVertex3f(b.x, b.y, b.z);
    glTexCoord2f(1, 1);
    glVertex3f(c.x, c.y, c.z);
    glTexCoord2f(0, 1);
    glVertex3f(d.x, d.y, d.z);
    glEnd();
}

/// Emits the quads of a body.
///
/// Fixed behavior: the band next to the bottom pole of a body is left open. Pinned by
/// SensorRepDrawTest.TheFirstCullCompilesTheBody; do not correct.
void emitBody(const Grid& grid)
{
    for (std::size_t i = 1; i < GRID; ++i) {
        for (std::size_t j = 0; j < GRID; ++j) {
            emitQuad(grid[i][j], grid[i][j + 1], grid[i - 1][j + 1], grid[i - 1][j]);
        }
    }
}

/// Places and scales segment \p k of frame \p f.
///
/// Fixed behavior: the first segment of a body is flat, its z scale is 0. Pinned by
/// SensorRepDrawTest.TheFirstCullCompilesTheBody; do not correct.
void transformSegment(int f, int k)
{
    const float a = static_cast<float>(0.2 * k);
    const double g = radians(static_cast<float>(f) * 1.5f);
    const float sA = static_cast<float>(1 + std::fabs(std::sin(g)));
    const float cA = static_cast<float>(1.5 + std::fabs(std::cos(g)));
    const float kk = 1 / (a * 10 + 1);

    const double da = static_cast<double>(a);
    const double dk = static_cast<double>(kk);
    glTranslatef(0, static_cast<float>(0.3 * -da), 0);
    glScalef(static_cast<float>(dk * (static_cast<double>(sA) * 0.15000000000000002)),
             static_cast<float>((1 + da * 10) * (static_cast<double>(cA) * 0.03 * dk)),
             static_cast<float>(da * (dk * 0.1)));
}

void blendOver()
{
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

/// Draws one tentacle, from the newest point to the oldest: each point is lower, farther out and
/// swings wider than the one before it.
/// \param side  offset to the right, world units
/// \param dy    how much lower each point hangs than the one before it
void drawTentacle(const std::list<Vertex*>& points, const std::list<float>& wave, float side,
                  float dy)
{
    float drop = 0;
    float grow = 1;
    float amp = 0;
    auto swing = wave.begin();
    glBegin(GL_LINE_STRIP);
    for (const Vertex* v : points) {
        glVertex2f(v->x * grow + (*swing * amp + side), v->y * grow - drop);
        drop += dy;
        grow = 1.025f * grow;
        amp += 0.05f;
        ++swing;
    }
    glEnd();
}

} // namespace

SensorRep::~SensorRep()
{
    for (const Vertex* point : tentacle) {
        delete point;
    }
    delete[] baseAnim;
}

void SensorRep::initialize()
{
    sensorGeom = glGenLists(1);
    glNewList(sensorGeom, GL_COMPILE);
    emitQuad({-0.01f, -0.01f, 0}, {0.01f, -0.01f, 0}, {0.01f, 0.01f, 0}, {-0.01f, 0.01f, 0});
    glEndList();

    genBaseAnim();
    endInitialization();
}

void SensorRep::initializeWith(unsigned square, const unsigned* frames)
{
    sensorGeom = square;
    baseAnimFrames = FRAMES;
    baseAnim = new unsigned[FRAMES];
    std::copy_n(frames, FRAMES, baseAnim);
    for (int f = 0; f < FRAMES; ++f) {
        std::rand(); // as genBaseAnim does
    }
    counter = std::rand() % FRAMES;
    endInitialization();
}

void SensorRep::endInitialization()
{
    // Fixed behavior: the formula of pre_angle leaves only a rounding residue of the random number.
    // Pinned by SensorRepDrawTest.TheFirstCullCompilesTheBody; do not correct.
    const auto r = static_cast<float>(std::rand());
    pre_angle = -360 * (r / 360) + r;
    initialized = true;
}

void SensorRep::genBaseAnim()
{
    baseAnimFrames = FRAMES;
    std::printf("-- Generate %d frames of base animation.\n", baseAnimFrames);
    baseAnim = new unsigned[FRAMES];
    const unsigned first = glGenLists(FRAMES);

    Grid sphere;
    for (std::size_t i = 0; i < GRID; ++i) {
        for (std::size_t j = 0; j <= GRID; ++j) {
            sphere[i][j] = get_p(static_cast<int>(i), static_cast<int>(j));
        }
    }
    Grid body;
    for (int f = 0; f < FRAMES; ++f) {
        for (std::size_t i = 0; i < GRID; ++i) {
            for (std::size_t j = 0; j <= GRID; ++j) {
                const Vec3& p = sphere[i][j];
                body[i][j] = get_mod_p(p.x, p.y, p.z, f);
            }
        }
        baseAnim[f] = first + static_cast<unsigned>(f);
        glNewList(baseAnim[f], GL_COMPILE);
        glPushMatrix();
        // Fixed behavior: a random number is drawn for each frame of a body and not used; the
        // numbers after it depend on it. Pinned by SensorRepDrawTest.TheFirstCullCompilesTheBody,
        // StateHashTest.IsPinnedAtFrame400; do not correct.
        std::rand();
        for (int k = 0; k < SEGMENTS; ++k) {
            glPushMatrix();
            transformSegment(f, k);
            emitBody(body);
            glPopMatrix();
        }
        glPopMatrix();
        glEndList();
    }
    counter = std::rand() % FRAMES; // sensors pulse out of phase
}

Vec3 SensorRep::get_p(int i, int j)
{
    const double theta = radians(static_cast<float>(i) * 180 / GRID);
    const double phi = radians(static_cast<float>(j) * 360 / GRID);
    return {static_cast<float>(std::cos(phi) * std::sin(theta)),
            static_cast<float>(std::cos(theta)),
            static_cast<float>(std::sin(phi) * std::sin(theta))};
}

Vec3 SensorRep::get_mod_p(float x, float y, float z, int frame)
{
    const double t = frame;
    const auto T = static_cast<float>(frame);
    const float a0 = wrapResidue(T);
    const float a1 = a0 + static_cast<float>(1.5 + std::sin(radians(a0)) * 0.5 * t);
    const float q = 360 / T;
    const double dq = static_cast<double>(q);
    const float e = wrapResidue(a1);
    const float c1 = wrapResidue(static_cast<float>(1.4 * t + dq));
    const float c2 = wrapResidue(static_cast<float>(2.16 * t + dq));
    const float c3 = wrapResidue(static_cast<float>(0.79 * t + dq));

    // Fixed behavior: the angles of the ripples and of the height are used as radians, without a
    // conversion from degrees; only the one in s below is converted. Pinned by
    // SensorRepTest.ThePoleOfAFrameWorkedOutByHand,
    // SensorRepTest.EveryPointOfEveryFrameIsTheReferencesToTheBit; do not correct.
    const auto cosine = [](float angle) { return std::cos(static_cast<double>(angle)); };
    const auto sine = [](float angle) { return std::sin(static_cast<double>(angle)); };
    const double ripple = static_cast<double>(0.08f);
    const double dy = static_cast<double>(y);
    const float u = 590 * (y + x);
    const float w = 190 * (y + z);
    const auto dz =
        static_cast<float>(dy * (cosine(c1 + u) * ripple * cosine(c2 + u) * cosine(c3 + u)));
    const auto dx =
        static_cast<float>(dy * (sine(c1 + w) * ripple * cosine(c2 + w) * cosine(c3 + w)));

    const float m = std::fabs(y);
    const double dm = static_cast<double>(m);
    const double h = cosine(e) * 0.5 / (0.3 + dm);
    const auto r = static_cast<float>(std::sqrt(static_cast<double>(y * y + x * x)) + h);
    auto s = static_cast<float>((std::sin(radians(140 * y - e)) + 2.5) * 0.3 / (1.3 + dm));
    if (y < 0) {
        s += static_cast<float>(dm * (dm * 0.1));
    }
    return {s * x + dx, 0.4f * ((1.4f + r) * y), s * z + dz};
}

void SensorRep::doupdate()
{
    const double rad = static_cast<double>(DEG2RAD * degree);
    if (tentacle.size() == TENTACLE_POINTS) {
        delete tentacle.back();
        tentacle.pop_back();
        cos_curve.pop_back();
        sin_curve.pop_back();
    }
    const double vx = static_cast<double>(vel->x);
    const double vy = static_cast<double>(vel->y);
    tentacle.push_front(new Vertex{static_cast<float>(-0.2 * vx), static_cast<float>(-0.05 * vy)});
    cos_curve.push_front(static_cast<float>(0.025 * std::cos(rad)));
    sin_curve.push_front(static_cast<float>(0.025 * std::sin(rad)));

    if (vy > 0) {
        const double stroke = 2000 * std::sqrt(vy * vy + 0.5 * (vx * vx));
        degree = static_cast<float>(stroke + static_cast<double>(degree));
    } else {
        degree += 7.5f;
    }
    // Fixed behavior: at 360 degrees and beyond the wave of the tentacles starts again at 0; it
    // is not reduced by whole turns. Pinned by SensorRepTest.RisingItAdvancesWithTheSpeed; do
    // not correct.
    if (!(degree < 360)) { // true for NaN, which a recording can bring
        degree = 0;
    }
}

int SensorRep::cull()
{
    if (!initialized) {
        initialize();
    }
    draw();
    return 1;
}

void SensorRep::draw()
{
    glColor4f(0.5f, 0.5f, 1.0f, 0.5f);
    blendOver();

    // Fixed behavior: frame 1 of a body is drawn in place of frame 0, whose points are not finite.
    // Pinned by SensorRepDrawTest.FrameOneStandsInForFrameZero; do not correct.
    const int frame = counter % baseAnimFrames;
    glPushMatrix();
    glScalef(0.3f, 0.3f, 0.3f);
    glCallList(baseAnim[frame == 0 ? 1 : frame]);
    glPopMatrix();
    counter = (counter + 1) % baseAnimFrames;

    glDisable(GL_BLEND);
    blendOver();
    glLineWidth(3.0f);
    const float dy = 0.005f + vel->y * 0.05f;
    drawTentacle(tentacle, cos_curve, 0, dy);
    drawTentacle(tentacle, sin_curve, 0.025f, dy);
    drawTentacle(tentacle, sin_curve, -0.025f, dy);
    glLineWidth(1.0f);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisable(GL_BLEND);
}

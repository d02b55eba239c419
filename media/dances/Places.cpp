#include "Places.h"

namespace media {

namespace {

constexpr std::size_t VERSES = 2;

using Places = std::array<Point, FIGURES>;

/// The places after each phrase of two verses, on a stage of -1 .. 1 in both directions. A school
/// of fish follows each figure: where two figures meet their schools merge, where they part the
/// schools are torn apart or stretch between them. After the fourth phrase all three meet.
constexpr std::array<Places, VERSES* PHRASES_PER_VERSE> PLACES = {{
    // clang-format off
    {{{ 0.55f, -0.10f}, { 0.00f,  0.45f}, {-0.55f, -0.15f}}}, // rise from below, side by side
    {{{ 0.65f,  0.75f}, { 0.45f,  0.60f}, {-0.80f,  0.20f}}}, // two meet, one goes alone
    {{{ 0.70f, -0.30f}, { 0.00f,  0.80f}, {-0.40f, -0.50f}}}, // they part
    {{{ 0.12f,  0.05f}, { 0.00f,  0.20f}, {-0.10f, -0.02f}}}, // all meet
    {{{ 0.90f,  0.50f}, { 0.05f, -0.75f}, {-0.90f,  0.58f}}}, // and burst apart
    {{{ 0.35f, -0.65f}, {-0.70f, -0.20f}, {-0.20f,  0.80f}}}, // a wheel
    {{{ 0.92f,  0.00f}, {-0.65f,  0.50f}, {-0.52f,  0.65f}}}, // two meet on the other side
    {{{ 0.35f,  0.60f}, {-0.15f, -0.50f}, {-0.90f, -0.20f}}}, // a line across the stage

    {{{ 0.70f,  0.45f}, {-0.40f,  0.00f}, {-0.90f,  0.00f}}}, // sweep to the left
    {{{ 0.20f,  0.80f}, {-0.65f, -0.55f}, {-0.74f, -0.36f}}}, // two meet below
    {{{-0.35f,  0.70f}, { 0.10f, -0.15f}, {-0.85f,  0.40f}}}, // one flies across above
    {{{ 0.05f,  0.55f}, {-0.08f,  0.40f}, {-0.20f,  0.58f}}}, // all meet near the light
    {{{ 0.80f, -0.10f}, { 0.05f, -0.70f}, {-0.88f, -0.30f}}}, // and fall like a fountain
    {{{ 0.62f,  0.50f}, { 0.75f,  0.35f}, {-0.35f,  0.25f}}}, // two meet
    {{{ 0.15f, -0.55f}, { 0.92f, -0.20f}, {-0.80f,  0.75f}}}, // and part again
    {{{-0.40f, -0.10f}, { 0.45f,  0.65f}, {-0.65f, -0.30f}}}, // cross below each other
    // clang-format on
}};

constexpr Places FAREWELL_PLACES = {{{0.14f, 0.05f}, {0.0f, 0.20f}, {-0.14f, 0.05f}}};
constexpr Places LATE_FAREWELL_PLACES = {{{0.31f, 0.29f}, {0.0f, 0.73f}, {-0.31f, 0.29f}}};

/// Fish turn round below this height.
constexpr float CEILING = 0.95f;

/// Then the schools sink fastest.
constexpr double LATE_BEATS = 7.6;

Point on(const Region& stage, Point place)
{
    return {mix(stage.left, stage.right, (1 + place.x) / 2),
            mix(stage.bottom, stage.top, (1 + place.y) / 2)};
}

Places on(const Region& stage, const Places& places)
{
    Places result;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        result[k] = on(stage, places[k]);
    }
    return result;
}

/// The same places in a mirror: left and right, and with them the outer figures, change places.
Places mirrored(const Places& places)
{
    Places result;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        const Point p = places[FIGURES - 1 - k];
        result[k] = {-p.x, p.y};
    }
    return result;
}

} // namespace

Region stageIn(const Region& view)
{
    // A body is 0.09 wide and 0.05 high; tentacles of 0.15 hang from it.
    constexpr float SIDE = 0.07f;
    constexpr float ABOVE = 0.05f;
    constexpr float BELOW = 0.17f;
    return {view.left + SIDE, view.right - SIDE, view.bottom + BELOW, view.top - ABOVE};
}

Places placesAfter(std::size_t phrase, const Region& stage)
{
    // Each verse is followed by itself in a mirror, then by the other one.
    const std::size_t verse = phrase / PHRASES_PER_VERSE;
    const Places& places =
        PLACES[verse / 2 % VERSES * PHRASES_PER_VERSE + phrase % PHRASES_PER_VERSE];
    return on(stage, verse % 2 == 1 ? mirrored(places) : places);
}

Ending endingIn(const Region& view)
{
    const Region stage = stageIn(view);
    if (view.top < CEILING) {
        return {on(stage, LATE_FAREWELL_PLACES), FAREWELL.size(), LATE_BEATS};
    }
    double beats = 0;
    for (std::size_t i = 0; i < LAST_BREATH; ++i) {
        beats += FAREWELL[i].beats;
    }
    return {on(stage, FAREWELL_PLACES), LAST_BREATH, beats};
}

} // namespace media

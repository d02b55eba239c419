#pragma once

#include "LiteralMath.h"
#include "ReferenceRandom.h"

#include <list>
#include <memory>
#include <vector>

/// One sensor, its body and its tentacles.
namespace literal {

/// The tentacles' points and wave, newest first, and the state of the body.
template<typename N>
struct Tentacles {
    static constexpr int BODY_FRAMES = 240;

    std::list<std::unique_ptr<Triple<N>>> points;
    std::list<N> cosines; ///< one for each point, and so the sines
    std::list<N> sines;
    N degree{};
    bool initialized = false;
    int counter = 0;
    N preAngle{};
    Mat<N> transform = identity<N>();

    void update(const Triple<N>& sensorVelocity);

    /// The first draw: draws the random numbers of the body. Each draw: moves on by one frame.
    /// \return the frame that is drawn
    int draw(ReferenceRandom& random);

    /// The points of the three strips as they are drawn.
    using Strip = std::vector<std::array<N, 2>>;
    std::array<Strip, 3> strips(const Triple<N>& sensorVelocity) const;
};

template<typename N>
struct Sensor {
    int id = 0;
    Triple<N> pos, oldPos, vel, orientation;
    N currentTilt{};
    Mat<N> transform = identity<N>();
    Tentacles<N> rep;

    Sensor() = default;

    /// Draws the two random numbers of a new sensor.
    Sensor(int sensorId, ReferenceRandom& random);

    /// Moves to \p recorded, which shrinks.
    void update(Triple<N>& recorded);

private:
    void tilt(N degrees);
};

template<typename N>
void Tentacles<N>::update(const Triple<N>& sensorVelocity)
{
    const double radians = wide(RADIANS * degree);
    const double vx = wide(sensorVelocity.x);
    const double vy = wide(sensorVelocity.y);
    if (points.size() == 24) {
        points.pop_back();
        cosines.pop_back();
        sines.pop_back();
    }
    points.push_front(std::make_unique<Triple<N>>(
        Triple<N>{static_cast<N>(-0.2 * vx), static_cast<N>(-0.05 * vy), 0.0f}));
    cosines.push_front(static_cast<N>(0.025 * std::cos(radians)));
    sines.push_front(static_cast<N>(0.025 * std::sin(radians)));
    if (vy > 0) {
        degree = static_cast<N>(2000 * std::sqrt(vy * vy + 0.5 * (vx * vx)) + wide(degree));
    } else {
        degree = degree + 7.5f;
    }
    if (degree >= 360.0f) {
        degree = 0.0f;
    }
}

template<typename N>
int Tentacles<N>::draw(ReferenceRandom& random)
{
    if (!initialized) {
        for (int frame = 0; frame < BODY_FRAMES; ++frame) {
            random.next();
        }
        counter = random.next() % BODY_FRAMES;
        const N r = static_cast<N>(random.next());
        preAngle = -360.0f * (r / 360.0f) + r;
        initialized = true;
    }
    const int frame = counter % BODY_FRAMES == 0 ? 1 : counter % BODY_FRAMES;
    counter = (counter + 1) % BODY_FRAMES;
    return frame;
}

template<typename N>
std::array<typename Tentacles<N>::Strip, 3>
Tentacles<N>::strips(const Triple<N>& sensorVelocity) const
{
    std::array<Strip, 3> all;
    for (std::size_t strip = 0; strip < 3; ++strip) {
        N drop{};
        N grow = 1.0f;
        N amp{};
        const N dy = 0.005f + sensorVelocity.y * 0.05f;
        auto swing = strip == 0 ? cosines.begin() : sines.begin();
        for (const auto& point : points) {
            const N wave = *swing++ * amp;
            N beside = wave;
            if (strip == 1) {
                beside = wave + 0.025f;
            } else if (strip == 2) {
                beside = wave - 0.025f;
            }
            all[strip].push_back({point->x * grow + beside, point->y * grow - drop});
            drop = drop + dy;
            grow = 1.025f * grow;
            amp = amp + 0.05f;
        }
    }
    return all;
}

template<typename N>
Sensor<N>::Sensor(int sensorId, ReferenceRandom& random) : id(sensorId)
{
    const int a = random.next();
    const int b = random.next();
    vel = {static_cast<N>(a % 100 - 50) / 10000.0f, static_cast<N>(b % 100 - 50) / 10000.0f, 0.0f};
    orientation = {0.0f, 1.0f, 0.0f};
}

template<typename N>
void Sensor<N>::update(Triple<N>& recorded)
{
    recorded = recorded * 0.45f;
    const N previousX = transform[12];
    const N previousY = transform[13];
    transform[12] = recorded.x;
    transform[13] = recorded.y;
    transform[14] = 0.0f;
    if (id == 0) {
        transform[12] = static_cast<N>(wide(transform[12]) + 0.05);
    }
    if (id == 2) {
        transform[12] = static_cast<N>(wide(transform[12]) - 0.05);
    }
    transform[13] = static_cast<N>(wide(transform[13]) - 0.1);
    transform[12] = static_cast<N>(wide(transform[12]) + 0.55);
    pos = {transform[12], transform[13], transform[14]};

    vel = {pos.x - oldPos.x, pos.y - oldPos.y, 0.0f};
    const auto bound = [](N& speed, N& place, N previous) {
        if (speed > 0.15f) {
            place = previous;
            speed = 0.15f;
        } else if (speed < -0.15f) {
            place = previous;
            speed = -0.15f;
        }
    };
    bound(vel.x, transform[12], previousX);
    bound(vel.y, transform[13], previousY);
    oldPos = pos;

    if (vel.x < 0.0f && currentTilt <= 35.0f) {
        tilt(5.0f);
    } else if (vel.x > 0.0f && currentTilt >= -35.0f) {
        tilt(-5.0f);
    }
}

template<typename N>
void Sensor<N>::tilt(N degrees)
{
    rep.transform = product(rep.transform, rotationAboutZ(degrees));
    currentTilt = currentTilt + degrees;
}

} // namespace literal

#include "ReferenceSensor.h"

#include "ReferenceBody.h"

namespace reference {

void Tentacles::update(const Triple& sensorVelocity)
{
    const double radians = (RADIANS * degree).wide();
    const double vx = sensorVelocity.x.wide();
    const double vy = sensorVelocity.y.wide();
    if (points.size() == 24) {
        points.pop_back();
    }
    points.push_front({Single(-0.2 * vx), Single(-0.05 * vy), Single(0.025 * std::cos(radians)),
                       Single(0.025 * std::sin(radians))});
    if (vy > 0) {
        degree = Single(2000 * std::sqrt(vy * vy + 0.5 * (vx * vx)) + degree.wide());
    } else {
        degree = degree + 7.5f;
    }
    if (degree >= 360.0f) {
        degree = 0.0f;
    }
}

int Tentacles::draw(ReferenceRandom& random)
{
    if (!initialized) {
        for (int frame = 0; frame < BODY_FRAMES; ++frame) {
            random.next();
        }
        counter = random.next() % BODY_FRAMES;
        const Single r(random.next());
        preAngle = Single(-360.0f) * (r / 360.0f) + r;
        initialized = true;
    }
    const int frame = counter % BODY_FRAMES == 0 ? 1 : counter % BODY_FRAMES;
    counter = (counter + 1) % BODY_FRAMES;
    return frame;
}

std::array<Tentacles::Strip, 3> Tentacles::strips(const Triple& sensorVelocity) const
{
    std::array<Strip, 3> all;
    for (std::size_t strip = 0; strip < 3; ++strip) {
        Single drop = 0.0f;
        Single grow = 1.0f;
        Single amp = 0.0f;
        const Single dy = Single(0.005f) + sensorVelocity.y * 0.05f;
        for (const Point& v : points) {
            const Single wave = (strip == 0 ? v.cosine : v.sine) * amp;
            Single beside = wave;
            if (strip == 1) {
                beside = wave + 0.025f;
            } else if (strip == 2) {
                beside = wave - 0.025f;
            }
            all[strip].push_back({v.x * grow + beside, v.y * grow - drop});
            drop = drop + dy;
            grow = Single(1.025f) * grow;
            amp = amp + 0.05f;
        }
    }
    return all;
}

Sensor::Sensor(int sensorId, ReferenceRandom& random) : id(sensorId)
{
    const int a = random.next();
    const int b = random.next();
    vel = {Single(a % 100 - 50) / 10000.0f, Single(b % 100 - 50) / 10000.0f, 0.0f};
    orientation = {0.0f, 1.0f, 0.0f};
}

void Sensor::update(Triple& recorded)
{
    recorded = recorded * 0.45f;
    const Single previousX = transform[12];
    const Single previousY = transform[13];
    Single x = recorded.x;
    Single y = recorded.y;
    if (id == 0) {
        x = Single(x.wide() + 0.05);
    } else if (id == 2) {
        x = Single(x.wide() - 0.05);
    }
    y = Single(y.wide() - 0.1);
    x = Single(x.wide() + 0.55);
    transform[12] = x;
    transform[13] = y;
    transform[14] = 0.0f;
    pos = {x, y, 0.0f};

    vel = {pos.x - oldPos.x, pos.y - oldPos.y, 0.0f};
    const auto bound = [](Single& speed, Single& place, Single previous) {
        const Single most = 0.15f;
        if (speed > most || speed < -most) {
            place = previous;
            speed = speed > most ? most : -most;
        }
    };
    bound(vel.x, transform[12], previousX);
    bound(vel.y, transform[13], previousY);
    oldPos = pos;

    if (vel.x < 0.0f && Single(35.0f) >= currentTilt) {
        rep.transform = product(rep.transform, rotationAboutZ(5.0f));
        currentTilt = currentTilt + 5.0f;
    } else if (vel.x > 0.0f && currentTilt >= Single(-35.0f)) {
        rep.transform = product(rep.transform, rotationAboutZ(-5.0f));
        currentTilt = currentTilt - 5.0f;
    }
    rep.update(vel);
}

} // namespace reference

#include "RecordedPlace.h"

#include "MoCap.h"
#include "Sensor.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

/// Where a sensor puts itself that meets a record.
Vec3 sensorsPlace(const Vec3& record, int figure)
{
    MoCap recording;
    for (int k = 0; k <= figure; ++k) {
        auto* series = new SensorData;
        series->pos.push_back(new Vec3(record));
        recording.sensorDataList.push_back(series);
    }
    Sensor sensor;
    sensor.mocap = &recording;
    sensor.sensorId = figure;
    sensor.doupdate();
    return sensor.pos;
}

float beside(float number, float towards)
{
    return std::nextafter(number, towards * std::numeric_limits<float>::max());
}

} // namespace

TEST(RecordedPlaceTest, TheRecordOfAPlaceIsTheOneByHand)
{
    // (0.70 - 0.60) / 0.45 and (0.50 + 0.1) / 0.45.
    const Vec3 record = RecordedPlace::recordFor({0.70, 0.50}, 0, 5);
    EXPECT_NEAR(record.x, 0.22222222, 1e-6);
    EXPECT_NEAR(record.y, 1.33333333, 1e-6);
    EXPECT_EQ(record.z, 5);
}

TEST(RecordedPlaceTest, ASensorThatMeetsTheRecordIsAsNearToThePlaceAsItCanBe)
{
    for (int figure = 0; figure < 3; ++figure) {
        int exact = 0;
        int places = 0;
        for (int column = -8; column <= 72; ++column) {
            for (int row = -8; row <= 72; row += 5) {
                const Place place{column / 64.0 + 1e-3, row / 64.0 + 1e-3};
                const auto x = static_cast<float>(place.x);
                const auto y = static_cast<float>(place.y);
                const Vec3 record = RecordedPlace::recordFor(place, figure, 0);
                const Vec3 reached = sensorsPlace(record, figure);
                ++places;
                exact += reached.x == x && reached.y == y ? 1 : 0;
                // No record beside it leads nearer.
                for (const float towards : {-1.0F, 1.0F}) {
                    const Vec3 other = sensorsPlace(
                        {beside(record.x, towards), beside(record.y, towards), 0}, figure);
                    EXPECT_LE(std::abs(reached.x - x), std::abs(other.x - x));
                    EXPECT_LE(std::abs(reached.y - y), std::abs(other.y - y));
                }
                EXPECT_NEAR(reached.x, x, 6e-8);
                EXPECT_NEAR(reached.y, y, 6e-8);
            }
        }
        EXPECT_GT(exact, places / 3) << figure;
    }
}

TEST(RecordedPlaceTest, ThePlaceOfARecordIsTheSensors)
{
    for (int figure = 0; figure < 3; ++figure) {
        const Vec3 record(0.3F, -0.7F, 0.2F);
        const Vec3 place = RecordedPlace::placeOf(record, figure);
        const Vec3 expected = sensorsPlace(record, figure);
        EXPECT_EQ(place.x, expected.x);
        EXPECT_EQ(place.y, expected.y);
        EXPECT_EQ(place.z, 0);
    }
}

TEST(RecordedPlaceTest, PlacesFarAwayEndTheSearchToo)
{
    for (const double far : {1e30, -1e30, 3e38, 0.55, -0.1}) {
        const Vec3 record = RecordedPlace::recordFor({far, far}, 1, 0);
        EXPECT_FALSE(std::isnan(record.x)) << far;
        EXPECT_FALSE(std::isnan(record.y)) << far;
    }
}

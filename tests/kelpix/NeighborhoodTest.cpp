#include "Neighborhood.h"

#include "Boid.h"
#include "BucketIndex.h"
#include "FailingMemory.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <vector>

namespace {

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float FLOAT_INF = std::numeric_limits<float>::infinity();
constexpr double INF = std::numeric_limits<double>::infinity();

bool isWithin(double square, float radius)
{
    return radius >= static_cast<float>(std::sqrt(square));
}

/// Boids without sprites, in cells.
class NeighborhoodTest : public testing::Test {
protected:
    Boid* add(Bucket& cell, int id, const Vec3& pos, const Vec3& vel = {})
    {
        boids.push_back(std::make_unique<Boid>());
        Boid* const boid = boids.back().get();
        boid->setId(id);
        boid->pos = pos;
        boid->vel = vel;
        boid->myBucket = &cell;
        cell.add(boid);
        return boid;
    }

    /// Finds the neighbors in a run of its own.
    Neighborhood find(const std::vector<Bucket*>& cells, const Boid& boid,
                      float closeBy = FLOAT_INF)
    {
        return Neighborhood::inCells(cells, boid, closeBy, ++run);
    }

    std::uint64_t run = 0;

    std::vector<std::unique_ptr<Boid>> boids;
};

/// What inCells finds, the plain way: a list of all within reach, summed up, and then searched.
Neighborhood plainly(const std::vector<Bucket*>& cells, const Boid& boid)
{
    std::vector<Boid*> list;
    for (const Bucket* cell : cells) {
        for (Node* node : cell->boidList) {
            auto* const other = static_cast<Boid*>(node);
            if (other != nullptr && other->getId() != boid.getId() &&
                boid.searchRadius >= Vec3::EuclDistance(other->pos, boid.pos)) {
                list.push_back(other);
            }
        }
    }
    Neighborhood result;
    float least = 100000.0f;
    for (Boid* other : list) {
        ++result.count;
        result.pos = result.pos + other->pos;
        result.vel = result.vel + other->vel;
        const float distance = Vec3::EuclDistance(other->pos, boid.pos);
        if (least > distance) {
            least = distance;
            result.closest = other;
        }
    }
    return result;
}

bool isSame(const Vec3& a, const Vec3& b)
{
    const auto same = [](float p, float q) {
        return std::bit_cast<std::uint32_t>(p) == std::bit_cast<std::uint32_t>(q) ||
               (std::isnan(p) && std::isnan(q));
    };
    return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z);
}

TEST_F(NeighborhoodTest, TheReachOfATenthIsNeitherOfTheObviousSquares)
{
    EXPECT_EQ(std::bit_cast<std::uint64_t>(largestSquareWithin(0.1f)), 0x3f847ae16b851ec7);
}

TEST_F(NeighborhoodTest, TheLargestSquareIsWithinTheRadiusAndTheNextOneIsNot)
{
    for (const float radius : {0.0f, 1e-45f, 1e-20f, 0.03f, 0.1f, 0.25f, 0.3f, 1.0f, 7.0f, 2e19f,
                               std::numeric_limits<float>::max()}) {
        const double square = largestSquareWithin(radius);
        EXPECT_TRUE(isWithin(square, radius)) << radius;
        EXPECT_FALSE(isWithin(std::nextafter(square, INF), radius)) << radius;
    }
}

TEST_F(NeighborhoodTest, ABoidAtTheLargestSquareIsWithinReach)
{
    const Vec3 edge(0.1f, 2.72957514e-05f, 6.45239195e-09f);
    ASSERT_EQ(Vec3::SquaredDistance(edge, {}), largestSquareWithin(0.1f));
    Bucket cell;
    Boid* const boid = add(cell, 1, {});
    boid->searchRadius = 0.1f;
    Boid* const other = add(cell, 2, edge);
    EXPECT_EQ(find({&cell}, *boid).closest, other);
    other->pos.y = std::nextafter(edge.y, 1.0f);
    EXPECT_EQ(find({&cell}, *boid).count, 0);
}

TEST_F(NeighborhoodTest, AnInfiniteRadiusReachesEverything)
{
    EXPECT_EQ(largestSquareWithin(FLOAT_INF), INF);
}

TEST_F(NeighborhoodTest, NothingIsWithinARadiusBelowZeroOrOneThatIsNoNumber)
{
    EXPECT_EQ(largestSquareWithin(-1e-45f), -1);
    EXPECT_EQ(largestSquareWithin(-FLOAT_INF), -1);
    EXPECT_EQ(largestSquareWithin(std::numeric_limits<float>::quiet_NaN()), -1);
}

TEST_F(NeighborhoodTest, OfTwoSquaresWithTheSameRootTheEarlierIsTheClosest)
{
    const double square = 0.01;
    const double less = std::nextafter(square, 0.0);
    ASSERT_EQ(static_cast<float>(std::sqrt(square)), static_cast<float>(std::sqrt(less)));
    Closest closest;
    EXPECT_TRUE(closest.isNearer(square));
    EXPECT_FALSE(closest.isNearer(less));
    EXPECT_FALSE(closest.isNearer(square));
    EXPECT_EQ(closest.distance(), 0.1f);
    EXPECT_TRUE(closest.isNearer(0.009));
    EXPECT_FALSE(closest.isNearer(0.01));
}

TEST_F(NeighborhoodTest, NothingAtAHundredThousandOrBeyondIsClosest)
{
    Closest closest;
    EXPECT_FALSE(closest.isNearer(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(closest.isNearer(INF));
    EXPECT_FALSE(closest.isNearer(1e10));
    EXPECT_EQ(closest.distance(), 100000.0f);
    EXPECT_TRUE(closest.isNearer(0.999e10));
}

TEST_F(NeighborhoodTest, FindsWhatAListOfAllWithinReachHolds)
{
    std::minstd_rand random(1);
    const auto pick = [&random](int n) { return static_cast<int>(random() % unsigned(n)); };
    // Few places, so that many are equally far away, and some that are none.
    const auto place = [&pick] {
        const int at = pick(200);
        return at == 0   ? NOT_A_NUMBER
               : at == 1 ? FLOAT_INF
               : at == 2 ? 1e30f
                         : static_cast<float>(pick(33)) / 100.0f;
    };
    std::vector<Bucket> grid(9);
    std::vector<Bucket*> cells;
    for (Bucket& cell : grid) {
        cells.push_back(&cell);
        for (int i = pick(40); i > 0; --i) {
            add(cell, pick(20), Vec3(place(), place(), 0),
                Vec3(static_cast<float>(pick(1000)) / 300.0f, place(), -0.0f));
        }
        for (std::size_t i = 0; i < cell.boidList.size(); i += 3) {
            cell.boidList[i] = nullptr;
        }
    }
    const float radii[] = {0.1f, 0.03f, 0,         -0.0f,        -1,
                           1,    1e30f, FLOAT_INF, NOT_A_NUMBER, -FLOAT_INF};
    int found = 0;
    int close = 0;
    for (const auto& boid : boids) {
        boid->searchRadius = pick(2) == 0 ? 0.1f : radii[pick(10)];
        const float closeBy = pick(2) == 0 ? FLOAT_INF : radii[pick(10)];
        const Neighborhood neighbors = find(cells, *boid, closeBy);
        const Neighborhood expected = plainly(cells, *boid);
        ASSERT_EQ(neighbors.count, expected.count) << boid->searchRadius;
        if (expected.closest != nullptr &&
            Vec3::EuclDistance(expected.closest->pos, boid->pos) <= closeBy) {
            ASSERT_EQ(neighbors.closest, expected.closest) << boid->searchRadius;
            ++close;
        }
        ASSERT_TRUE(isSame(neighbors.pos, expected.pos)) << boid->searchRadius;
        ASSERT_TRUE(isSame(neighbors.vel, expected.vel)) << boid->searchRadius;
        found += neighbors.count;
    }
    EXPECT_GT(found, 1000);
    EXPECT_GT(close, 50);
}

TEST_F(NeighborhoodTest, FindsAllWhenMemoryHasEndedBefore)
{
    Bucket cell;
    std::vector<Bucket*> cells = {&cell};
    Boid* const boid = add(cell, 0, {0.5f, 0.5f, 0});
    boid->searchRadius = 0.1f;
    for (int i = 0; i < 20000; ++i) { // more than there has been room for
        add(cell, 1, {0.5f, 0.5f, 0});
    }
    {
        const FailingMemory memory(0, FailingMemory::ONCE);
        EXPECT_THROW(find(cells, *boid), std::bad_alloc);
    }
    EXPECT_EQ(find(cells, *boid).count, 20000);
}

/// What a search finds in the same run as one before, after changes by Bucket's own operations.
TEST_F(NeighborhoodTest, InARunACellKeepsUpWithItsBoids)
{
    Bucket cell;
    Boid* const boid = add(cell, 1, {0.5f, 0.5f, 0});
    Boid* const other = add(cell, 2, {0.52f, 0.5f, 0});
    boid->searchRadius = 0.1f;
    const auto found = [&] { return Neighborhood::inCells({&cell}, *boid, FLOAT_INF, 1); };
    EXPECT_EQ(found().closest, other);
    other->pos.x = 0.53f;
    other->vel.y = 2;
    EXPECT_EQ(found().pos.x, 0.52f) << "not copied again";
    cell.repack(*other);
    EXPECT_EQ(found().pos.x, 0.53f);
    EXPECT_EQ(found().vel.y, 2);
    Boid* third = nullptr;
    for (int id = 3; id < 20; ++id) {
        third = add(cell, id, {0.54f, 0.5f, 0});
        EXPECT_EQ(found().count, id - 1);
    }
    cell.remove(other);
    EXPECT_EQ(found().count, 17);
    cell.repack(*other);
    EXPECT_EQ(found().count, 17) << "it is no longer in the list";
    cell.forget(third);
    EXPECT_EQ(found().count, 16);
}

TEST_F(NeighborhoodTest, ACellWithBoidsThatAreNotItsOwnIsCopiedForEverySearch)
{
    const auto addStranger = [this](Bucket& cell, Boid* other) {
        other->myBucket = nullptr;
        return &cell;
    };
    const auto addTwice = [](Bucket& cell, Boid* other) {
        cell.boidList.push_back(other);
        return &cell;
    };
    const auto moveTo = [](Bucket& cell, Boid* other) {
        cell.boidList = {nullptr, cell.boidList.front(), other};
        return &cell;
    };
    const std::vector<std::function<Bucket*(Bucket&, Boid*)>> ways = {addStranger, addTwice,
                                                                      moveTo};
    for (const auto& change : ways) {
        Bucket cell;
        Boid* const boid = add(cell, 1, {0.5f, 0.5f, 0});
        Boid* const other = add(cell, 2, {0.52f, 0.5f, 0});
        boid->searchRadius = 0.1f;
        change(cell, other);
        EXPECT_EQ(find({&cell}, *boid).closest, other);
        other->vel.y = 2;
        EXPECT_GE(Neighborhood::inCells({&cell}, *boid, 1, run).vel.y, 2);
    }
}

} // namespace

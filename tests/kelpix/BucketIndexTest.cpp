#include "BucketIndex.h"

#include "Boid.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <limits>
#include <memory>
#include <new>
#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// A boid without a sprite, which is all that a cell looks at.
std::unique_ptr<Boid> boidWithId(int id)
{
    auto boid = std::make_unique<Boid>();
    boid->setId(id);
    return boid;
}

using Place = std::pair<int, int>; // column, row

std::vector<Place> placesOf(const std::vector<Bucket*>& cells)
{
    std::vector<Place> places;
    for (const Bucket* cell : cells) {
        places.emplace_back(cell->x(), cell->y());
    }
    return places;
}

class BucketIndexTest : public testing::Test {
protected:
    BucketIndexTest() { grid.initialize(10, 10, nullptr); }

    Place at(float x, float y)
    {
        const Bucket* const cell = grid.query(x, y);
        return cell ? Place(cell->x(), cell->y()) : Place(-1, -1);
    }

    std::vector<Place> within(float x0, float y0, float x1, float y1)
    {
        std::vector<Bucket*> cells;
        grid.query(&cells, x0, y0, x1, y1);
        return placesOf(cells);
    }

    BucketIndex grid;
};

TEST(BucketTest, AFreshCellIsEmptyAndKnowsItsPlace)
{
    Bucket cell(3, 7);
    EXPECT_EQ(cell.x(), 3);
    EXPECT_EQ(cell.y(), 7);
    EXPECT_EQ(cell.index[0], 3);
    EXPECT_EQ(cell.index[1], 7);
    EXPECT_THAT(*cell.getBoids(), IsEmpty());
    EXPECT_EQ(cell.nullboids.size(), 0);
    EXPECT_EQ(cell.getBoids(), &cell.boidList);
    Bucket unplaced;
    EXPECT_THAT(*unplaced.getBoids(), IsEmpty());
}

TEST(BucketTest, AddFillsAVacatedSlotBeforeItAppends)
{
    const auto p = boidWithId(1);
    const auto q = boidWithId(2);
    const auto r = boidWithId(3);
    const auto s = boidWithId(4);
    const auto t = boidWithId(5);
    Bucket cell(0, 0);
    cell.add(p.get());
    cell.add(q.get());
    cell.add(r.get());
    cell.remove(q.get());
    EXPECT_THAT(cell.boidList, ElementsAre(p.get(), nullptr, r.get()));
    cell.add(s.get());
    EXPECT_THAT(cell.boidList, ElementsAre(p.get(), s.get(), r.get()));
    EXPECT_EQ(s->slot, 1u);
    EXPECT_EQ(r->slot, 2u);
    EXPECT_EQ(cell.nullboids.size(), 0);
    cell.add(t.get());
    EXPECT_THAT(cell.boidList, ElementsAre(p.get(), s.get(), r.get(), t.get()));
}

TEST(BucketTest, ForgetVacatesTheSlotOfThatBoidAlone)
{
    const auto p = boidWithId(10);
    const auto q = boidWithId(10);
    const auto r = boidWithId(3);
    Bucket cell(0, 0);
    cell.add(p.get());
    cell.add(q.get());
    cell.forget(q.get());
    EXPECT_THAT(cell.boidList, ElementsAre(p.get(), nullptr));
    EXPECT_THAT(cell.nullboids.stack, ElementsAre(1));
    cell.add(r.get());
    EXPECT_THAT(cell.boidList, ElementsAre(p.get(), r.get()));
}

TEST(BucketTest, TheSlotVacatedLastIsFilledFirst)
{
    const auto p = boidWithId(1);
    const auto q = boidWithId(2);
    const auto r = boidWithId(3);
    Bucket cell(0, 0);
    cell.add(p.get());
    cell.add(q.get());
    cell.add(r.get());
    cell.remove(r.get());
    cell.remove(p.get());
    const auto s = boidWithId(4);
    cell.add(s.get());
    EXPECT_THAT(cell.boidList, ElementsAre(s.get(), q.get(), nullptr));
    EXPECT_THAT(cell.nullboids.stack, ElementsAre(2));
}

TEST(BucketTest, RemovingOneBubbleTakesAllBubblesAndFishTenOut)
{
    const auto fish9 = boidWithId(9);
    const auto fish10 = boidWithId(10);
    const auto bubble = boidWithId(10);
    const auto otherBubble = boidWithId(10);
    const auto notInThisCell = boidWithId(10);
    Bucket cell(0, 0);
    cell.add(bubble.get());
    cell.add(fish9.get());
    cell.add(fish10.get());
    cell.add(otherBubble.get());
    cell.remove(notInThisCell.get());
    EXPECT_THAT(cell.boidList, ElementsAre(nullptr, fish9.get(), nullptr, nullptr));
    EXPECT_THAT(cell.nullboids.stack, ElementsAre(3, 2, 0)) << "in ascending order, last on top";
    cell.add(fish10.get());
    EXPECT_THAT(cell.boidList, ElementsAre(nullptr, fish9.get(), nullptr, fish10.get()));
}

TEST(BucketTest, RemovingABoidThatIsNotThereChangesNothing)
{
    const auto p = boidWithId(1);
    const auto q = boidWithId(2);
    Bucket cell(0, 0);
    cell.remove(q.get());
    EXPECT_THAT(cell.boidList, IsEmpty());
    cell.add(p.get());
    cell.remove(q.get());
    EXPECT_THAT(cell.boidList, ElementsAre(p.get()));
    EXPECT_EQ(cell.nullboids.size(), 0);
    cell.remove(p.get());
    cell.remove(p.get());
    EXPECT_THAT(cell.boidList, ElementsAre(nullptr)) << "the list never shrinks";
    EXPECT_EQ(cell.nullboids.size(), 1) << "a slot is vacated once";
}

TEST(BucketTest, TheSameBoidCanBeInACellTwice)
{
    const auto p = boidWithId(1);
    Bucket cell(0, 0);
    cell.add(p.get());
    cell.add(p.get());
    EXPECT_THAT(cell.boidList, ElementsAre(p.get(), p.get()));
    cell.remove(p.get());
    EXPECT_THAT(cell.boidList, ElementsAre(nullptr, nullptr));
}

TEST_F(BucketIndexTest, CellsLieRowAfterRow)
{
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(grid.index[i]->x(), i % 10);
        EXPECT_EQ(grid.index[i]->y(), i / 10);
    }
    EXPECT_EQ(grid.getExtents(), grid.extents);
    EXPECT_THAT(grid.extents, ElementsAre(0, 0, 10, 10));
}

TEST_F(BucketIndexTest, APointFindsTheCellThatContainsIt)
{
    EXPECT_EQ(at(5.0f, 9.99f), Place(5, 9));
    EXPECT_EQ(at(0, 0), Place(0, 0));
    EXPECT_EQ(at(-0.0f, -0.0f), Place(0, 0));
    EXPECT_EQ(at(9.9999f, 0), Place(9, 0));
    EXPECT_EQ(at(0, 9.9999f), Place(0, 9));
    for (int row = 0; row < 10; ++row) {
        for (int column = 0; column < 10; ++column) {
            const auto x = static_cast<float>(column);
            const auto y = static_cast<float>(row);
            EXPECT_EQ(at(x, y), Place(column, row));
            EXPECT_EQ(at(x + 0.999f, y + 0.999f), Place(column, row));
        }
    }
}

TEST_F(BucketIndexTest, APointOutsideFindsNothing)
{
    EXPECT_THAT(grid.query(-0.01f, 3), IsNull());
    EXPECT_THAT(grid.query(3, -0.01f), IsNull());
    EXPECT_THAT(grid.query(10.001f, 3), IsNull());
    EXPECT_THAT(grid.query(3, 10.001f), IsNull());
    for (const float bad : {INF, -INF, NOT_A_NUMBER, 1e30f, -1e30f}) {
        EXPECT_THAT(grid.query(bad, 3), IsNull());
        EXPECT_THAT(grid.query(3, bad), IsNull());
        EXPECT_THAT(grid.query(bad, bad), IsNull());
    }
}

TEST_F(BucketIndexTest, TheRightEdgeLandsOnTheNextRow)
{
    EXPECT_EQ(at(10, 3), Place(0, 4));
    EXPECT_EQ(at(10, 0), Place(0, 1));
    EXPECT_EQ(at(10, 8.5f), Place(0, 9));
    EXPECT_THAT(grid.query(10, 9), IsNull()) << "there is no row after the last";
    EXPECT_THAT(grid.query(10, 9.99f), IsNull());
}

TEST_F(BucketIndexTest, TheTopEdgeIsOutside)
{
    for (float x = 0; x <= 10; x += 0.5f) {
        EXPECT_THAT(grid.query(x, 10), IsNull()) << x;
    }
}

TEST_F(BucketIndexTest, ARectangleFindsColumnAfterColumnWithRowsAscending)
{
    EXPECT_THAT(within(4.3f, 4.3f, 6.8f, 6.8f),
                ElementsAre(Place(4, 4), Place(4, 5), Place(5, 4), Place(5, 5)));
    EXPECT_THAT(within(1, 2, 3, 5), ElementsAre(Place(1, 2), Place(1, 3), Place(1, 4), Place(2, 2),
                                                Place(2, 3), Place(2, 4)));
}

TEST_F(BucketIndexTest, ARectangleIsCutToTheGrid)
{
    EXPECT_THAT(within(-1, -1, 1.5f, 1.5f), ElementsAre(Place(0, 0)));
    EXPECT_THAT(within(-0.9f, -0.9f, 1, 1), ElementsAre(Place(0, 0))) << "cut towards zero";
    EXPECT_THAT(within(8.9f, 9.2f, 11.4f, 11.7f), ElementsAre(Place(8, 9), Place(9, 9)));
    EXPECT_EQ(within(-5, -5, 50, 50).size(), 100u);
}

TEST_F(BucketIndexTest, ARectangleWithoutExtentFindsNothing)
{
    EXPECT_THAT(within(4, 4, 4.9f, 4.9f), IsEmpty()) << "the upper bounds are exclusive";
    EXPECT_THAT(within(6, 6, 4, 4), IsEmpty());
    EXPECT_THAT(within(-7, -7, -2, -2), IsEmpty());
    EXPECT_THAT(within(10, 10, 12, 12), IsEmpty());
    EXPECT_THAT(within(30, 30, 40, 40), IsEmpty());
}

TEST_F(BucketIndexTest, ARectangleWithoutBoundsIsTheWholeGrid)
{
    EXPECT_EQ(within(-INF, -INF, INF, INF).size(), 100u);
    EXPECT_EQ(within(-1e38f, -1e38f, 1e38f, 1e38f).size(), 100u);
    EXPECT_THAT(within(INF, INF, -INF, -INF), IsEmpty());
    EXPECT_THAT(within(0, 0, NOT_A_NUMBER, NOT_A_NUMBER), IsEmpty()) << "NaN counts as 0";
    EXPECT_EQ(within(NOT_A_NUMBER, NOT_A_NUMBER, 2, 2).size(), 4u);
}

TEST_F(BucketIndexTest, ARectangleAppendsToWhatIsThere)
{
    Bucket first(7, 7);
    std::vector<Bucket*> cells = {&first};
    grid.query(&cells, 0, 0, 1, 1);
    grid.query(&cells, 3, 0, 4, 1);
    EXPECT_THAT(placesOf(cells), ElementsAre(Place(7, 7), Place(0, 0), Place(3, 0)));
}

TEST(BucketIndexShapesTest, TheStrideIsTheNumberOfRows)
{
    // Only a square grid finds its cells where they are.
    BucketIndex wide;
    wide.initialize(4, 2, nullptr);
    EXPECT_THAT(wide.extents, ElementsAre(0, 0, 4, 2));
    EXPECT_EQ(wide.query(3, 0), wide.index[3]);
    EXPECT_EQ(wide.query(0, 1), wide.index[2]);
    EXPECT_EQ(wide.query(3, 1), wide.index[5]);

    BucketIndex tall;
    tall.initialize(2, 4, nullptr);
    EXPECT_THAT(tall.extents, ElementsAre(0, 0, 2, 4));
    EXPECT_EQ(tall.query(1, 1), tall.index[5]);
    EXPECT_THAT(tall.query(0, 2), IsNull()) << "beyond the last cell";
    EXPECT_THAT(tall.query(1, 3), IsNull());
    std::vector<Bucket*> cells;
    tall.query(&cells, 0, 0, 2, 4);
    EXPECT_THAT(cells, ElementsAre(tall.index[0], tall.index[4], tall.index[1], tall.index[5]));
}

TEST(BucketIndexShapesTest, AColumnOfManyRowsFindsNothingBeyondItsLastCell)
{
    // With this stride the numbers of these cells are 2^31 and 2^32.
    BucketIndex column;
    column.initialize(1, 65536, nullptr);
    EXPECT_EQ(column.query(0.5f, 0), column.index[0]);
    EXPECT_THAT(column.query(0.5f, 32768), IsNull());
    EXPECT_THAT(column.query(0.5f, 65536), IsNull());
    std::vector<Bucket*> cells;
    column.query(&cells, 0, 32768, 1, 65536);
    EXPECT_THAT(cells, IsEmpty());
    column.query(&cells, 0, 0, 1, 65536);
    EXPECT_THAT(cells, ElementsAre(column.index[0]));
}

TEST(BucketIndexShapesTest, AGridWithoutCellsFindsNothing)
{
    const std::pair<int, int> sizes[] = {{0, 0}, {0, 5}, {5, 0}, {-3, 4}, {4, -3}, {-1, -1}};
    for (const auto& [columns, rows] : sizes) {
        BucketIndex grid;
        grid.initialize(columns, rows, nullptr);
        EXPECT_EQ(grid.extents[2], static_cast<float>(std::max(columns, 0)));
        EXPECT_EQ(grid.extents[3], static_cast<float>(std::max(rows, 0)));
        for (const float x : {0.0f, 1.0f, 4.0f, 5.0f}) {
            EXPECT_THAT(grid.query(x, 0), IsNull());
            EXPECT_THAT(grid.query(0, x), IsNull());
        }
        std::vector<Bucket*> cells;
        grid.query(&cells, -1, -1, 9, 9);
        EXPECT_THAT(cells, IsEmpty());
    }
}

TEST(BucketIndexShapesTest, AGridThatWasNotInitializedFindsNothing)
{
    BucketIndex grid;
    EXPECT_THAT(grid.query(0, 0), IsNull());
    std::vector<Bucket*> cells;
    grid.query(&cells, 0, 0, 5, 5);
    EXPECT_THAT(cells, IsEmpty());
}

TEST(BucketIndexShapesTest, InitializingAgainStartsAfresh)
{
    BucketIndex grid;
    grid.initialize(3, 3, nullptr);
    const auto boid = boidWithId(1);
    grid.query(1, 1)->add(boid.get());
    grid.initialize(2, 2, nullptr);
    EXPECT_THAT(grid.extents, ElementsAre(0, 0, 2, 2));
    EXPECT_THAT(grid.query(1, 1)->boidList, IsEmpty());
    EXPECT_THAT(grid.query(2.5f, 2.5f), IsNull());
}

TEST(BucketIndexShapesTest, AGridThatDoesNotFitIntoMemoryIsEmpty)
{
#if defined(KELPIX_SANITIZED) && defined(__clang__)
    GTEST_SKIP() << "here, such an allocation ends the process and does not throw";
#endif
    constexpr int MANY = std::numeric_limits<int>::max();
    BucketIndex grid;
    grid.initialize(3, 3, nullptr);
    EXPECT_THROW(grid.initialize(MANY, MANY, nullptr), std::bad_alloc);
    EXPECT_THAT(grid.extents, ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(grid.query(1, 1), IsNull());
}

} // namespace

#pragma once

#include "NodeStack.h"
#include "PackedBoids.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class Boid;
class Environment;
class Node;

/// One cell of the grid: the boids that are registered in it.
class Bucket {
public:
    int index[2] = {}; ///< column and row of this cell
    /// Borrows Boids. A vacated slot holds null, and the list never shrinks.
    std::vector<Node*> boidList;
    NodeStack nullboids; ///< vacated slots of boidList, which add fills again

    Bucket() = default;
    Bucket(int x, int y) : index{x, y} {}

    int x() const { return index[0]; } ///< column
    int y() const { return index[1]; } ///< row

    /// \return a pointer into this object
    std::vector<Node*>* getBoids() { return &boidList; }

    /// Puts a Boid (borrowed) into the slot vacated last, or at the end.
    void add(Node* node);

    /// Vacates every slot whose boid has the id of the Boid \p node.
    ///
    /// Fixed behavior: boids are removed from a cell by id, not by identity. All bubbles and fish
    /// number 10 share an id, so removing one of them removes all that are in the cell. Pinned by
    /// BucketTest.RemovingOneBubbleTakesAllBubblesAndFishTenOut; do not correct.
    void remove(Node* node);

    /// Vacates the slots that hold \p node itself, whatever its id. For a boid that is about to
    /// be deleted.
    void forget(const Node* node);

    /// \param run  see UpdateRun
    /// \return packed copies of the boids, made in this run and up to date
    const PackedBoids& packedIn(std::uint64_t run)
    {
        if (packedRun != run) {
            pack(run);
        }
        return packed;
    }

    /// Copies a boid of this cell again, if it is in the list. For a boid that has moved.
    void repack(const Boid& boid);

private:
    void put(std::size_t slot, Node* node);
    void pack(std::uint64_t run);

    PackedBoids packed;
    std::uint64_t packedRun = 0; ///< the run in which packed was made; 0 when it may be outdated
};

/// A uniform grid of cells for finding neighbors. Grid coordinates count cells: in the environment
/// they are world coordinates times 10.
///
/// Fixed behavior: cells lie row by row, but are looked up with the number of rows as the stride.
/// In a grid that is not square a point finds a wrong cell, or none; the environment's grid is
/// square. Pinned by BucketIndexShapesTest.TheStrideIsTheNumberOfRows; do not correct.
class BucketIndex {
public:
    float extents[4] = {}; ///< min x, min y, max x, max y in cells: 0, 0, columns, rows
    /// Owns columns * rows cells: column c of row r at r * extents[3] + c.
    Bucket** index = nullptr;

    BucketIndex() = default;
    BucketIndex(const BucketIndex&) = delete;
    BucketIndex& operator=(const BucketIndex&) = delete;
    ~BucketIndex();

    /// Makes a grid of \p c columns and \p r rows. A count of 0 or less makes no cells. An earlier
    /// grid is freed: no boid may be registered in it any more. The environment is not used.
    /// \throws std::bad_alloc when memory runs out; the grid has no cells then
    void initialize(int c, int r, Environment* env);

    /// Fixed behavior: the upper bounds of a query for a point are inclusive. x = 10 gives
    /// column 0 of the next row, or null in the last row; y = 10 gives null. Pinned by
    /// BucketIndexTest.TheRightEdgeLandsOnTheNextRow, BucketIndexTest.TheTopEdgeIsOutside; do
    /// not correct.
    /// \return the cell that contains the grid point, null outside the grid
    Bucket* query(float x, float y);

    /// Appends to \p blist the cells from (x0, y0) to (x1, y1), column by column, rows ascending.
    /// The coordinates are truncated to whole cells (NaN to 0) and clamped to the grid; the upper
    /// bounds are exclusive.
    void query(std::vector<Bucket*>* blist, float x0, float y0, float x1, float y1);

    /// \return a pointer to the 4 floats of extents
    float* getExtents() { return extents; }

private:
    /// The number of cells. Like the number of a cell it may be too large for an int: in a grid of
    /// few columns and many rows, points have numbers far beyond the last cell.
    std::ptrdiff_t cells() const;
    Bucket* cell(int column, int row);
    void release();
};

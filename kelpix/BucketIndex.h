#pragma once

#include "NodeStack.h"

#include <vector>

class Environment;
class Node;

/// One cell of the grid: the boids that are in it now.
class Bucket {
public:
    int index[2] = {}; ///< column and row of this cell
    std::vector<Node*>
        boidList;        ///< borrows Boids; a vacated slot holds null, the list never shrinks
    NodeStack nullboids; ///< vacated slots of boidList, which add fills again

    Bucket() = default;
    Bucket(int x, int y) : index{x, y} {}

    int x() const { return index[0]; } ///< column
    int y() const { return index[1]; } ///< row

    /// \return a pointer into this object
    std::vector<Node*>* getBoids() { return &boidList; }

    /// Puts a Boid (borrowed) into the slot vacated last, or at the end.
    void add(Node* node);

    /// Vacates every slot whose boid has the same id as the Boid \p node. By id, not by identity:
    /// all bubbles share an id, so removing one takes the others in the cell out of the flock's
    /// sight, and fish number 10 with them. Deliberate, the flock's look depends on it.
    void remove(Node* node);

    /// Vacates the slots that hold \p node itself, which is about to be deleted.
    void forget(const Node* node);
};

/// A uniform grid of cells for finding neighbours. Grid coordinates count cells: the environment's
/// are world coordinates times 10. Cells are looked up with the number of rows as the stride,
/// though they lie row by row: only in a square grid, which the environment's is, does a point find
/// its own cell; in others it finds another one, or none.
class BucketIndex {
public:
    float extents[4] = {}; ///< min x, min y, max x, max y in cells: 0, 0, columns, rows
    Bucket** index =
        nullptr; ///< owns columns * rows cells; column c of row r at r * extents[3] + c

    BucketIndex() = default;
    BucketIndex(const BucketIndex&) = delete;
    BucketIndex& operator=(const BucketIndex&) = delete;
    ~BucketIndex();

    /// Makes a grid of \p c columns and \p r rows, replacing an earlier one, in which no boid may
    /// be registered any more. No cells for a count of 0 or less, and none left when there is not
    /// enough memory (std::bad_alloc). The environment is not used.
    void initialize(int c, int r, Environment* env);

    /// \return the cell that contains the grid point, or null outside the grid. The upper bounds
    /// are inclusive: x = 10 of a row lands on column 0 of the next one, and nowhere in the last
    /// row; y = 10 is nowhere. Deliberate: boids on the right edge depend on it.
    Bucket* query(float x, float y);

    /// Appends to \p blist the cells that the grid rectangle (x0, y0) to (x1, y1) overlaps, each
    /// coordinate cut to a whole cell (NaN to 0) and to the grid, the upper ones exclusive: column
    /// by column, rows ascending.
    void query(std::vector<Bucket*>* blist, float x0, float y0, float x1, float y1);

    /// \return a pointer to the 4 floats of extents
    float* getExtents() { return extents; }

private:
    Bucket* cell(int column, int row);
    void release();
};

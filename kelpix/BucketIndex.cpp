#include "BucketIndex.h"

#include "Boid.h"

#include <algorithm>
#include <cmath>

namespace {

int idOf(Node* node)
{
    return static_cast<Boid*>(node)->getId();
}

/// Truncates towards zero, NaN to 0. Values beyond a million are outside every grid: they are
/// clamped, so that the result fits into an int.
int truncate(float value)
{
    constexpr float LIMIT = 1e6f;
    if (value > -LIMIT) {
        return static_cast<int>(std::min(value, LIMIT));
    }
    return std::isnan(value) ? 0 : static_cast<int>(-LIMIT);
}

} // namespace

void Bucket::add(Node* node)
{
    if (nullboids.size() > 0) {
        put(static_cast<std::size_t>(nullboids.pop()), node);
    } else {
        boidList.push_back(nullptr);
        put(boidList.size() - 1, node);
    }
}

void Bucket::remove(Node* node)
{
    const int id = idOf(node);
    for (std::size_t i = 0; i < boidList.size(); ++i) {
        if (boidList[i] != nullptr && idOf(boidList[i]) == id) {
            nullboids.push(static_cast<int>(i));
            put(i, nullptr);
        }
    }
}

void Bucket::forget(const Node* node)
{
    for (std::size_t i = 0; i < boidList.size(); ++i) {
        if (boidList[i] == node) {
            nullboids.push(static_cast<int>(i));
            put(i, nullptr);
        }
    }
}

void Bucket::put(std::size_t slot, Node* node)
{
    auto* boid = static_cast<Boid*>(node);
    boidList[slot] = boid;
    if (boid != nullptr) {
        boid->slot = slot;
    }
    packed.put(slot, boid);
    if (4 * packed.all().size() < boidList.size()) {
        packedRun = 0; // the slot is beyond the copies
    }
}

void Bucket::pack(std::uint64_t run)
{
    packedRun = 0; // should memory run out
    packedRun = packed.fill(boidList, this) ? run : 0;
}

void Bucket::repack(const Boid& boid)
{
    if (boid.slot < boidList.size() && boidList[boid.slot] == &boid) {
        packed.put(boid.slot, &boid);
    }
}

BucketIndex::~BucketIndex()
{
    release();
}

void BucketIndex::release()
{
    std::for_each(index, index + cells(), [](Bucket* bucket) { delete bucket; });
    delete[] index;
    index = nullptr;
    std::fill_n(extents, 4, 0.0f);
}

void BucketIndex::initialize(int c, int r, Environment*)
{
    release();
    const int columns = std::max(c, 0);
    const int rows = std::max(r, 0);
    index = new Bucket*[static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)];
    Bucket** next = index;
    for (int j = 0; j < rows; ++j) {
        for (int i = 0; i < columns; ++i) {
            *next++ = new Bucket(i, j);
        }
    }
    extents[2] = static_cast<float>(columns);
    extents[3] = static_cast<float>(rows);
}

std::ptrdiff_t BucketIndex::cells() const
{
    return static_cast<std::ptrdiff_t>(extents[2]) * static_cast<std::ptrdiff_t>(extents[3]);
}

Bucket* BucketIndex::cell(int column, int row)
{
    const std::ptrdiff_t number = static_cast<std::ptrdiff_t>(extents[3]) * row + column;
    return number < cells() ? index[number] : nullptr;
}

Bucket* BucketIndex::query(float x, float y)
{
    if (!(x >= extents[0] && extents[2] >= x && y >= extents[1] && extents[3] >= y)) {
        return nullptr;
    }
    return cell(truncate(x), truncate(y));
}

void BucketIndex::query(std::vector<Bucket*>* blist, float x0, float y0, float x1, float y1)
{
    const int c0 = std::max(truncate(x0), 0);
    const int r0 = std::max(truncate(y0), 0);
    const int c1 = std::min(truncate(x1), static_cast<int>(extents[2]));
    const int r1 = std::min(truncate(y1), static_cast<int>(extents[3]));
    const auto rows = static_cast<std::ptrdiff_t>(extents[3]);
    const std::ptrdiff_t end = cells();
    for (int i = c0; i < c1; ++i) {
        std::ptrdiff_t number = rows * r0 + i;
        for (int j = r0; j < r1 && number < end; ++j) {
            blist->push_back(index[number]);
            number += rows;
        }
    }
}

#pragma once

#include "LiteralBoid.h"
#include "LiteralSensor.h"

#include <algorithm>
#include <variant>

/// The world that the boids and sensors live in, and its update.
namespace literal {

/// The positions of three recorded sensors, one per step.
template<typename N>
using Recording = std::array<std::vector<Triple<N>>, 3>;

template<typename N>
class World {
public:
    using Child = std::variant<std::unique_ptr<Boid<N>>, std::unique_ptr<Sensor<N>>>;

    ReferenceRandom random;
    Recording<N> recording;
    std::vector<Child> children;
    std::array<Cell<N>, 100> cells; ///< row after row

    /// An empty world that draws the random numbers of srand(\p seed).
    World(unsigned seed, Recording<N> recorded);

    void add(std::unique_ptr<Boid<N>> boid) { children.emplace_back(std::move(boid)); }
    void add(std::unique_ptr<Sensor<N>> sensor)
    {
        sensorPositions.push_back(&sensor->pos);
        children.emplace_back(std::move(sensor));
    }

    /// One tick with the playback at \p step.
    void update(int step);

private:
    static constexpr int CELLS = 10; // in a row, and in a column

    void update(Boid<N>& boid);
    void enterCell(Boid<N>& boid);
    Cell<N>* cellAt(N x, N y);
    void cellsIn(std::vector<Cell<N>*>& list, N x0, N y0, N x1, N y1);

    std::vector<const Triple<N>*> sensorPositions;
};

template<typename N>
World<N>::World(unsigned seed, Recording<N> recorded) : random(seed), recording(std::move(recorded))
{
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i].column = static_cast<int>(i) % CELLS;
        cells[i].row = static_cast<int>(i) / CELLS;
    }
}

template<typename N>
void World<N>::update(int step)
{
    for (Child& child : children) {
        if (auto* boid = std::get_if<std::unique_ptr<Boid<N>>>(&child)) {
            update(**boid);
        } else {
            Sensor<N>& sensor = **std::get_if<std::unique_ptr<Sensor<N>>>(&child);
            auto& series = recording[static_cast<std::size_t>(sensor.id)];
            sensor.update(series.at(static_cast<std::size_t>(step)));
            sensor.rep.update(sensor.vel);
        }
    }
}

template<typename N>
void World<N>::update(Boid<N>& boid)
{
    boid.pos = {boid.transform[12], boid.transform[13], boid.transform[14]};
    enterCell(boid);
    if (!boid.cell) {
        boid.alive = false;
        return;
    }

    const Triple<N>& pos = boid.pos;
    std::vector<Cell<N>*> list;
    cellsIn(list, pos.x * 10.0f - 1.0f, pos.y * 10.0f - 1.0f, pos.x * 10.0f + 1.5f,
            pos.y * 10.0f + 1.5f);
    std::vector<Boid<N>*> neighbors;
    std::vector<Boid<N>*> flockmates;
    for (const Cell<N>* each : list) {
        for (Boid<N>* other : each->slots) {
            if (other && other->id != boid.id && boid.searchRadius >= distance(other->pos, pos)) {
                neighbors.push_back(other);
                flockmates.push_back(other);
            }
        }
    }
    boid.move(neighbors, flockmates, sensorPositions, random);
}

template<typename N>
void World<N>::enterCell(Boid<N>& boid)
{
    if (boid.outOfBound) {
        return;
    }
    Cell<N>* const now = cellAt(boid.pos.x * 10.0f, boid.pos.y * 10.0f);
    if (!now) {
        if (boid.cell) {
            boid.cell->remove(boid.id);
        }
        boid.cell = nullptr;
        boid.outOfBound = true;
    } else if (!boid.cell) {
        boid.cell = now;
        now->add(&boid);
    } else if (boid.cell->column != now->column || boid.cell->row != now->row) {
        boid.cell->remove(boid.id);
        boid.cell = now;
        now->add(&boid);
    }
}

/// \return null outside of the grid
template<typename N>
Cell<N>* World<N>::cellAt(N x, N y)
{
    const N edge = static_cast<N>(CELLS);
    if (!(x >= 0.0f && edge >= x && y >= 0.0f && edge >= y)) {
        return nullptr;
    }
    const auto i = static_cast<std::size_t>(CELLS * static_cast<int>(y) + static_cast<int>(x));
    return i < cells.size() ? &cells[i] : nullptr;
}

/// Appends the cells of a rectangle, column after column.
template<typename N>
void World<N>::cellsIn(std::vector<Cell<N>*>& list, N x0, N y0, N x1, N y1)
{
    const int c0 = std::max(static_cast<int>(x0), 0);
    const int r0 = std::max(static_cast<int>(y0), 0);
    const int c1 = std::min(static_cast<int>(x1), CELLS);
    const int r1 = std::min(static_cast<int>(y1), CELLS);
    for (int i = c0; i < c1; ++i) {
        for (int j = r0; j < r1; ++j) {
            const int cell = CELLS * j + i;
            list.push_back(&cells[static_cast<std::size_t>(cell)]);
        }
    }
}

} // namespace literal

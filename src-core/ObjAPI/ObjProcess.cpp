#include "ObjStore.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <new>
#include <numeric>
#include <vector>

using obj::cross;
using obj::drop_if;
using obj::file;
using obj::in_range;
using obj::normal;
using obj::normalize;

namespace {

void add(float* sum, const float* v)
{
    for (int i = 0; i < 3; ++i) {
        sum[i] += v[i];
    }
}

void tangent(float* out, const obj_vert& a, const obj_vert& b, const obj_vert& c)
{
    const float dt1 = b.t[1] - a.t[1];
    const float dt2 = c.t[1] - a.t[1];
    for (int i = 0; i < 3; ++i) {
        out[i] = (b.v[i] - a.v[i]) * dt2 - (c.v[i] - a.v[i]) * dt1;
    }
    normalize(out);
}

/// Calls \p visit with the three vertices of every triangle of the file.
template<typename Visit>
void for_each_triangle(obj_file& f, Visit visit)
{
    for (int si = 0; si < f.sc; ++si) {
        for (int pi = 0; pi < f.sv[si].pc; ++pi) {
            const obj_poly& p = f.sv[si].pv[pi];
            if (in_range(p, f.vc)) {
                visit(f.vv[p.vi[0]], f.vv[p.vi[1]], f.vv[p.vi[2]]);
            }
        }
    }
}

/// Counts elements by rank: a binary indexed tree.
class RankCounter {
public:
    explicit RankCounter(std::size_t ranks) : tree_(ranks + 1) {}

    void add(std::size_t rank)
    {
        for (std::size_t i = rank + 1; i < tree_.size(); i += i & (~i + 1)) {
            ++tree_[i];
        }
    }

    /// The number of elements of a lower rank.
    std::size_t below(std::size_t rank) const
    {
        std::size_t sum = 0;
        for (std::size_t i = rank; i > 0; i -= i & (~i + 1)) {
            sum += tree_[i];
        }
        return sum;
    }

private:
    std::vector<std::size_t> tree_;
};

/// Elements with equal keys, in order: a ring in which each is linked to the next.
struct Run {
    std::size_t last = 0;   ///< the last element; its next is the first
    std::size_t size = 0;   ///< number of elements
    std::size_t passed = 0; ///< number of larger keys that have passed the run
};

/// Computes the permutation that an exchange sort (for each i, for each j > i: swap elements i and
/// j if key[j] > key[i]) leaves, in O(n log n) instead of O(n^2). That sort is not stable, and the
/// drawing order of surfaces with equal alpha is defined by it. The tests compare this function
/// with the quadratic form.
///
/// Idea: insert the elements one after the other. The elements with one key form a run, kept as a
/// ring. A new element goes to the end of its run. It passes every run of smaller keys, and each
/// pass rotates that run by one: the sort swaps the new element with the first element of the run,
/// which thereby moves to the end. Rotations are counted and done later. NaN compares as neither
/// larger nor smaller: such an element keeps its place, and the others pass it.
std::vector<std::size_t> exchange_order(const std::vector<float>& keys)
{
    std::vector<float> ranks;
    std::copy_if(keys.begin(), keys.end(), std::back_inserter(ranks),
                 [](float key) { return !std::isnan(key); });
    std::sort(ranks.begin(), ranks.end(), std::greater<>());
    ranks.erase(std::unique(ranks.begin(), ranks.end()), ranks.end());

    RankCounter counter(ranks.size());
    std::vector<Run> runs(ranks.size());
    std::vector<std::size_t> next(keys.size());
    const auto turn = [&](std::size_t rank) {
        Run& run = runs[rank];
        const std::size_t larger = counter.below(rank);
        for (std::size_t n = run.size == 0 ? 0 : (larger - run.passed) % run.size; n > 0; --n) {
            run.last = next[run.last];
        }
        run.passed = larger;
    };
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (std::isnan(keys[i])) {
            continue;
        }
        const auto at = std::lower_bound(ranks.begin(), ranks.end(), keys[i], std::greater<>());
        const auto rank = static_cast<std::size_t>(at - ranks.begin());
        turn(rank);
        Run& run = runs[rank];
        if (run.size++ == 0) {
            next[i] = i;
        } else {
            next[i] = next[run.last];
            next[run.last] = i;
        }
        run.last = i;
        counter.add(rank);
    }

    std::vector<std::size_t> order(keys.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::size_t place = 0;
    for (std::size_t rank = 0; rank < runs.size(); ++rank) {
        turn(rank);
        for (std::size_t n = 0; n < runs[rank].size; ++n) {
            while (std::isnan(keys[place])) {
                ++place;
            }
            runs[rank].last = next[runs[rank].last];
            order[place++] = runs[rank].last;
        }
    }
    return order;
}

float alpha_of(const obj_file& f, const obj_surf& s)
{
    return 0 <= s.mi && s.mi < f.mc ? f.mv[s.mi].kv[0].c[3] : 1.0f;
}

/// Whether no surface has a larger alpha than one before it: nothing is exchanged then. NaN is
/// neither larger nor smaller.
bool is_ordered(const obj_file& f)
{
    float least = std::numeric_limits<float>::infinity();
    for (int si = 0; si < f.sc; ++si) {
        const float alpha = alpha_of(f, f.sv[si]);
        if (alpha > least) {
            return false;
        }
        least = alpha < least ? alpha : least;
    }
    return true;
}

void order_surfaces(obj_file& f)
{
    if (is_ordered(f)) {
        return;
    }
    std::vector<float> alpha(static_cast<std::size_t>(f.sc));
    std::transform(f.sv, f.sv + f.sc, alpha.begin(),
                   [&f](const obj_surf& s) { return alpha_of(f, s); });
    const std::vector<obj_surf> surfaces(f.sv, f.sv + f.sc);
    const std::vector<std::size_t> order = exchange_order(alpha);
    for (std::size_t i = 0; i < order.size(); ++i) {
        f.sv[i] = surfaces[order[i]];
    }
}

void drop_unused_materials(obj_file& f)
{
    const auto count = static_cast<std::size_t>(f.mc);
    std::vector<bool> used(count);
    for (int si = 0; si < f.sc; ++si) {
        if (0 <= f.sv[si].mi && f.sv[si].mi < f.mc) {
            used[static_cast<std::size_t>(f.sv[si].mi)] = true;
        }
    }
    std::vector<int> dropped(count + 1); // the number of unused materials before each one
    for (std::size_t i = 0; i < count; ++i) {
        dropped[i + 1] = dropped[i] + static_cast<int>(!used[i]);
    }
    for (int si = 0; si < f.sc; ++si) {
        int& mi = f.sv[si].mi;
        mi -= dropped[static_cast<std::size_t>(std::clamp(mi, 0, f.mc))];
    }
    std::size_t i = 0;
    drop_if(f.mv, f.mc, [&](obj_mtrl& m) {
        if (used[i++]) {
            return false;
        }
        obj::release(m);
        return true;
    });
}

} // namespace

namespace obj {

void cross(float* out, const float* a, const float* b)
{
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

void normalize(float* v)
{
    const float k = 1.0f / std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    v[0] *= k;
    v[1] *= k;
    v[2] *= k;
}

void normal(float* out, const float* a, const float* b, const float* c)
{
    const float ab[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const float ac[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    cross(out, ab, ac);
    normalize(out);
}

} // namespace obj

void obj_mini_file(int fi)
{
    obj_file& f = *file(fi);
    drop_if(f.sv, f.sc, [](obj_surf& s) {
        if (s.pc > 0 || s.lc > 0) {
            return false;
        }
        obj::release(s);
        return true;
    });
    try {
        drop_unused_materials(f);
    } catch (const std::bad_alloc&) {
        // Out of memory: unused materials stay, which does not change what is drawn.
    }
}

void obj_proc_file(int fi)
{
    obj_file& f = *file(fi);
    for (int vi = 0; vi < f.vc; ++vi) {
        normalize(f.vv[vi].n);
        std::fill_n(f.vv[vi].u, 3, 0.0f);
    }
    for_each_triangle(f, [](obj_vert& a, obj_vert& b, obj_vert& c) {
        float u[3];
        tangent(u, a, b, c);
        add(a.u, u);
        add(b.u, u);
        add(c.u, u);
    });
    for (int vi = 0; vi < f.vc; ++vi) {
        float b[3];
        cross(b, f.vv[vi].n, f.vv[vi].u);
        cross(f.vv[vi].u, b, f.vv[vi].n);
        normalize(f.vv[vi].u);
    }
    try {
        order_surfaces(f);
    } catch (const std::bad_alloc&) {
        // Out of memory: the surfaces keep their order.
    }
}

void obj_norm_file(int fi)
{
    for_each_triangle(*file(fi), [](obj_vert& a, obj_vert& b, obj_vert& c) {
        float n[3];
        normal(n, a.v, b.v, c.v);
        n[2] = n[0]; // see obj_norm_file
        add(a.n, n);
        add(b.n, n);
        add(c.n, n);
    });
}

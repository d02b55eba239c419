/// The input is a sequence of operations on the model store, one byte each and its operands. An
/// operation ends the process if, and only if, an index is out of range. At the end the models are
/// written and read back.

#include "Harness.h"
#include "ObjAPI.h"
#include "Textures.h"

#include <climits>
#include <functional>

namespace {

/// The indices of one operation.
struct Target {
    int fi;
    int mi;
    int ki;
    int si;
    int vi;
    int pi;
    int li;
};

/// Mostly an index in range, sometimes any.
int index(fuzz::Numbers& numbers, int count)
{
    const int number = numbers.take<unsigned char>();
    if (number >= 250) {
        constexpr int ODD[] = {-1, INT_MIN, INT_MAX, 0, 5};
        return number == 255 ? count : ODD[number - 250];
    }
    return count > 0 ? number % count : 0;
}

bool is(int i, int count)
{
    return 0 <= i && i < count;
}

/// Runs an operation. \p good: its indices are in range.
void check(bool good, const std::function<void()>& operation)
{
    using fuzz::End;
    const bool aborted = fuzz::ends({End{fuzz::ABORTED, "'\n"}}, operation);
    fuzz::expect(aborted != good, "wrong indices abort, and only those");
}

Target next(fuzz::Numbers& numbers)
{
    Target t = {};
    t.fi = index(numbers, obj_num_file());
    const bool hasFile = is(t.fi, obj_num_file());
    t.mi = index(numbers, hasFile ? obj_num_mtrl(t.fi) : 0);
    t.ki = index(numbers, 5);
    t.si = index(numbers, hasFile ? obj_num_surf(t.fi) : 0);
    t.vi = index(numbers, hasFile ? obj_num_vert(t.fi) : 0);
    const bool hasSurface = hasFile && is(t.si, obj_num_surf(t.fi));
    t.pi = index(numbers, hasSurface ? obj_num_poly(t.fi, t.si) : 0);
    t.li = index(numbers, hasSurface ? obj_num_line(t.fi, t.si) : 0);
    return t;
}

void addOrMaintain(int operation, const Target& t, bool file, bool surf)
{
    switch (operation) {
    case 0:
        obj_add_file(nullptr);
        break;
    case 1:
        check(file, [t] { obj_add_mtrl(t.fi); });
        break;
    case 2:
        check(file, [t] { obj_add_vert(t.fi); });
        break;
    case 3:
        check(file, [t] { obj_add_surf(t.fi); });
        break;
    case 4:
        check(surf, [t] { obj_add_poly(t.fi, t.si); });
        break;
    case 5:
        check(surf, [t] { obj_add_line(t.fi, t.si); });
        break;
    case 6:
        check(file, [t] { obj_mini_file(t.fi); });
        break;
    case 7:
        check(file, [t] { obj_proc_file(t.fi); });
        break;
    default:
        check(file, [t] { obj_norm_file(t.fi); });
        break;
    }
}

void set(int operation, const Target& t, fuzz::Numbers& numbers)
{
    const bool file = is(t.fi, obj_num_file());
    const bool mtrl = file && is(t.mi, obj_num_mtrl(t.fi));
    const bool prop = mtrl && is(t.ki, 5);
    const bool vert = file && is(t.vi, obj_num_vert(t.fi));
    const bool surf = file && is(t.si, obj_num_surf(t.fi));
    float v[4];
    std::generate_n(v, 4, [&] { return numbers.take<float>(); });
    const int i[3] = {numbers.take<signed char>(), numbers.below(4), numbers.below(4)};
    static const char* const NAMES[] = {nullptr, "a", "b.png", "long-name-of-a-material"};
    const char* const name = NAMES[i[1]];
    switch (operation) {
    case 0:
        check(mtrl, [t, name] { obj_set_mtrl_name(t.fi, t.mi, name); });
        break;
    case 1:
        check(prop, [t, name] { obj_set_mtrl_map(t.fi, t.mi, t.ki, name); });
        break;
    case 2:
        check(prop, [&] { obj_set_mtrl_opt(t.fi, t.mi, t.ki, static_cast<unsigned>(i[0])); });
        break;
    case 3:
        check(prop, [&] { obj_set_mtrl_c(t.fi, t.mi, t.ki, v); });
        break;
    case 4:
        check(prop, [&] { obj_set_mtrl_s(t.fi, t.mi, t.ki, v); });
        break;
    case 5:
        check(prop, [&] { obj_set_mtrl_o(t.fi, t.mi, t.ki, v); });
        break;
    case 6:
        check(vert, [&] { obj_set_vert_v(t.fi, t.vi, v); });
        break;
    case 7:
        check(vert, [&] { obj_set_vert_t(t.fi, t.vi, v); });
        break;
    case 8:
        check(vert, [&] { obj_set_vert_n(t.fi, t.vi, v); });
        break;
    case 9:
        check(surf, [&] { obj_set_surf(t.fi, t.si, i[0]); });
        break;
    case 10:
        check(surf && is(t.pi, obj_num_poly(t.fi, t.si)),
              [&] { obj_set_poly(t.fi, t.si, t.pi, i); });
        break;
    default:
        check(surf && is(t.li, obj_num_line(t.fi, t.si)),
              [&] { obj_set_line(t.fi, t.si, t.li, i); });
        break;
    }
}

void get(int operation, const Target& t)
{
    const bool file = is(t.fi, obj_num_file());
    const bool prop = file && is(t.mi, obj_num_mtrl(t.fi)) && is(t.ki, 5);
    const bool vert = file && is(t.vi, obj_num_vert(t.fi));
    const bool surf = file && is(t.si, obj_num_surf(t.fi));
    float v[4];
    int i[3];
    switch (operation) {
    case 0:
        check(prop, [&] {
            obj_get_mtrl_name(t.fi, t.mi);
            obj_get_mtrl_map(t.fi, t.mi, t.ki);
            obj_get_mtrl_opt(t.fi, t.mi, t.ki);
        });
        break;
    case 1:
        check(prop, [&] {
            obj_get_mtrl_c(t.fi, t.mi, t.ki, v);
            obj_get_mtrl_s(t.fi, t.mi, t.ki, v);
            obj_get_mtrl_o(t.fi, t.mi, t.ki, v);
        });
        break;
    case 2:
        check(vert, [&] {
            obj_get_vert_v(t.fi, t.vi, v);
            obj_get_vert_t(t.fi, t.vi, v);
            obj_get_vert_n(t.fi, t.vi, v);
        });
        break;
    case 3:
        check(surf, [&] { obj_get_surf(t.fi, t.si); });
        break;
    case 4:
        check(surf && is(t.pi, obj_num_poly(t.fi, t.si)),
              [&] { obj_get_poly(t.fi, t.si, t.pi, i); });
        break;
    default:
        check(surf && is(t.li, obj_num_line(t.fi, t.si)),
              [&] { obj_get_line(t.fi, t.si, t.li, i); });
        break;
    }
}

void remove(int operation, const Target& t)
{
    const bool file = is(t.fi, obj_num_file());
    const bool surf = file && is(t.si, obj_num_surf(t.fi));
    switch (operation) {
    case 0:
        check(file, [t] { obj_del_file(t.fi); });
        break;
    case 1:
        check(file && is(t.mi, obj_num_mtrl(t.fi)), [t] { obj_del_mtrl(t.fi, t.mi); });
        break;
    case 2:
        check(file && is(t.vi, obj_num_vert(t.fi)), [t] { obj_del_vert(t.fi, t.vi); });
        break;
    case 3:
        check(surf, [t] { obj_del_surf(t.fi, t.si); });
        break;
    case 4:
        check(surf && is(t.pi, obj_num_poly(t.fi, t.si)), [t] { obj_del_poly(t.fi, t.si, t.pi); });
        break;
    default:
        check(surf && is(t.li, obj_num_line(t.fi, t.si)), [t] { obj_del_line(t.fi, t.si, t.li); });
        break;
    }
}

/// The number of triangles and lines in the model; -1 when one has a vertex out of range.
int primitives(int fi)
{
    int count = 0;
    const int vertices = obj_num_vert(fi);
    for (int si = 0; si < obj_num_surf(fi); ++si) {
        int vi[3];
        for (int pi = 0; pi < obj_num_poly(fi, si); ++pi) {
            obj_get_poly(fi, si, pi, vi);
            if (!is(vi[0], vertices) || !is(vi[1], vertices) || !is(vi[2], vertices)) {
                return -1;
            }
        }
        for (int li = 0; li < obj_num_line(fi, si); ++li) {
            obj_get_line(fi, si, li, vi);
            if (!is(vi[0], vertices) || !is(vi[1], vertices)) {
                return -1;
            }
        }
        count += obj_num_poly(fi, si) + obj_num_line(fi, si);
    }
    return count;
}

void writeAndReadBack(int fi)
{
    const std::string path = fuzz::place("again.obj", "");
    fuzz::place("again.mtl", "");
    obj_write_file(fi, fuzz::folder().c_str(), fuzz::folder().c_str()); // cannot be opened
    obj_write_file(fi, path.c_str(), (fuzz::folder() + "again.mtl").c_str());
    const int copy = fuzz::call([&] { return obj_add_file(path.c_str()); });
    if (copy >= 0) {
        const int expected = primitives(fi);
        fuzz::expect(fuzz::memory::isScarce() || expected < 0 || primitives(copy) == expected,
                     "what is written is read back");
        obj_del_file(copy);
    }
}

/// Empties the store at the end of each input.
struct EmptyStore {
    ~EmptyStore()
    {
        while (obj_num_file() > 0) {
            obj_del_file(0);
        }
    }
};

} // namespace

void fuzz::test(std::string_view input)
{
    constexpr int ADDS = 9;
    constexpr int SETS = 12;
    constexpr int GETS = 6;
    constexpr int REMOVES = 6;
    const TextureCheck textures;
    const EmptyStore atEnd;
    Numbers numbers(input);
    while (!numbers.done()) {
        int operation = numbers.below(ADDS + SETS + GETS + REMOVES);
        const Target t = next(numbers);
        const bool file = is(t.fi, obj_num_file());
        if (operation < ADDS) {
            addOrMaintain(operation, t, file, file && is(t.si, obj_num_surf(t.fi)));
        } else if ((operation -= ADDS) < SETS) {
            set(operation, t, numbers);
        } else if ((operation -= SETS) < GETS) {
            get(operation, t);
        } else {
            remove(operation - GETS, t);
        }
    }
    for (int fi = obj_num_file(); fi-- > 0;) {
        writeAndReadBack(fi);
    }
}

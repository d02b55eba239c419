#include "ObjLibrary.h"
#include "ObjStore.h"
#include "ObjText.h"

#include <algorithm>
#include <array>
#include <map>
#include <new>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace obj {

namespace {

/// A path with this many characters or more cannot be opened.
constexpr std::size_t PATH_BYTES = 1024;

// ---- The tables of the model being read; their memory is kept for the next model ----------------

struct vec2 {
    float v[2];
    int _ii; ///< unused
};

struct vec3 {
    float v[3];
    int _ii; ///< of a position: the head of its chain of corners; -1 = none
};

/// A corner of a face or line. Equal corners share a store vertex: each position has a chain of the
/// corners that a later corner of this position is compared with.
struct iset {
    int vi;  ///< store vertex
    int gi;  ///< smoothing group
    int _vi; ///< position, zero-based; -1 = absent; may be out of range
    int _ti; ///< texture coordinate, likewise
    int _ni; ///< normal, likewise
    int _ii; ///< next corner in the chain; -1 = end
};

vec3* _vv = nullptr; ///< positions
int _vc = 0;
int _vm = 0;
vec2* _tv = nullptr; ///< texture coordinates
int _tc = 0;
int _tm = 0;
vec3* _nv = nullptr; ///< normals
int _nc = 0;
int _nm = 0;
iset* _iv = nullptr; ///< corners
int _ic = 0;
int _im = 0;

int add_v()
{
    return grow(_vv, _vc, _vm);
}

int add_t()
{
    return grow(_tv, _tc, _tm);
}

int add_n()
{
    return grow(_nv, _nc, _nm);
}

int add_i()
{
    return grow(_iv, _ic, _im);
}

bool is_position(int _vi)
{
    return 0 <= _vi && _vi < _vc;
}

void read_v(const char* text)
{
    if (const int i = add_v(); i >= 0) {
        _vv[i] = {{0, 0, 0}, -1};
        take_floats(text, _vv[i].v, 3);
    }
}

void read_vt(const char* text)
{
    if (const int i = add_t(); i >= 0) {
        _tv[i] = {{0, 0}, -1};
        take_floats(text, _tv[i].v, 2);
    }
}

void read_vn(const char* text)
{
    if (const int i = add_n(); i >= 0) {
        _nv[i] = {{0, 0, 0}, -1};
        take_floats(text, _nv[i].v, 3);
    }
}

// ---- Faces and lines ----------------------------------------------------------------------------

/// Converts an index that is one-based, or negative and counted from the end of the table, to a
/// zero-based one. 0 becomes -1: absent.
int to_index(int number, int count)
{
    return number < 0 ? number + count : number - 1;
}

/// Takes a corner of a face: v/t/n, v/t, v//n or v. The rest of its word is skipped.
/// \return false at the end of the line, and when the word is not a corner, which ends the face
bool read_poly_indices(const char*& text, iset& corner)
{
    const char* p = skip_space(text);
    int v = 0;
    int t = 0;
    int n = 0;
    if (!take_int(p, v)) {
        return false;
    }
    if (*p == '/') {
        if (take_int(++p, t)) {
            if (*p == '/') {
                take_int(++p, n);
            }
        } else if (*p == '/') {
            take_int(++p, n);
        }
    }
    corner._vi = to_index(v, _vc);
    corner._ti = to_index(t, _tc);
    corner._ni = to_index(n, _nc);
    text = skip_word(p);
    return true;
}

/// Takes a corner of a line: v/t or v, without normal and group.
bool read_line_indices(const char*& text, iset& corner)
{
    const char* p = skip_space(text);
    int v = 0;
    int t = 0;
    if (!take_int(p, v)) {
        return false;
    }
    if (*p == '/') {
        take_int(++p, t);
    }
    corner._vi = to_index(v, _vc);
    corner._ti = to_index(t, _tc);
    corner._ni = -1;
    corner.gi = 0;
    text = skip_word(p);
    return true;
}

/// Adds a store vertex for a corner with these indices.
int add_vertex(int fi, int _vi, int _ti, int _ni)
{
    // Without obj_add_vert: a file that is being read has no vertex buffer to invalidate.
    obj_file& f = *file(fi);
    const int vi = grow(f.vv, f.vc, f.vm);
    if (vi >= 0) {
        obj_vert& vertex = f.vv[vi];
        vertex = {};
        if (is_position(_vi)) {
            std::copy_n(_vv[_vi].v, 3, vertex.v);
        }
        if (0 <= _ni && _ni < _nc) {
            std::copy_n(_nv[_ni].v, 3, vertex.n);
        }
        if (0 <= _ti && _ti < _tc) {
            std::copy_n(_tv[_ti].v, 2, vertex.t);
        }
    }
    return vi;
}

/// Corners of faces are equal when all their indices and their smoothing groups are.
bool same_in_face(const iset& a, const iset& b)
{
    return a._vi == b._vi && a._ti == b._ti && a._ni == b._ni && a.gi == b.gi;
}

/// A corner of a line has no normal and no group: it is equal to a corner with any of these.
bool same_in_line(const iset& a, const iset& b)
{
    return a._vi == b._vi && a._ti == b._ti;
}

/// Searches the chain of the corner's position for an equal corner and takes over its store vertex
/// and its smoothing group; without one, adds a store vertex. The corner becomes the head of the
/// chain and is linked to the corner that was found. A corner whose position is out of range has
/// no chain.
///
/// Fixed behavior: when a model's corner is looked up, the corners of its position that are
/// searched before the equal one, or all if there is none, are not searched again. A later corner
/// that is equal to one of these gets a store vertex of its own. Pinned by
/// ObjReaderTest.ACornerAfterAnotherOfItsPositionIsANewVertexAgain; do not correct.
/// \return false, and nothing has changed, when memory runs out
template<typename Same>
bool resolve(int fi, iset& corner, Same same)
{
    int* const head = is_position(corner._vi) ? &_vv[corner._vi]._ii : nullptr;
    int ij = head != nullptr ? *head : -1;
    while (ij >= 0 && !same(_iv[ij], corner)) {
        ij = _iv[ij]._ii;
    }
    if (ij >= 0) {
        corner.gi = _iv[ij].gi;
    }
    // A corner equal in all its indices and its group is already in the chain: not added again.
    int ii = ij;
    if (ij < 0 || !same_in_face(_iv[ij], corner)) {
        ii = add_i();
        if (ii < 0) {
            return false;
        }
        const int vi = ij < 0 ? add_vertex(fi, corner._vi, corner._ti, corner._ni) : _iv[ij].vi;
        if (vi < 0) {
            --_ic;
            return false;
        }
        _iv[ii] = {vi, corner.gi, corner._vi, corner._ti, corner._ni, ij};
    }
    corner.vi = _iv[ii].vi;
    if (head != nullptr) {
        *head = ii;
    }
    return true;
}

/// What the triangles and lines need of a corner.
struct Corner {
    int vi;  ///< as in iset
    int _vi; ///< likewise
    int _ni; ///< likewise
};

/// The corners of one line. A corner takes at least two characters, which bounds their number.
using Corners = std::array<Corner, (LineReader::LONGEST + 1) / 2>;

/// Reads the corners of a face.
/// \return their number
int read_poly_vertices(const char* text, int fi, int gi, Corners& corners)
{
    int count = 0;
    iset corner = {};
    corner.gi = gi;
    while (read_poly_indices(text, corner)) {
        if (resolve(fi, corner, same_in_face)) {
            corners[static_cast<std::size_t>(count++)] = {corner.vi, corner._vi, corner._ni};
        }
    }
    return count;
}

/// Reads the corners of a polyline.
/// \return their number
int read_line_vertices(const char* text, int fi, Corners& corners)
{
    int count = 0;
    iset corner = {};
    while (read_line_indices(text, corner)) {
        if (resolve(fi, corner, same_in_line)) {
            corners[static_cast<std::size_t>(count++)] = {corner.vi, corner._vi, corner._ni};
        }
    }
    return count;
}

/// Adds the normal of a face to its vertices, for a face of a smoothing group whose first corner
/// has no normal. Indices that are out of range are passed over; without the positions of the first
/// three corners there is no normal.
///
/// Fixed behavior: the normal of a face is added to the store vertices whose indices are the
/// *position* indices of the corners, not to the corners' own vertices, and only the first corner
/// tells whether the face has normals. Pinned by
/// ObjReaderTest.TheFaceNormalGoesToTheVerticesWithTheNumbersOfThePositions,
/// ObjReaderTest.OnlyTheFirstCornerTellsWhetherAFaceHasNormals; do not correct.
void smooth(int fi, const Corner* corners, int n)
{
    if (n < 3 || corners[0]._ni != -1 || !is_position(corners[0]._vi) ||
        !is_position(corners[1]._vi) || !is_position(corners[2]._vi)) {
        return;
    }
    float face[3];
    normal(face, _vv[corners[0]._vi].v, _vv[corners[1]._vi].v, _vv[corners[2]._vi].v);
    for (int k = 0; k < n; ++k) {
        const int vi = corners[k]._vi;
        if (0 <= vi && vi < file(fi)->vc) {
            float* vertex = vert(fi, vi)->n;
            vertex[0] += face[0];
            vertex[1] += face[1];
            vertex[2] += face[2];
        }
    }
}

/// Reads a face, as a fan of triangles around its first corner.
void read_f(const char* text, int fi, int si, int gi)
{
    Corners room;
    const int n = read_poly_vertices(text, fi, gi, room);
    const Corner* const corners = room.data();
    if (gi != 0) {
        smooth(fi, corners, n);
    }
    if (si >= file(fi)->sc) {
        return;
    }
    obj_surf& s = *surf(fi, si);
    for (int k = 0; k < n - 2; ++k) {
        if (const int pi = grow(s.pv, s.pc, s.pm); pi >= 0) {
            s.pv[pi] = {{corners[0].vi, corners[k + 1].vi, corners[k + 2].vi}};
        }
    }
}

void read_l(const char* text, int fi, int si)
{
    Corners room;
    const int n = read_line_vertices(text, fi, room);
    const Corner* const corners = room.data();
    for (int k = 0; k < n - 1 && si < obj_num_surf(fi); ++k) {
        const int vi[2] = {corners[k].vi, corners[k + 1].vi};
        if (const int li = obj_add_line(fi, si); li >= 0) {
            obj_set_line(fi, si, li, vi);
        }
    }
}

// ---- Materials ----------------------------------------------------------------------------------

/// \return the path of a file in a directory; empty, which cannot be opened, if it is too long
std::string join(const std::string& directory, std::string_view name)
{
    if (directory.size() + 1 + name.size() >= PATH_BYTES) {
        return {};
    }
    return directory + '/' + std::string(name);
}

/// The model's directory and the libraries in it that were used so far. A name is looked up once. A
/// file is read once, even if the model uses several names for it ("m.mtl", "./m.mtl", a link): the
/// time and memory for a model are in proportion to the size of its files.
class Libraries {
public:
    explicit Libraries(std::string directory) : directory_(std::move(directory)) {}

    const std::string& directory() const { return directory_; }

    const Library& get(const std::string& name)
    {
        const auto [place, is_new] = named_.try_emplace(name, &none_);
        if (is_new) {
            place->second = &find(join(directory_, name));
        }
        return *place->second;
    }

private:
    const Library& find(const std::string& path)
    {
        struct stat about = {};
        if (stat(path.c_str(), &about) != 0) {
            return none_;
        }
        const auto [place, is_new] = libraries_.try_emplace({about.st_dev, about.st_ino});
        if (is_new) {
            place->second = read_library(path);
        }
        return place->second;
    }

    std::string directory_;
    std::map<std::string, const Library*> named_;
    std::map<std::pair<dev_t, ino_t>, Library> libraries_; ///< by device and inode
    const Library none_;                                   ///< for a missing file
};

/// Copies the name and properties of a material in the library to a new material. A name that is
/// empty or not in the library changes nothing.
void read_mtl(Libraries& libraries, const std::string& library, std::string_view name, int fi,
              int mi)
{
    const Material* const found = libraries.get(library).find(name);
    if (found == nullptr || name.empty()) {
        return;
    }
    obj_set_mtrl_name(fi, mi, found->name.c_str());
    obj_mtrl& material = *mtrl(fi, mi);
    for (int ki = 0; ki < 5; ++ki) {
        std::copy_n(found->c[ki], 4, material.kv[ki].c);
    }
    for (const Map& map : found->maps) {
        obj_set_mtrl_opt(fi, mi, map.ki, map.clamp ? 1 : 0);
        set_map(prop(fi, mi, map.ki), map.name.empty() ? nullptr : map.name.c_str(),
                join(libraries.directory(), map.name).c_str());
        obj_set_mtrl_o(fi, mi, map.ki, map.o);
        obj_set_mtrl_s(fi, mi, map.ki, map.s);
    }
}

/// Adds a material and a surface for it, also for a name that was used before.
/// \return the surface; surface 0 when memory runs out
int usemtl(Libraries& libraries, const std::string& library, const char* text, int fi)
{
    const std::string_view name = take_word(text);
    const int mi = obj_add_mtrl(fi);
    const int si = obj_add_surf(fi);
    if (mi < 0 || si < 0) {
        return 0;
    }
    read_mtl(libraries, library, name, fi, mi);
    obj_set_surf(fi, si, mi);
    return si;
}

// ---- Models -------------------------------------------------------------------------------------

std::string directory_of(const std::string& path)
{
    const std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? "." : path.substr(0, cut);
}

void read_lines(int fi, LineReader& reader, Libraries& libraries)
{
    std::string library;
    int si = 0;
    int gi = 0;
    while (const char* text = reader.next()) {
        const std::string_view word = take_word(text);
        if (word == "f") {
            read_f(text, fi, si, gi);
        } else if (word == "v") {
            read_v(text);
        } else if (word == "vt") {
            read_vt(text);
        } else if (word == "vn") {
            read_vn(text);
        } else if (word == "l") {
            read_l(text, fi, si);
        } else if (word == "mtllib") {
            if (const std::string_view name = take_word(text); !name.empty()) {
                library = name;
            }
        } else if (word == "usemtl") {
            si = usemtl(libraries, library, text, fi);
        } else if (word == "s") {
            gi = 0; // also for "off", which is not a number
            text = skip_space(text);
            take_int(text, gi);
        }
    }
}

} // namespace

void read_obj(int fi, const char* filename)
{
    _vc = 0;
    _tc = 0;
    _nc = 0;
    _ic = 0;
    LineReader reader(filename);
    if (!reader.is_open()) {
        return;
    }
    // For faces and lines before the first usemtl. If there are none, obj_mini_file deletes this
    // material and surface.
    const int mi = obj_add_mtrl(fi);
    const int si = obj_add_surf(fi);
    if (si >= 0) {
        obj_set_surf(fi, si, mi);
    }
    try {
        Libraries libraries(directory_of(filename));
        read_lines(fi, reader, libraries);
    } catch (const std::bad_alloc&) {
        // The model has what was read so far.
    }
}

} // namespace obj

#pragma once

/// The records of the model store and what the sources of the OBJ library share. Not for users of
/// the library: they see indices only.

#include "ObjAPI.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

/// One property of a material.
struct obj_prop {
    char* str;  ///< owns: the map's name; null = none
    int opt;    ///< map options; bit 0 = clamp to the edge
    GLuint map; ///< owns: the map's texture; 0 = none
    float c[4]; ///< color and alpha; of property 4, c[0] is the shininess exponent
    float o[3]; ///< map offset
    float s[3]; ///< map scale
};

struct obj_mtrl {
    char* name;     ///< owns; null = none
    obj_prop kv[5]; ///< diffuse, ambient, emissive, specular, shininess
};

/// The colors of a new material.
inline constexpr float DEFAULT_COLORS[5][4] = {
    {0.8f, 0.8f, 0.8f, 1}, {0.2f, 0.2f, 0.2f, 1}, {0, 0, 0, 1}, {0, 0, 0, 1}, {8, 0, 0, 0}};

/// A vertex as the GPU reads it.
struct obj_vert {
    float u[3]; ///< tangent
    float n[3]; ///< normal
    float t[2]; ///< texture coordinate
    float v[3]; ///< position
};
static_assert(std::is_standard_layout_v<obj_vert> && sizeof(obj_vert) == 44 && sizeof(float) == 4);
static_assert(offsetof(obj_vert, u) == 0 && offsetof(obj_vert, n) == 12);
static_assert(offsetof(obj_vert, t) == 24 && offsetof(obj_vert, v) == 32);

/// A triangle.
struct obj_poly {
    int vi[3]; ///< vertices, counter-clockwise; may be out of range
};

struct obj_line {
    int vi[2]; ///< vertices; may be out of range
};
// The index arrays are passed to GL without conversion.
static_assert(sizeof(obj_poly) == 3 * sizeof(GLuint) && sizeof(obj_line) == 2 * sizeof(GLuint));

struct obj_surf {
    int mi;       ///< material; may be out of range
    int pc, pm;   ///< number of triangles, capacity
    int lc, lm;   ///< number of lines, capacity
    obj_poly* pv; ///< owns
    obj_line* lv; ///< owns
};

struct obj_file {
    GLuint vbo;   ///< owns: a vertex buffer that holds vv; 0 = none
    int mc, mm;   ///< number of materials, capacity
    int vc, vm;   ///< number of vertices, capacity
    int sc, sm;   ///< number of surfaces, capacity
    obj_mtrl* mv; ///< owns
    obj_vert* vv; ///< owns
    obj_surf* sv; ///< owns
};

// Capabilities of the GL context, set by obj_init_gl.
extern bool GL_is_initialized;
extern int GL_max_texture_image_units;
extern bool GL_has_vertex_buffer_object;
extern bool GL_has_multitexture;

namespace obj {

// ---- Access: each checks its indices, then returns a pointer into the store ---------------------

obj_file* file(int fi);
obj_mtrl* mtrl(int fi, int mi);
obj_prop* prop(int fi, int mi, int ki);
obj_vert* vert(int fi, int vi);
obj_surf* surf(int fi, int si);
obj_poly* poly(int fi, int si, int pi);
obj_line* line(int fi, int si, int li);

/// True when all indices of a triangle or line are at least 0 and below \p vertices.
template<typename Primitive>
bool in_range(const Primitive& primitive, int vertices)
{
    for (const int vi : primitive.vi) {
        if (vi < 0 || vi >= vertices) {
            return false;
        }
    }
    return true;
}

// ---- Arrays -------------------------------------------------------------------------------------

/// Adds an element to an array. A full array is reallocated with twice its capacity, at least 2.
/// \return the index of the new element, whose memory is not cleared; -1, and nothing has changed,
///         when memory runs out
template<typename T>
int grow(T*& array, int& count, int& capacity)
{
    if (capacity <= count) {
        if (capacity > INT_MAX / 2) {
            return -1;
        }
        const int larger = capacity < 1 ? 2 : 2 * capacity;
        if (static_cast<std::size_t>(larger) > SIZE_MAX / sizeof(T)) {
            return -1;
        }
        void* moved = std::realloc(array, sizeof(T) * static_cast<std::size_t>(larger));
        if (moved == nullptr) {
            return -1;
        }
        array = static_cast<T*>(moved);
        capacity = larger;
    }
    return count++;
}

/// Removes the elements for which \p drop is true. \p drop is called once for each element,
/// in order.
template<typename T, typename Drop>
void drop_if(T* array, int& count, Drop drop)
{
    int kept = 0;
    int run = 0; // the first of the elements that are kept, but not moved yet
    const auto move_run = [&](int end) {
        if (kept != run) {
            std::copy(array + run, array + end, array + kept);
        }
        kept += end - run;
    };
    for (int i = 0; i < count; ++i) {
        if (drop(array[i])) {
            move_run(i);
            run = i + 1;
        }
    }
    move_run(count);
    count = kept;
}

/// Frees what a record owns, textures included.
void release(obj_mtrl& m);
void release(obj_surf& s);

// ---- Vectors of three floats, in single precision -----------------------------------------------

/// out = a x b; \p out must not be a or b.
void cross(float* out, const float* a, const float* b);

/// Scales to unit length; a vector of length 0 becomes NaN.
void normalize(float* v);

/// The unit normal of a triangle, on the side from which it is counter-clockwise.
void normal(float* out, const float* a, const float* b, const float* c);

// ---- Reading ------------------------------------------------------------------------------------

/// Reads an OBJ file into the empty file \p fi, which stays empty when it cannot be opened.
void read_obj(int fi, const char* filename);

/// Makes a texture with all its mipmap levels from an image file.
/// \param path  may be null; the last four characters tell the kind of file
/// \return the texture, now bound; 0 when the file cannot be read or no GL context is current
GLuint read_img(const char* path);

/// Deletes a property's texture, and sets its texture to that of the image file at \p path (null =
/// none) and the name of its map to a copy of \p name (null = none).
void set_map(obj_prop* p, const char* name, const char* path);

// ---- Drawing ------------------------------------------------------------------------------------

/// True when a list of extensions, separated by spaces, has \p needle.
///
/// Fixed behavior: after a partial match the search for an extension continues after the mismatch,
/// not after the start of the match, so that a name which begins with a repeated prefix can be
/// missed. Pinned by ObjExtensionTest.TheSearchGoesOnBehindAMismatch; do not correct.
/// \param extensions  null counts as empty
bool extension_in(const char* extensions, const char* needle);

} // namespace obj

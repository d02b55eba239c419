#pragma once

#include "GLTypes.h"

/// OBJ models: a process-wide store that reads, edits, draws and writes them.
///
/// All elements are addressed by index; there are no objects or handles:
///
///     file fi -+- material mi - property ki: 0 diffuse (Kd), 1 ambient (Ka), 2 emissive (Ke),
///              |                             3 specular (Ks), 4 shininess (Ns)
///              +- surface si: one material, and -+- triangles pi
///              |                                 +- lines li
///              +- vertex vi: position v, normal n, texture coordinate t (and a tangent)
///
/// Indices are zero-based and dense: deleting an element moves the later ones down by one.
/// Triangles are counter-clockwise. Coordinates are in the model's own units and frame; texture
/// coordinates have their origin at the bottom left.
///
/// Every operation checks the indices that name what it works on. A bad one prints
/// "%s:%u: failed assertion `%s'\n" (source file, line, condition) on standard error and aborts, in
/// every kind of build. Indices that are only stored (the material of a surface, the vertices of a
/// triangle or line) are not checked and may be out of range: such a surface is drawn with the
/// current GL state and written as "default", such a triangle or line is skipped.
///
/// The store lives as long as the process and is not protected against concurrent use. Textures and
/// vertex buffers belong to the GL context in which they were made: call the library in the thread
/// in which that context is current. Without a context everything but drawing works, and no texture
/// is made.

// ---- Add ----------------------------------------------------------------------------------------
// Each returns the index of the new element, or -1 (and nothing has changed) when memory runs out.

/// Adds a model. Unless \p filename is null, reads it from that OBJ file, with its material
/// libraries and their images, and calls obj_mini_file and obj_proc_file. Names of libraries and
/// images are relative to the model's directory. A file that cannot be read gives an empty model;
/// libraries and images that cannot be read are left out; lines that cannot be parsed are skipped.
/// With a current GL context it makes the textures and leaves the last one bound.
///
/// \par Example
/// \snippet obj-viewer.cpp model
int obj_add_file(const char* filename);

/// Adds a material without name and maps: Kd (0.8, 0.8, 0.8, 1), Ka (0.2, 0.2, 0.2, 1), Ke and Ks
/// (0, 0, 0, 1), Ns (8, 0, 0, 0); offsets 0, scales 1.
int obj_add_mtrl(int fi);

/// Adds a vertex of zeros.
int obj_add_vert(int fi);

/// Adds an empty surface with material 0.
int obj_add_surf(int fi);

/// Adds a triangle whose corners are all vertex 0.
int obj_add_poly(int fi, int si);

/// Adds a line from vertex 0 to vertex 0.
int obj_add_line(int fi, int si);

// ---- Count --------------------------------------------------------------------------------------

int obj_num_file();
int obj_num_mtrl(int fi);
int obj_num_vert(int fi);
int obj_num_surf(int fi);
int obj_num_poly(int fi, int si);
int obj_num_line(int fi, int si);

// ---- Materials ----------------------------------------------------------------------------------

/// Keeps a copy of \p name; null leaves the material without a name.
void obj_set_mtrl_name(int fi, int mi, const char* name);

/// Deletes the property's texture and makes a new one from an image file: *.png, *.PNG, *.jpg or
/// *.JPG, relative to the working directory. Null, or a file that cannot be read, leaves no
/// texture. An image of 1 GiB or more, at 8 bits per component, cannot be read, nor can a
/// progressive JPEG of too many scans (see ImageJPEG::read). A damaged JPEG prints its library's
/// message on standard error, a damaged PNG nothing.
///
/// Keeps a copy of \p filename as the map's name, which obj_write_file writes. In a model that was
/// read from a file, the map's name is the one in the material library, without the directory.
///
/// Needs: current GL context (without one there is no texture). Changes: 2-D texture binding.
void obj_set_mtrl_map(int fi, int mi, int ki, const char* filename);

/// Map options; bit 0: clamp to the edge instead of repeating.
void obj_set_mtrl_opt(int fi, int mi, int ki, unsigned int opt);

/// \param c  float[4]: a color and its alpha; for property 4, c[0] is the shininess exponent
void obj_set_mtrl_c(int fi, int mi, int ki, const float c[4]);

/// \param s  float[3]: scale of the texture coordinates, applied before the offset
void obj_set_mtrl_s(int fi, int mi, int ki, const float s[3]);

/// \param o  float[3]: offset of the texture coordinates
void obj_set_mtrl_o(int fi, int mi, int ki, const float o[3]);

/// \return a pointer into the store, good until the name is set or the material is deleted; null
///         without a name
const char* obj_get_mtrl_name(int fi, int mi);

/// \return the texture, owned by the store; 0 = none
GLuint obj_get_mtrl_map(int fi, int mi, int ki);

unsigned int obj_get_mtrl_opt(int fi, int mi, int ki);

/// Writes 4 floats.
void obj_get_mtrl_c(int fi, int mi, int ki, float* c);
/// Writes 3 floats.
void obj_get_mtrl_s(int fi, int mi, int ki, float* s);
/// Writes 3 floats.
void obj_get_mtrl_o(int fi, int mi, int ki, float* o);

// ---- Vertices -----------------------------------------------------------------------------------
// Setting, adding or deleting a vertex deletes the file's vertex buffer: the file is drawn from
// client memory until obj_init_file or obj_draw_file makes a new one.

/// \param v  float[3]: position
void obj_set_vert_v(int fi, int vi, const float* v);
/// \param t  float[2]: texture coordinate
void obj_set_vert_t(int fi, int vi, const float* t);
/// \param n  float[3]: normal
void obj_set_vert_n(int fi, int vi, const float* n);

/// Writes 3 floats.
void obj_get_vert_v(int fi, int vi, float* v);
/// Writes 2 floats.
void obj_get_vert_t(int fi, int vi, float* t);
/// Writes 3 floats.
void obj_get_vert_n(int fi, int vi, float* n);

// ---- Surfaces, triangles, lines -----------------------------------------------------------------

/// Gives the surface a material; \p mi is stored as it is.
void obj_set_surf(int fi, int si, int mi);
int obj_get_surf(int fi, int si);

/// \param vi  int[3]: vertices, stored as they are
void obj_set_poly(int fi, int si, int pi, const int vi[3]);
void obj_get_poly(int fi, int si, int pi, int vi[3]);

/// \param vi  int[2]: vertices, stored as they are
void obj_set_line(int fi, int si, int li, const int vi[2]);
void obj_get_line(int fi, int si, int li, int vi[2]);

// ---- Delete -------------------------------------------------------------------------------------
// Textures and vertex buffers need the GL context in which they were made.

/// Deletes the model with its vertex buffer and all its materials (as obj_del_mtrl) and surfaces.
void obj_del_file(int fi);

/// Deletes the material and every surface that uses it, with the textures of its maps.
///
/// Fixed behavior: the texture of a material's property 4 (Ns) is not deleted with the material.
/// Pinned by ObjMapTest.DeletingAMaterialKeepsTheTextureOfTheShininess; do not correct.
void obj_del_mtrl(int fi, int mi);

/// Deletes the vertex and every triangle and line that uses it.
void obj_del_vert(int fi, int vi);

void obj_del_surf(int fi, int si);
void obj_del_poly(int fi, int si, int pi);
void obj_del_line(int fi, int si, int li);

// ---- Maintenance --------------------------------------------------------------------------------
// None of these updates the vertex buffer. When memory runs out, no material is deleted and the
// surfaces keep their order.

/// Deletes the surfaces without triangles and lines, then the materials that no surface uses.
void obj_mini_file(int fi);

/// Normalizes the normals, computes the tangents, and sorts the surfaces into drawing order: by the
/// alpha of their diffuse color, largest first (a surface without a valid material counts as 1).
///
/// A normal of length 0 becomes NaN. The tangent of a triangle (a, b, c) is the unit vector along
/// (b.v - a.v) * (c.t[1] - a.t[1]) - (c.v - a.v) * (b.t[1] - a.t[1]); the tangent of a vertex is
/// the sum over its triangles, made perpendicular to the normal and of unit length. (Compare
/// Lengyel, "Computing Tangent Space Basis Vectors for an Arbitrary Mesh", 2001.)
///
/// Fixed behavior: the tangents depend on the second texture coordinate only. Pinned by
/// ObjProcessTest.TheTangentFollowsTheSecondTextureCoordinate; do not correct.
///
/// Fixed behavior: obj_proc_file leaves surfaces of equal alpha in the order of an exchange sort,
/// which is not stable. Pinned by ObjProcessTest.TheOrderOfEqualAlphasIsThatOfTheExchangeSort; do
/// not correct.
void obj_proc_file(int fi);

/// Adds the unit normal N of each triangle to the normals of its three vertices. Does not clear the
/// normals before and does not normalize them after.
///
/// Fixed behavior: obj_norm_file adds (N[0], N[1], N[0]), the first component in place of the
/// third. Pinned by ObjProcessTest.NormAddsTheFirstComponentInPlaceOfTheThird; do not correct.
void obj_norm_file(int fi);

// ---- Draw ---------------------------------------------------------------------------------------
// Fixed-function GL with vertex arrays. Needs: current GL context, and glewInit before. Without
// glewInit there are no vertex buffers and no multitexturing; without a context nothing happens.

/// Queries the capabilities of the GL context once: number of texture units, vertex buffers and
/// multitexturing. Every operation below calls this first.
void obj_init_gl();

/// Copies the file's vertices to a new vertex buffer, if it has none and GL has vertex buffers and
/// enough memory. Without one the file is drawn from client memory.
/// Restores: the array buffer binding.
void obj_init_file(int fi);

/// Points vertex attribute 6 (tangent) and the arrays of normals, texture coordinates and positions
/// at the file's vertices. Changes: these arrays and their enables, array and element buffer
/// bindings. The caller restores them (glPushClientAttrib).
void obj_draw_vert(int fi);

/// Binds the property's texture to the active unit: enables 2-D texturing, sets the wrapping,
/// and sets the unit's texture matrix to translate(o) * scale(s). Without a texture nothing
/// happens: the unit keeps the state of the previous material. Changes: these, and the matrix
/// mode (model-view).
void obj_draw_prop(int fi, int mi, int ki);

/// Sets the material's colors, front and back, and binds its maps: Ns to unit 3, Ks to 2, Ka to 1
/// and Kd to 0, as far as there are units, in this order. A shininess outside GL's range of 0 to
/// 128 is clamped to it; NaN becomes 0. Changes: lighting material, active texture unit, and what
/// obj_draw_prop changes.
///
/// Fixed behavior: the emissive map of a material is never bound. Pinned by
/// ObjDrawTest.AnEmissiveMapIsNeverBound; do not correct.
void obj_draw_mtrl(int fi, int mi);

/// Draws the surface's triangles, then its lines, with its material, from the arrays that
/// obj_draw_vert has set.
/// Changes: what obj_draw_mtrl changes; the array buffer binding stays as it was. The current
/// normal, texture coordinate and vertex attribute 6 are undefined after drawing from arrays.
void obj_draw_surf(int fi, int si);

/// Draws the model: makes the vertex buffer if there is none, then draws the surfaces in store
/// order. Only texture unit 0 has texture coordinates.
/// Restores: all GL state, except that the current normal, texture coordinate and vertex attribute
/// 6 are undefined after drawing from arrays, and that the textures of maps keep their wrapping.
void obj_draw_file(int fi);

/// Draws, for each vertex, lines of length \p k along the tangent (red), the tangent turned by 90
/// degrees about the normal (green) and the normal (blue). Restores all GL state.
void obj_draw_axes(int fi, float k);

// ---- Write --------------------------------------------------------------------------------------

/// Writes the model as an OBJ file to \p obj, then its materials as a library to \p mtl; a null
/// path leaves that file out. The model names the library by the text \p mtl, which a reader looks
/// up in the model's directory. A file that cannot be opened is not written.
///
/// Positions, texture coordinates and normals are written per vertex: every corner has three equal
/// numbers, those of lines too.
///
/// Fixed behavior: a material library that is written has the ambient map twice, as "map_Ka" and as
/// "map_Ke", and never the emissive map. Pinned by
/// ObjWriterTest.TheAmbientMapIsWrittenTwiceAndTheEmissiveOneNever; do not correct.
void obj_write_file(int fi, const char* obj, const char* mtl);

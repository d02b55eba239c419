#include "ObjStore.h"

#include <algorithm>

using obj::cross;
using obj::file;
using obj::in_range;
using obj::mtrl;
using obj::prop;
using obj::surf;

bool GL_is_initialized = false;
int GL_max_texture_image_units = 0;
bool GL_has_vertex_buffer_object = false;
bool GL_has_multitexture = false;

namespace {

/// The vertex attribute of the tangent: one that no fixed-function attribute shares.
constexpr GLuint TANGENT = 6;

/// The property whose map is bound to each texture unit.
constexpr int UNITS = 4;
constexpr int UNIT_KINDS[UNITS] = {0, 1, 3, 4};

/// Tests for an extension of the current context.
bool gl_ext(const char* needle)
{
    return obj::extension_in(reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)), needle);
}

bool uses_buffer(const obj_file& f)
{
    return f.vbo != 0 && glBindBufferARB != nullptr;
}

/// The pointer that GL takes for a part of the first vertex: an offset into the bound buffer, or an
/// address in client memory.
const GLvoid* location(const obj_file& f, std::size_t offset)
{
    const std::uintptr_t base = uses_buffer(f) ? 0 : reinterpret_cast<std::uintptr_t>(f.vv);
    return reinterpret_cast<const GLvoid*>(base + offset);
}

/// Draws triangles or lines, except those with an index out of range, in as few calls as possible.
template<typename Primitive>
void draw_elements(GLenum mode, const Primitive* array, int count, int vertices)
{
    constexpr int SIZE = sizeof(Primitive) / sizeof(GLuint);
    constexpr int MOST = INT_MAX / SIZE; // per call: GL counts their vertices in an int
    int first = 0;
    while (first < count) {
        int last = first;
        while (last < count && last - first < MOST && in_range(array[last], vertices)) {
            ++last;
        }
        if (last > first) {
            glDrawElements(mode, SIZE * (last - first), GL_UNSIGNED_INT, array[first].vi);
        }
        first = std::max(last, first + 1);
    }
}

/// Saves and restores what drawing a material changes outside the attribute groups: the matrix mode
/// and the texture matrices of the units that maps are bound to.
class TextureMatrices {
public:
    TextureMatrices()
    {
        glGetIntegerv(GL_MATRIX_MODE, &mode_);
        for_each_unit([](GLfloat* m) { glGetFloatv(GL_TEXTURE_MATRIX, m); });
    }
    ~TextureMatrices()
    {
        glMatrixMode(GL_TEXTURE);
        for_each_unit([](GLfloat* m) { glLoadMatrixf(m); });
        glMatrixMode(static_cast<GLenum>(mode_));
    }
    TextureMatrices(const TextureMatrices&) = delete;
    TextureMatrices& operator=(const TextureMatrices&) = delete;

private:
    template<typename Visit>
    void for_each_unit(Visit visit)
    {
        if (!GL_has_multitexture) {
            visit(matrices_[0]);
            return;
        }
        GLint active = GL_TEXTURE0_ARB;
        glGetIntegerv(GL_ACTIVE_TEXTURE_ARB, &active);
        for (int unit = 0; unit < UNITS && unit < GL_max_texture_image_units; ++unit) {
            glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
            visit(matrices_[unit]);
        }
        glActiveTextureARB(static_cast<GLenum>(active));
    }

    GLint mode_ = GL_MODELVIEW;
    GLfloat matrices_[UNITS][16] = {};
};

void draw_axis(const float* p, const float* direction, float k)
{
    glVertex3fv(p);
    glVertex3f(p[0] + k * direction[0], p[1] + k * direction[1], p[2] + k * direction[2]);
}

} // namespace

namespace obj {

bool extension_in(const char* extensions, const char* needle)
{
    if (extensions == nullptr) {
        return false;
    }
    for (const char* p = extensions; *p != '\0'; ++p) {
        const char* n = needle;
        while (*n != '\0' && *p == *n) {
            ++p;
            ++n;
        }
        if (*n == '\0' && (*p == ' ' || *p == '\0')) {
            return true;
        }
        if (*p == '\0') {
            return false;
        }
    }
    return false;
}

} // namespace obj

void obj_init_gl()
{
    if (GL_is_initialized) {
        return;
    }
    GL_max_texture_image_units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS_ARB, &GL_max_texture_image_units);
    GL_has_vertex_buffer_object = gl_ext("GL_ARB_vertex_buffer_object") &&
                                  glGenBuffersARB != nullptr && glBindBufferARB != nullptr &&
                                  glBufferDataARB != nullptr && glDeleteBuffersARB != nullptr &&
                                  glGetBufferParameterivARB != nullptr;
    GL_has_multitexture = gl_ext("GL_ARB_multitexture") && glActiveTextureARB != nullptr;
    // Without a context GL returns nothing, and before glewInit there are no entry points. Both may
    // come later: the next call queries again.
    GL_is_initialized = glGetString(GL_VERSION) != nullptr && GLEW_VERSION_1_1;
}

void obj_init_file(int fi)
{
    obj_file& f = *file(fi);
    obj_init_gl();
    if (f.vbo != 0 || !GL_has_vertex_buffer_object) {
        return;
    }
    const GLsizeiptrARB wanted = static_cast<GLsizeiptrARB>(sizeof(obj_vert)) * f.vc;
    GLint size = -1;
    GLint bound = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING_ARB, &bound);
    glGenBuffersARB(1, &f.vbo);
    glBindBufferARB(GL_ARRAY_BUFFER_ARB, f.vbo);
    glBufferDataARB(GL_ARRAY_BUFFER_ARB, wanted, f.vv, GL_STATIC_DRAW_ARB);
    glGetBufferParameterivARB(GL_ARRAY_BUFFER_ARB, GL_BUFFER_SIZE_ARB, &size);
    glBindBufferARB(GL_ARRAY_BUFFER_ARB, static_cast<GLuint>(bound));
    if (size != wanted) { // out of memory: drawing would read beyond the end of the buffer
        glDeleteBuffersARB(1, &f.vbo);
        f.vbo = 0;
    }
}

void obj_draw_vert(int fi)
{
    const obj_file& f = *file(fi);
    obj_init_gl();
    if (glBindBufferARB != nullptr) {
        // Indices come from client memory.
        glBindBufferARB(GL_ELEMENT_ARRAY_BUFFER_ARB, 0);
        glBindBufferARB(GL_ARRAY_BUFFER_ARB, f.vbo);
    }
    constexpr GLsizei STRIDE = sizeof(obj_vert);
    if (glEnableVertexAttribArrayARB != nullptr && glVertexAttribPointerARB != nullptr) {
        glEnableVertexAttribArrayARB(TANGENT);
        glVertexAttribPointerARB(TANGENT, 3, GL_FLOAT, GL_FALSE, STRIDE,
                                 location(f, offsetof(obj_vert, u)));
    }
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_VERTEX_ARRAY);
    glNormalPointer(GL_FLOAT, STRIDE, location(f, offsetof(obj_vert, n)));
    glTexCoordPointer(2, GL_FLOAT, STRIDE, location(f, offsetof(obj_vert, t)));
    glVertexPointer(3, GL_FLOAT, STRIDE, location(f, offsetof(obj_vert, v)));
}

void obj_draw_prop(int fi, int mi, int ki)
{
    const obj_prop& p = *prop(fi, mi, ki);
    if (p.map == 0) {
        return;
    }
    glBindTexture(GL_TEXTURE_2D, p.map);
    glEnable(GL_TEXTURE_2D);
    const GLint wrap = (p.opt & 1) != 0 ? GL_CLAMP_TO_EDGE : GL_REPEAT;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glTranslatef(p.o[0], p.o[1], p.o[2]);
    glScalef(p.s[0], p.s[1], p.s[2]);
    glMatrixMode(GL_MODELVIEW);
}

void obj_draw_mtrl(int fi, int mi)
{
    const obj_mtrl& m = *mtrl(fi, mi);
    obj_init_gl();
    if (GL_has_multitexture) {
        // Unit 0 last, so that it is the active one if it has a map.
        for (int unit = UNITS - 1; unit >= 0; --unit) {
            const int ki = UNIT_KINDS[unit];
            if (GL_max_texture_image_units > unit && m.kv[ki].map != 0) {
                glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
                obj_draw_prop(fi, mi, ki);
            }
        }
    } else {
        obj_draw_prop(fi, mi, 0);
    }
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, m.kv[0].c);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, m.kv[1].c);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, m.kv[2].c);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, m.kv[3].c);
    // Material libraries have values up to 1000, and may have NaN, which GL accepts without error.
    const float shininess = m.kv[4].c[0];
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, shininess > 0 ? std::min(shininess, 128.0f) : 0);
}

void obj_draw_surf(int fi, int si)
{
    const obj_surf& s = *surf(fi, si);
    obj_init_gl();
    if (s.pc == 0 && s.lc == 0) {
        return;
    }
    if (0 <= s.mi && s.mi < obj_num_mtrl(fi)) {
        obj_draw_mtrl(fi, s.mi);
    }
    const int vertices = obj_num_vert(fi);
    draw_elements(GL_TRIANGLES, s.pv, s.pc, vertices);
    draw_elements(GL_LINES, s.lv, s.lc, vertices);
}

void obj_draw_file(int fi)
{
    const obj_file& f = *file(fi);
    obj_init_gl();
    obj_init_file(fi);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glPushAttrib(GL_ENABLE_BIT | GL_LIGHTING_BIT | GL_TEXTURE_BIT);
    {
        const TextureMatrices matrices;
        glDisable(GL_COLOR_MATERIAL);
        obj_draw_vert(fi);
        for (int si = 0; si < f.sc; ++si) {
            obj_draw_surf(fi, si);
        }
    }
    glPopAttrib();
    glPopClientAttrib();
}

void obj_draw_axes(int fi, float k)
{
    const obj_file& f = *file(fi);
    obj_init_gl();
    obj_init_file(fi);
    // Color tracking changes the material, so the lighting group is saved too.
    glPushAttrib(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LIGHTING_BIT);
    glEnable(GL_COLOR_MATERIAL);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glBegin(GL_LINES);
    for (int vi = 0; vi < f.vc; ++vi) {
        const obj_vert& vertex = f.vv[vi];
        float across[3];
        cross(across, vertex.n, vertex.u);
        glColor3f(1, 0, 0);
        draw_axis(vertex.v, vertex.u, k);
        glColor3f(0, 1, 0);
        draw_axis(vertex.v, across, k);
        glColor3f(0, 0, 1);
        draw_axis(vertex.v, vertex.n, k);
    }
    glEnd();
    glPopAttrib();
}

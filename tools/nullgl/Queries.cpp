// The queries of OpenGL, and glewInit.

#include "Calls.h"
#include "Context.h"

#include <algorithm>

namespace nullgl {
namespace {

constexpr GLint TEXTURE_SIZE = 16384;

/// \return the value of a query for one integer; -1 if nullgl does not track this state
GLint64 integer(const Context& now, GLenum what)
{
    switch (what) {
    case GL_MATRIX_MODE:
        return now.attributes.matrixMode;
    case GL_MODELVIEW_STACK_DEPTH:
        return static_cast<GLint64>(now.modelview.size());
    case GL_PROJECTION_STACK_DEPTH:
        return static_cast<GLint64>(now.projection.size());
    case GL_TEXTURE_STACK_DEPTH:
        return static_cast<GLint64>(now.texture.size());
    case GL_ATTRIB_STACK_DEPTH:
        return static_cast<GLint64>(now.savedAttributes.size());
    case GL_LIST_BASE:
        return now.attributes.listBase;
    case GL_LIST_INDEX:
        return now.openName;
    case GL_LIST_MODE:
        return now.openName == 0 ? 0 : now.openMode;
    case GL_TEXTURE_BINDING_2D:
        return now.attributes.texture;
    case GL_MAX_TEXTURE_SIZE:
        return TEXTURE_SIZE;
    default:
        return -1;
    }
}

template<typename Number, typename Values>
void copy(const Values& values, Number* out)
{
    std::transform(values.begin(), values.end(), out,
                   [](auto value) { return static_cast<Number>(value); });
}

template<typename Number>
void get(GLenum what, Number* out)
{
    Context& now = context();
    if (what == GL_MODELVIEW_MATRIX) {
        copy(now.modelview.back(), out);
    } else if (what == GL_PROJECTION_MATRIX) {
        copy(now.projection.back(), out);
    } else if (what == GL_TEXTURE_MATRIX) {
        copy(now.texture.back(), out);
    } else if (what == GL_VIEWPORT) {
        copy(now.attributes.viewport, out);
    } else if (now.pixelStore.count(what) != 0) {
        *out = static_cast<Number>(now.pixelStore[what]);
    } else if (const GLint64 value = integer(now, what); value >= 0) {
        *out = static_cast<Number>(value);
    } else {
        now.raise(GL_INVALID_ENUM);
    }
}

} // namespace
} // namespace nullgl

using namespace nullgl;

void GLAPIENTRY glGetFloatv(GLenum what, GLfloat* out)
{
    called<"glGetFloatv">();
    get(what, out);
}

void GLAPIENTRY glGetDoublev(GLenum what, GLdouble* out)
{
    called<"glGetDoublev">();
    get(what, out);
}

void GLAPIENTRY glGetIntegerv(GLenum what, GLint* out)
{
    called<"glGetIntegerv">();
    get(what, out);
}

GLenum GLAPIENTRY glGetError()
{
    called<"glGetError">();
    return std::exchange(context().error, static_cast<GLenum>(GL_NO_ERROR));
}

const GLubyte* GLAPIENTRY glGetString(GLenum name)
{
    called<"glGetString">();
    const char* text = "";
    if (name == GL_VERSION) {
        text = "1.1 kelpix null";
    } else if (name == GL_VENDOR) {
        text = "kelpix";
    } else if (name == GL_RENDERER) {
        text = "null";
    }
    return reinterpret_cast<const GLubyte*>(text);
}

/// GLU asks it whether a texture of the proxy's size fits: every size does.
void GLAPIENTRY glGetTexLevelParameteriv(GLenum, GLint, GLenum what, GLint* out)
{
    called<"glGetTexLevelParameteriv">();
    if (what == GL_TEXTURE_WIDTH) {
        *out = context().proxySize[0];
    } else if (what == GL_TEXTURE_HEIGHT) {
        *out = context().proxySize[1];
    } else {
        context().raise(GL_INVALID_ENUM);
    }
}

/// GLEW itself would ask the X server. There are no extensions, so there are no pointers to set.
GLenum GLEWAPIENTRY glewInit()
{
    called<"glewInit">();
    __GLEW_VERSION_1_1 = GL_TRUE;
    return GLEW_OK;
}

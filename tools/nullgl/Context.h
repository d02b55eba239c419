#pragma once

#include "Names.h"
#include "NullGL.h"

#include <GL/glew.h>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nullgl {

/// 16 floats, column-major.
using Elements = std::array<GLfloat, 16>;

constexpr Elements IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// A stack of matrices; the last one is the current one.
using MatrixStack = std::vector<Elements>;

/// What a display list holds.
struct List {
    std::vector<std::function<void()>> changes; ///< the commands that change the context
    std::int64_t commands = 0;                  ///< all commands
};

/// What glPushAttrib saves.
struct Attributes {
    GLenum matrixMode = GL_MODELVIEW;
    std::array<GLint, 4> viewport = {0, 0, 0, 0};
    GLuint listBase = 0;
    GLuint texture = 0;
};

/// What glPixelStore sets.
using PixelStore = std::map<GLenum, GLint>;

/// The state that is kept.
struct Context {
    MatrixStack modelview{IDENTITY};
    MatrixStack projection{IDENTITY};
    MatrixStack texture{IDENTITY};
    Attributes attributes;
    std::vector<std::pair<GLbitfield, Attributes>> savedAttributes;
    PixelStore pixelStore{
        {GL_PACK_ALIGNMENT, 4},     {GL_PACK_LSB_FIRST, 0},   {GL_PACK_ROW_LENGTH, 0},
        {GL_PACK_SKIP_PIXELS, 0},   {GL_PACK_SKIP_ROWS, 0},   {GL_PACK_SWAP_BYTES, 0},
        {GL_UNPACK_ALIGNMENT, 4},   {GL_UNPACK_LSB_FIRST, 0}, {GL_UNPACK_ROW_LENGTH, 0},
        {GL_UNPACK_SKIP_PIXELS, 0}, {GL_UNPACK_SKIP_ROWS, 0}, {GL_UNPACK_SWAP_BYTES, 0},
    };
    std::vector<std::pair<GLbitfield, PixelStore>> savedClientAttributes;
    std::array<GLint, 2> proxySize = {0, 0}; ///< of the last 2-D proxy image
    GLenum error = GL_NO_ERROR;              ///< the first since the last glGetError

    std::unordered_map<GLuint, List> lists;
    Names listNames;
    Names textureNames;
    GLuint openName = 0; ///< the display list that is being compiled; 0 = none
    GLenum openMode = 0;
    List open;
    int callDepth = 0; ///< display lists that are being executed, one called by the other

    /// Keeps the first error.
    void raise(GLenum what);
};

/// What a stack of attributes holds.
constexpr std::size_t ATTRIBUTES = 16;

/// The one context, made before main runs.
inline Context theContext;

inline Context& context()
{
    return theContext;
}

inline Hooks theHooks;

/// Counts a command in the open display list; it has no effect on what is kept.
inline void recordNoOp()
{
    Context& now = context();
    if (now.openName != 0) {
        ++now.open.commands;
    }
}

/// Counts a command that changes the context, and does it now unless it is only compiled into a
/// display list.
template<typename Change>
void perform(Change change)
{
    Context& now = context();
    if (now.openName != 0) {
        ++now.open.commands;
        now.open.changes.emplace_back(change);
        if (now.openMode == GL_COMPILE) {
            return;
        }
    }
    change();
}

} // namespace nullgl

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

/// An OpenGL that draws nothing. A program that links kelpix::nullgl has the functions of OpenGL
/// 1.1 that kelpix calls, and glewInit, as its own: they are taken in place of the system's, by
/// GLU and GLEW too. It needs no display, and its one context is always current.
///
/// It keeps what can be read back with effect on a scene: the matrix stacks and the matrix mode,
/// viewport, list base, bound 2-D texture, pixel storage, and the names of display lists and of
/// textures. A display list keeps the commands that change one of these; calling it repeats them.
/// Matrices are multiplied in single precision, each element as a0*b0 + a1*b1 + a2*b2 + a3*b3
/// from the left, as software implementations do. glPushAttrib saves matrix mode, viewport, list
/// base and texture binding. Each matrix stack holds 32 entries, each attribute stack 16. A push
/// onto a full stack raises GL_STACK_OVERFLOW, a pop of the last entry GL_STACK_UNDERFLOW; both
/// change nothing.
///
/// All other calls are only counted. Arguments are not checked. A query for any other state
/// raises GL_INVALID_ENUM and leaves its output unchanged. There are no extensions: GLEW's
/// pointers stay null.
///
/// One thread.
namespace nullgl {

/// Starts a fresh context: identity matrices, no display lists, no textures, no error, no calls.
void reset();

/// Sets the numbers of calls to 0, and nothing else.
void resetCalls();

/// \param function  its name, as "glVertex2f"
/// \return how often it was called since the start or the last reset; 0 for a name that nullgl does
///         not have. Calls by a display list do not count, the call that compiles them does.
std::int64_t calls(const std::string& function);

/// \return the functions that were called at least once, and how often
std::map<std::string, std::int64_t> calls();

/// Receives arguments that nullgl itself does not look at. Nothing is called where a pointer is
/// null, as all are at first.
struct Hooks {
    /// Each glTexImage2D but those of a proxy: what it would read.
    void (*image)(int width, int height, unsigned format, const void* pixels) = nullptr;
    /// Each glVertex2f.
    void (*vertex)(float x, float y) = nullptr;
};

/// \return the hooks, to be set; reset leaves them
Hooks& hooks();

/// \return the number of display lists that exist: made by glGenLists or compiled, and not deleted
std::size_t lists();

/// \return the number of commands in a display list; 0 for a name that does not exist
std::int64_t listCommands(unsigned name);

/// \return the number of commands in all display lists together
std::int64_t listCommands();

/// \return the number of textures that exist: made by glGenTextures or bound, and not deleted
std::size_t textures();

} // namespace nullgl

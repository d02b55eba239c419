// The functions of OpenGL that make, call and delete display lists.

#include "Calls.h"
#include "Context.h"

namespace nullgl {
namespace {

constexpr int DEEPEST_CALL = 64;

void callNow(GLuint name)
{
    Context& now = context();
    const auto list = now.lists.find(name);
    if (list == now.lists.end() || now.callDepth == DEEPEST_CALL) {
        return;
    }
    ++now.callDepth;
    for (const auto& change : list->second.changes) {
        change();
    }
    --now.callDepth;
}

/// The offsets of glCallLists, as numbers. Types of several bytes to a number are not supported.
std::vector<GLuint> offsets(GLsizei count, GLenum type, const GLvoid* from)
{
    std::vector<GLuint> numbers;
    for (GLsizei i = 0; i < count; ++i) {
        if (type == GL_UNSIGNED_BYTE) {
            numbers.push_back(static_cast<const GLubyte*>(from)[i]);
        } else if (type == GL_UNSIGNED_INT) {
            numbers.push_back(static_cast<const GLuint*>(from)[i]);
        }
    }
    return numbers;
}

} // namespace
} // namespace nullgl

using namespace nullgl;

GLuint GLAPIENTRY glGenLists(GLsizei range)
{
    called<"glGenLists">();
    return context().listNames.take(range > 0 ? static_cast<unsigned>(range) : 0);
}

void GLAPIENTRY glNewList(GLuint list, GLenum mode)
{
    called<"glNewList">();
    Context& now = context();
    if (now.openName != 0) {
        now.raise(GL_INVALID_OPERATION);
        return;
    }
    now.openName = list;
    now.openMode = mode;
    now.open = List();
}

void GLAPIENTRY glEndList()
{
    called<"glEndList">();
    Context& now = context();
    if (now.openName == 0) {
        now.raise(GL_INVALID_OPERATION);
        return;
    }
    now.listNames.use(now.openName);
    now.lists[now.openName] = std::exchange(now.open, List());
    now.openName = 0;
}

void GLAPIENTRY glCallList(GLuint list)
{
    called<"glCallList">();
    perform([list] { callNow(list); });
}

void GLAPIENTRY glCallLists(GLsizei n, GLenum type, const GLvoid* lists)
{
    called<"glCallLists">();
    perform([numbers = offsets(n, type, lists)] {
        for (const GLuint number : numbers) {
            callNow(context().attributes.listBase + number);
        }
    });
}

void GLAPIENTRY glListBase(GLuint base)
{
    called<"glListBase">();
    perform([base] { context().attributes.listBase = base; });
}

void GLAPIENTRY glDeleteLists(GLuint list, GLsizei range)
{
    called<"glDeleteLists">();
    Context& now = context();
    for (GLsizei i = 0; i < range; ++i) {
        const GLuint name = list + static_cast<GLuint>(i);
        now.listNames.release(name);
        now.lists.erase(name);
    }
}

GLboolean GLAPIENTRY glIsList(GLuint list)
{
    called<"glIsList">();
    return context().listNames.contains(list) ? GL_TRUE : GL_FALSE;
}

// The functions of OpenGL that set what is kept besides matrices, and those that save and
// restore it.

#include "Calls.h"
#include "Context.h"

using namespace nullgl;

void GLAPIENTRY glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
{
    called<"glViewport">();
    perform([=] { context().attributes.viewport = {x, y, width, height}; });
}

void GLAPIENTRY glPushAttrib(GLbitfield mask)
{
    called<"glPushAttrib">();
    perform([mask] {
        Context& now = context();
        if (now.savedAttributes.size() == ATTRIBUTES) {
            now.raise(GL_STACK_OVERFLOW);
        } else {
            now.savedAttributes.emplace_back(mask, now.attributes);
        }
    });
}

void GLAPIENTRY glPopAttrib()
{
    called<"glPopAttrib">();
    perform([] {
        Context& now = context();
        if (now.savedAttributes.empty()) {
            now.raise(GL_STACK_UNDERFLOW);
            return;
        }
        const auto [mask, saved] = now.savedAttributes.back();
        now.savedAttributes.pop_back();
        if ((mask & GL_TRANSFORM_BIT) != 0) {
            now.attributes.matrixMode = saved.matrixMode;
        }
        if ((mask & GL_VIEWPORT_BIT) != 0) {
            now.attributes.viewport = saved.viewport;
        }
        if ((mask & GL_LIST_BIT) != 0) {
            now.attributes.listBase = saved.listBase;
        }
        if ((mask & GL_TEXTURE_BIT) != 0) {
            now.attributes.texture = saved.texture;
        }
    });
}

void GLAPIENTRY glPixelStorei(GLenum what, GLint value)
{
    called<"glPixelStorei">();
    PixelStore& kept = context().pixelStore;
    if (kept.count(what) != 0) {
        kept[what] = value;
    }
}

void GLAPIENTRY glPushClientAttrib(GLbitfield mask)
{
    called<"glPushClientAttrib">();
    Context& now = context();
    if (now.savedClientAttributes.size() == ATTRIBUTES) {
        now.raise(GL_STACK_OVERFLOW);
    } else {
        now.savedClientAttributes.emplace_back(mask, now.pixelStore);
    }
}

void GLAPIENTRY glPopClientAttrib()
{
    called<"glPopClientAttrib">();
    Context& now = context();
    if (now.savedClientAttributes.empty()) {
        now.raise(GL_STACK_UNDERFLOW);
        return;
    }
    const auto [mask, saved] = now.savedClientAttributes.back();
    now.savedClientAttributes.pop_back();
    if ((mask & GL_CLIENT_PIXEL_STORE_BIT) != 0) {
        now.pixelStore = saved;
    }
}

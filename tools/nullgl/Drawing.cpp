// The functions of OpenGL that draw. They are counted; only texture names and the texture binding
// are kept.

#include "Calls.h"
#include "Context.h"

namespace nullgl {
namespace {

/// A command that has no effect on what is kept.
template<FunctionName NAME>
void drawn()
{
    called<NAME>();
    recordNoOp();
}

} // namespace
} // namespace nullgl

using namespace nullgl;

void GLAPIENTRY glBegin(GLenum)
{
    drawn<"glBegin">();
}

void GLAPIENTRY glEnd()
{
    drawn<"glEnd">();
}

void GLAPIENTRY glVertex2f(GLfloat x, GLfloat y)
{
    drawn<"glVertex2f">();
    if (theHooks.vertex != nullptr) {
        theHooks.vertex(x, y);
    }
}

void GLAPIENTRY glVertex2fv(const GLfloat*)
{
    drawn<"glVertex2fv">();
}

void GLAPIENTRY glVertex3f(GLfloat, GLfloat, GLfloat)
{
    drawn<"glVertex3f">();
}

void GLAPIENTRY glVertex3fv(const GLfloat*)
{
    drawn<"glVertex3fv">();
}

void GLAPIENTRY glTexCoord2f(GLfloat, GLfloat)
{
    drawn<"glTexCoord2f">();
}

void GLAPIENTRY glNormal3f(GLfloat, GLfloat, GLfloat)
{
    drawn<"glNormal3f">();
}

void GLAPIENTRY glNormal3fv(const GLfloat*)
{
    drawn<"glNormal3fv">();
}

void GLAPIENTRY glColor3f(GLfloat, GLfloat, GLfloat)
{
    drawn<"glColor3f">();
}

void GLAPIENTRY glColor4f(GLfloat, GLfloat, GLfloat, GLfloat)
{
    drawn<"glColor4f">();
}

void GLAPIENTRY glEnable(GLenum)
{
    drawn<"glEnable">();
}

void GLAPIENTRY glDisable(GLenum)
{
    drawn<"glDisable">();
}

void GLAPIENTRY glBlendFunc(GLenum, GLenum)
{
    drawn<"glBlendFunc">();
}

void GLAPIENTRY glLineWidth(GLfloat)
{
    drawn<"glLineWidth">();
}

void GLAPIENTRY glPolygonMode(GLenum, GLenum)
{
    drawn<"glPolygonMode">();
}

void GLAPIENTRY glMaterialf(GLenum, GLenum, GLfloat)
{
    drawn<"glMaterialf">();
}

void GLAPIENTRY glMaterialfv(GLenum, GLenum, const GLfloat*)
{
    drawn<"glMaterialfv">();
}

void GLAPIENTRY glLightModeli(GLenum, GLint)
{
    drawn<"glLightModeli">();
}

void GLAPIENTRY glColorMaterial(GLenum, GLenum)
{
    drawn<"glColorMaterial">();
}

void GLAPIENTRY glScissor(GLint, GLint, GLsizei, GLsizei)
{
    drawn<"glScissor">();
}

void GLAPIENTRY glClear(GLbitfield)
{
    drawn<"glClear">();
}

void GLAPIENTRY glClearColor(GLclampf, GLclampf, GLclampf, GLclampf)
{
    drawn<"glClearColor">();
}

void GLAPIENTRY glDrawElements(GLenum, GLsizei, GLenum, const GLvoid*)
{
    drawn<"glDrawElements">();
}

void GLAPIENTRY glFlush()
{
    called<"glFlush">();
}

void GLAPIENTRY glVertexPointer(GLint, GLenum, GLsizei, const GLvoid*)
{
    called<"glVertexPointer">();
}

void GLAPIENTRY glTexCoordPointer(GLint, GLenum, GLsizei, const GLvoid*)
{
    called<"glTexCoordPointer">();
}

void GLAPIENTRY glNormalPointer(GLenum, GLsizei, const GLvoid*)
{
    called<"glNormalPointer">();
}

void GLAPIENTRY glEnableClientState(GLenum)
{
    called<"glEnableClientState">();
}

void GLAPIENTRY glDisableClientState(GLenum)
{
    called<"glDisableClientState">();
}

void GLAPIENTRY glGenTextures(GLsizei n, GLuint* textures)
{
    called<"glGenTextures">();
    for (GLsizei i = 0; i < n; ++i) {
        textures[i] = context().textureNames.take(1);
    }
}

void GLAPIENTRY glDeleteTextures(GLsizei n, const GLuint* textures)
{
    called<"glDeleteTextures">();
    Context& now = context();
    for (GLsizei i = 0; i < n; ++i) {
        now.textureNames.release(textures[i]);
        if (now.attributes.texture == textures[i]) {
            now.attributes.texture = 0;
        }
    }
}

void GLAPIENTRY glBindTexture(GLenum target, GLuint texture)
{
    called<"glBindTexture">();
    perform([target, texture] {
        Context& now = context();
        if (texture != 0) {
            now.textureNames.use(texture);
        }
        if (target == GL_TEXTURE_2D) {
            now.attributes.texture = texture;
        }
    });
}

GLboolean GLAPIENTRY glIsTexture(GLuint texture)
{
    called<"glIsTexture">();
    return context().textureNames.contains(texture) ? GL_TRUE : GL_FALSE;
}

void GLAPIENTRY glTexParameteri(GLenum, GLenum, GLint)
{
    drawn<"glTexParameteri">();
}

void GLAPIENTRY glTexImage2D(GLenum target, GLint, GLint, GLsizei width, GLsizei height, GLint,
                             GLenum format, GLenum, const GLvoid* pixels)
{
    called<"glTexImage2D">();
    if (target == GL_PROXY_TEXTURE_2D) { // never compiled into a display list
        context().proxySize = {width, height};
        return;
    }
    recordNoOp();
    if (theHooks.image != nullptr) {
        theHooks.image(width, height, format, pixels);
    }
}

#include "Shader.h"

#include "OpenFile.h"

#include <GL/glu.h>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <new>

namespace {

/// True once a GL error was reported, by any shader.
bool halted = false;

/// In bytes; far more than any shader has. GL counts the characters of a source in an int.
constexpr long MAX_SOURCE = 16L << 20;

struct Source {
    std::unique_ptr<GLcharARB[]> text; ///< not terminated; null when it could not be read
    GLint length = 0;
};

Source readSource(const char* path)
{
    const Files::Handle file = Files::openRegular(path);
    if (file == nullptr || std::fseek(file.get(), 0, SEEK_END) != 0) {
        return {};
    }
    const long size = std::ftell(file.get());
    if (size <= 0 || size > MAX_SOURCE || std::fseek(file.get(), 0, SEEK_SET) != 0) {
        return {};
    }
    const auto bytes = static_cast<std::size_t>(size);
    Source source;
    source.text.reset(new (std::nothrow) GLcharARB[bytes]);
    if (source.text == nullptr || std::fread(source.text.get(), 1, bytes, file.get()) != bytes) {
        return {};
    }
    source.length = static_cast<GLint>(size);
    return source;
}

bool hasShaderObjects()
{
    return glCreateShaderObjectARB != nullptr && glShaderSourceARB != nullptr &&
           glCompileShaderARB != nullptr && glGetObjectParameterivARB != nullptr;
}

} // namespace

Shader::~Shader()
{
    if (glDeleteObjectARB != nullptr) {
        glDeleteObjectARB(handle);
    }
}

GLhandleARB* Shader::create(const char* path, unsigned long type)
{
    const Source source = readSource(path);
    if (source.text == nullptr || !hasShaderObjects()) {
        return &handle;
    }
    handle = glCreateShaderObjectARB(static_cast<GLenum>(type));
    const GLcharARB* text = source.text.get();
    glShaderSourceARB(handle, 1, &text, &source.length);
    glCompileShaderARB(handle);
    GLint compiled = 0;
    glGetObjectParameterivARB(handle, GL_OBJECT_COMPILE_STATUS_ARB, &compiled);
    if (compiled == 0) {
        GL_err("Compile");
    }
    return &handle;
}

void Shader::GL_err(const char* label)
{
    if (halted) {
        return;
    }
    const GLenum error = glGetError();
    if (error == GL_NO_ERROR) {
        return;
    }
    std::fprintf(stderr, "%s: %s\n", label, reinterpret_cast<const char*>(gluErrorString(error)));
    halted = true;
}

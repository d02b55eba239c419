#pragma once

#include "GLTypes.h"

/// One GLSL shader object of the ARB_shader_objects extension, made from a source file.
///
/// The extension's entry points come from GLEW: a shader can be created only after glewInit, with a
/// current GL context. Without the entry points no shader object is made or deleted.
///
/// \par Example
/// \snippet shader.cpp compile
class Shader {
public:
    GLhandleARB handle = 0; ///< the shader object; 0 until create makes one

    Shader() = default;
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    /// Deletes the shader object; GL ignores a handle of 0. Needs: the GL context, unless the entry
    /// points were never loaded.
    ~Shader();

    /// Reads a source file and compiles it. A second call makes a second object, and does not
    /// delete the first.
    ///
    /// Fixed behavior: the compile log of a shader is never read. A compile that fails calls
    /// GL_err("Compile"), which prints nothing unless GL holds an error at that moment. Pinned by
    /// ShaderTest.ASourceThatDoesNotCompilePassesSilently; do not correct.
    /// \param path  a regular file of 1 byte to 16 MiB; nothing happens, and nothing is printed,
    ///              when it is null or cannot be read
    /// \param type  GL_VERTEX_SHADER_ARB or GL_FRAGMENT_SHADER_ARB
    /// \return a pointer into this object, to the handle, in every case
    GLhandleARB* create(const char* path, unsigned long type);

    GLhandleARB getHandle() const { return handle; }

    /// Reports a pending GL error: takes it with glGetError and writes "%s: %s\n" (label, GLU's
    /// text) to standard error. Needs: current GL context.
    ///
    /// Fixed behavior: Shader::GL_err reports one error in the life of the program. Later errors,
    /// of all shaders, are neither printed nor cleared. Pinned by
    /// ShaderErrorTest.OnlyTheFirstErrorIsReported; do not correct.
    static void GL_err(const char* label);
};

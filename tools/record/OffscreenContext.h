#pragma once

namespace record {

/// An OpenGL context without display or window, with a framebuffer of its own to draw into: color
/// of 8 bits a channel with alpha, and depth, as the program's window has. GL's state is that of a
/// new context otherwise.
class OffscreenContext {
public:
    /// Makes context and framebuffer, and makes both current. Throws std::runtime_error, with a
    /// line for the user, when there is no OpenGL, or when the size is beyond its limits.
    /// \param width,height  of the framebuffer, pixels, at least 1
    OffscreenContext(int width, int height);
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;
    ~OffscreenContext();

    /// Whether drawing reaches the framebuffer's pixels. Without, everything else still happens, in
    /// a fraction of the time: for frames that are not saved. Needs: this context current.
    static void drawPixels(bool wanted);

private:
    void* display = nullptr; ///< borrows; an EGLDisplay, the process's only one
    void* context = nullptr; ///< owns; an EGLContext

    void makeContext();
    static void makeFramebuffer(int width, int height);
    void release();
};

} // namespace record

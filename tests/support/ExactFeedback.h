#pragma once

#include "Bits.h"
#include "GLTest.h"

#include <string>

/// Catches vertices in GL's feedback buffer with all their bits. Feedback returns window
/// coordinates, whose usual viewport transform rounds. While this object lives, drawing goes to a
/// framebuffer object whose viewport maps x and y of a vertex to window coordinates by a power of
/// two, which is exact.
class ExactFeedback {
public:
    /// \param reach  a power of two; no coordinate may be larger
    explicit ExactFeedback(float reach) : unit(reach)
    {
        glGenFramebuffers(1, &framebuffer);
        glGenRenderbuffers(1, &renderbuffer);
        glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 2, 2);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER,
                                  renderbuffer);
        glViewport(-1, -1, 2, 2);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glScalef(1 / unit, 1 / unit, 1 / unit);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
    }
    ExactFeedback(const ExactFeedback&) = delete;
    ExactFeedback& operator=(const ExactFeedback&) = delete;
    ~ExactFeedback()
    {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer);
        glDeleteRenderbuffers(1, &renderbuffer);
        glViewport(0, 0, GLTest::WIDTH, GLTest::HEIGHT);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
    }

    /// What \p draw draws; x and y are the vertices' own.
    template<typename Draw>
    std::vector<Feedback::Primitive> of(Draw draw, std::size_t floats = 1 << 20) const
    {
        std::vector<Feedback::Primitive> primitives = Feedback::of(draw, floats);
        for (Feedback::Primitive& primitive : primitives) {
            for (Feedback::Vertex& vertex : primitive.vertices) {
                vertex.x *= unit;
                vertex.y *= unit;
            }
        }
        return primitives;
    }

private:
    float unit;
    GLuint framebuffer = 0;
    GLuint renderbuffer = 0;
};

/// Compares two drawings, to the bit. GL may cut polygons into triangles, so the expected shape is
/// best drawn, too, with plain calls.
/// \return the first difference in words, empty when there is none
inline std::string difference(const std::vector<Feedback::Primitive>& actual,
                              const std::vector<Feedback::Primitive>& expected)
{
    if (actual.size() != expected.size()) {
        return std::to_string(actual.size()) + " primitives instead of " +
               std::to_string(expected.size());
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& a = actual[i].vertices;
        const auto& e = expected[i].vertices;
        if (actual[i].token != expected[i].token || a.size() != e.size()) {
            return "the kind of primitive " + std::to_string(i);
        }
        for (std::size_t k = 0; k < e.size(); ++k) {
            const std::string where =
                " of vertex " + std::to_string(k) + " of primitive " + std::to_string(i);
            if (bits(a[k].x) != bits(e[k].x) || bits(a[k].y) != bits(e[k].y) ||
                bits(a[k].z) != bits(e[k].z)) {
                return "the place" + where;
            }
            for (std::size_t c = 0; c < 4; ++c) {
                if (bits(a[k].color[c]) != bits(e[k].color[c])) {
                    return "the color" + where;
                }
                if (bits(a[k].texture[c]) != bits(e[k].texture[c])) {
                    return "the texture coordinate" + where;
                }
            }
        }
    }
    return "";
}

/// Draws a polygon of four corners with the texture coordinates (0, 0), (1, 0), (1, 1), (0, 1).
/// \param corners  float[4][3]
inline void drawTexturedQuad(const float corners[4][3])
{
    const float texture[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    glBegin(GL_POLYGON);
    for (int i = 0; i < 4; ++i) {
        glTexCoord2fv(texture[i]);
        glVertex3fv(corners[i]);
    }
    glEnd();
}

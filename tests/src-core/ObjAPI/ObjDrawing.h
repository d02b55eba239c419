#pragma once

#include "ObjAPI.h"

#include "GLTest.h"
#include "ObjModel.h"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

/// Starts with the capabilities of the context, as a program does.
class ObjDrawTest : public GLTest, public ObjFixture {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        GL_is_initialized = false;
        obj_init_gl();
    }

    void TearDown() override
    {
        while (obj_num_file() > 0) {
            obj_del_file(0);
        }
        GLTest::TearDown();
    }

    /// A square of two triangles, (0, 0) to (0.5, 0.5), with a line along its lower edge. The
    /// texture coordinates are twice the positions, the normals point to +z.
    static int square()
    {
        const int fi = obj_add_file(nullptr);
        const float corners[4][2] = {{0, 0}, {0.5f, 0}, {0.5f, 0.5f}, {0, 0.5f}};
        for (const auto& corner : corners) {
            const int vi = obj_add_vert(fi);
            const float v[3] = {corner[0], corner[1], 0.25f};
            const float t[2] = {2 * corner[0], 2 * corner[1]};
            const float n[3] = {0, 0, 1};
            obj_set_vert_v(fi, vi, v);
            obj_set_vert_t(fi, vi, t);
            obj_set_vert_n(fi, vi, n);
        }
        obj_add_mtrl(fi);
        obj_add_surf(fi);
        const int triangles[2][3] = {{0, 1, 2}, {0, 2, 3}};
        for (const auto& vi : triangles) {
            obj_set_poly(fi, 0, obj_add_poly(fi, 0), vi);
        }
        const int line[2] = {0, 1};
        obj_set_line(fi, 0, obj_add_line(fi, 0), line);
        return fi;
    }

    /// Gives a property a texture of one texel.
    static GLuint add_map(int fi, int ki)
    {
        GLuint& map = obj::prop(fi, 0, ki)->map;
        glGenTextures(1, &map);
        glBindTexture(GL_TEXTURE_2D, map);
        const unsigned char texel[4] = {255, 255, 255, 255};
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texel);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glBindTexture(GL_TEXTURE_2D, 0);
        return map;
    }

    static std::vector<Feedback::Primitive> drawn(int fi)
    {
        return Feedback::of([fi] { obj_draw_file(fi); });
    }

    /// Primitives as text.
    static std::string print(const std::vector<Feedback::Primitive>& primitives)
    {
        std::string text;
        for (const Feedback::Primitive& primitive : primitives) {
            text += primitive.token == GL_POLYGON_TOKEN ? "triangle" : "line";
            for (const Feedback::Vertex& v : primitive.vertices) {
                char line[200];
                snprintf(line, sizeof line, " (%.0f %.0f, t %.2f %.2f)", static_cast<double>(v.x),
                         static_cast<double>(v.y), static_cast<double>(v.texture[0]),
                         static_cast<double>(v.texture[1]));
                text += line;
            }
            text += '\n';
        }
        return text;
    }

    static constexpr const char* SQUARE =
        "triangle (370 370, t 0.00 0.00) (555 370, t 1.00 0.00) (555 555, t 1.00 1.00)\n"
        "triangle (370 370, t 0.00 0.00) (555 555, t 1.00 1.00) (370 555, t 0.00 1.00)\n"
        "line (370 370, t 0.00 0.00) (555 370, t 1.00 0.00)\n";

    static bool enabled(int unit)
    {
        glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
        return isEnabled(GL_TEXTURE_2D);
    }

    static GLuint bound(int unit)
    {
        glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
        return static_cast<GLuint>(getInteger(GL_TEXTURE_BINDING_2D));
    }

    /// The units back to how GLTest expects them.
    static void reset_units()
    {
        for (int unit = 3; unit >= 0; --unit) {
            glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
            glBindTexture(GL_TEXTURE_2D, 0);
            glDisable(GL_TEXTURE_2D);
            glMatrixMode(GL_TEXTURE);
            glLoadIdentity();
            glMatrixMode(GL_MODELVIEW);
        }
    }

    static std::array<float, 4> material(GLenum what)
    {
        std::array<float, 4> value = {};
        glGetMaterialfv(GL_FRONT, what, value.data());
        std::array<float, 4> back = {};
        glGetMaterialfv(GL_BACK, what, back.data());
        EXPECT_EQ(value, back);
        return value;
    }
};

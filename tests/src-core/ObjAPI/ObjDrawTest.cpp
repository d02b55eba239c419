#include "ObjAPI.h"

#include "ObjDrawing.h"

#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <limits>
#include <utility>

namespace {

using testing::ElementsAre;

// ---- Capabilities -------------------------------------------------------------------------------

TEST(ObjExtensionTest, AnExtensionIsAWholeWord)
{
    EXPECT_TRUE(obj::extension_in("GL_A GL_B", "GL_A"));
    EXPECT_TRUE(obj::extension_in("GL_A GL_B", "GL_B"));
    EXPECT_TRUE(obj::extension_in("GL_A", "GL_A"));
    EXPECT_FALSE(obj::extension_in("GL_A GL_B", "GL_C"));
    EXPECT_FALSE(obj::extension_in("GL_AB", "GL_A"));
    EXPECT_TRUE(obj::extension_in("GL_AB GL_A", "GL_A"));
    EXPECT_FALSE(obj::extension_in("GL_", "GL_A"));
    EXPECT_FALSE(obj::extension_in("", "GL_A"));
    EXPECT_FALSE(obj::extension_in(nullptr, "GL_A"));
}

TEST(ObjExtensionTest, TheSearchGoesOnBehindAMismatch)
{
    EXPECT_TRUE(obj::extension_in("xGL_A", "GL_A"));  // the first x is the mismatch
    EXPECT_FALSE(obj::extension_in("GGL_A", "GL_A")); // the second G is, and is not looked at again
    EXPECT_FALSE(obj::extension_in("aab", "ab"));
    EXPECT_TRUE(obj::extension_in("a ab", "ab"));
}

TEST_F(ObjDrawTest, TheContextIsAskedOnce)
{
    EXPECT_TRUE(GL_is_initialized);
    EXPECT_TRUE(GL_has_vertex_buffer_object);
    EXPECT_TRUE(GL_has_multitexture);
    EXPECT_EQ(GL_max_texture_image_units, getInteger(GL_MAX_TEXTURE_IMAGE_UNITS));
    GL_max_texture_image_units = 1;
    obj_init_gl();
    EXPECT_EQ(GL_max_texture_image_units, 1);
}

// ---- Geometry -----------------------------------------------------------------------------------

TEST_F(ObjDrawTest, TrianglesThenLinesAreDrawnFromABuffer)
{
    const int fi = square();
    EXPECT_EQ(print(drawn(fi)), SQUARE);
    const GLuint vbo = obj::file(fi)->vbo;
    ASSERT_TRUE(glIsBufferARB(vbo));
    EXPECT_EQ(print(drawn(fi)), SQUARE);
    EXPECT_EQ(obj::file(fi)->vbo, vbo);
    glBindBufferARB(GL_ARRAY_BUFFER_ARB, vbo);
    GLint value = 0;
    glGetBufferParameterivARB(GL_ARRAY_BUFFER_ARB, GL_BUFFER_SIZE_ARB, &value);
    EXPECT_EQ(value, 4 * 44);
    glGetBufferParameterivARB(GL_ARRAY_BUFFER_ARB, GL_BUFFER_USAGE_ARB, &value);
    EXPECT_EQ(value, GL_STATIC_DRAW_ARB);
    obj_vert got[4];
    glGetBufferSubDataARB(GL_ARRAY_BUFFER_ARB, 0, sizeof got, got);
    EXPECT_EQ(std::memcmp(got, obj::file(fi)->vv, sizeof got), 0);
    glBindBufferARB(GL_ARRAY_BUFFER_ARB, 0);
}

TEST_F(ObjDrawTest, WithoutBuffersTheyAreDrawnFromClientMemory)
{
    GL_has_vertex_buffer_object = false;
    const int fi = square();
    EXPECT_EQ(print(drawn(fi)), SQUARE);
    EXPECT_EQ(obj::file(fi)->vbo, 0U);
}

GLuint buffer_without_memory = 0;

/// A GL that has no memory for the buffer that is bound.
void GLAPIENTRY upload_without_memory(GLenum target, GLsizeiptrARB, const void*, GLenum)
{
    ASSERT_EQ(target, static_cast<GLenum>(GL_ARRAY_BUFFER_ARB));
    GLint bound = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING_ARB, &bound);
    buffer_without_memory = static_cast<GLuint>(bound);
}

TEST_F(ObjDrawTest, WithoutMemoryForABufferTheyAreDrawnFromClientMemory)
{
    const int fi = square();
    const auto upload = std::exchange(glBufferDataARB, upload_without_memory);
    const auto primitives = drawn(fi);
    glBufferDataARB = upload;
    EXPECT_EQ(print(primitives), SQUARE);
    EXPECT_EQ(obj::file(fi)->vbo, 0U);
    EXPECT_NE(buffer_without_memory, 0U);
    EXPECT_FALSE(glIsBufferARB(buffer_without_memory));
    EXPECT_EQ(getInteger(GL_ARRAY_BUFFER_BINDING_ARB), 0);
    // With memory there is a buffer again.
    EXPECT_EQ(print(drawn(fi)), SQUARE);
    EXPECT_NE(obj::file(fi)->vbo, 0U);
}

TEST_F(ObjDrawTest, AChangedVertexThrowsTheBufferAway)
{
    const int fi = square();
    const float moved[3] = {0.5f, 0.5f, 0.5f};
    const std::function<void()> changes[] = {
        [=] { obj_set_vert_v(fi, 2, moved); }, [=] { obj_set_vert_t(fi, 2, moved); },
        [=] { obj_set_vert_n(fi, 2, moved); }, [=] { obj_add_vert(fi); },
        [=] { obj_del_vert(fi, 4); }};
    for (const auto& change : changes) {
        obj_init_file(fi);
        const GLuint vbo = obj::file(fi)->vbo;
        ASSERT_TRUE(glIsBufferARB(vbo));
        change();
        EXPECT_EQ(obj::file(fi)->vbo, 0U);
        EXPECT_FALSE(glIsBufferARB(vbo));
    }
    // Drawn from client memory, then from a new buffer.
    const float far[3] = {1, 1, 0};
    obj_set_vert_v(fi, 2, far);
    const auto by_hand = Feedback::of([fi] {
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        obj_draw_vert(fi);
        obj_draw_surf(fi, 0);
        glPopClientAttrib();
    });
    EXPECT_EQ(obj::file(fi)->vbo, 0U);
    EXPECT_EQ(by_hand.at(0).vertices.at(2).x, 740);
    EXPECT_EQ(print(drawn(fi)), print(by_hand));
    EXPECT_NE(obj::file(fi)->vbo, 0U);
}

TEST_F(ObjDrawTest, DeletingAFileDeletesItsBuffer)
{
    const int fi = square();
    obj_init_file(fi);
    const GLuint vbo = obj::file(fi)->vbo;
    ASSERT_TRUE(glIsBufferARB(vbo));
    obj_del_file(fi);
    EXPECT_FALSE(glIsBufferARB(vbo));
}

TEST_F(ObjDrawTest, SurfacesAreDrawnInStoreOrder)
{
    const int fi = square();
    obj_add_surf(fi);
    const int line[2] = {2, 3};
    obj_set_line(fi, 1, obj_add_line(fi, 1), line);
    obj_add_surf(fi); // empty
    EXPECT_EQ(print(drawn(fi)),
              std::string(SQUARE) + "line (555 555, t 1.00 1.00) (370 555, t 0.00 1.00)\n");
}

TEST_F(ObjDrawTest, PrimitivesWithoutTheirVerticesAreLeftOut)
{
    for (const bool buffers : {true, false}) {
        GL_has_vertex_buffer_object = buffers;
        const int fi = square();
        for (const int bad : {4, -1, INT_MAX, INT_MIN}) {
            const int vi[3] = {0, 1, bad};
            obj_set_poly(fi, 0, obj_add_poly(fi, 0), vi);
            obj_set_line(fi, 0, obj_add_line(fi, 0), vi + 1);
        }
        const int whole[3] = {1, 2, 3};
        obj_set_poly(fi, 0, obj_add_poly(fi, 0), whole);
        const auto primitives = drawn(fi);
        ASSERT_EQ(primitives.size(), 4U);
        EXPECT_EQ(print({primitives[0], primitives[1], primitives[3]}), SQUARE);
        obj_del_file(fi);
    }
}

TEST_F(ObjDrawTest, AnEmptyModelDrawsNothing)
{
    for (const bool buffers : {true, false}) {
        GL_has_vertex_buffer_object = buffers;
        const int fi = obj_add_file(nullptr);
        EXPECT_EQ(print(drawn(fi)), "");
        obj_draw_axes(fi, 1);
    }
}

TEST_F(ObjDrawTest, TheTangentIsVertexAttribute6)
{
    const int fi = square();
    for (int vi = 0; vi < 4; ++vi) {
        const float u[3] = {0.2f, 0.4f, 0.8f};
        std::copy_n(u, 3, obj::vert(fi, vi)->u);
    }
    // A vertex program that shows the attribute as the color.
    const char program[] = "!!ARBvp1.0\n"
                           "MOV result.position, vertex.position;\n"
                           "MOV result.color, vertex.attrib[6];\n"
                           "END\n";
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, name);
    glProgramStringARB(GL_VERTEX_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, sizeof program - 1,
                       program);
    glEnable(GL_VERTEX_PROGRAM_ARB);
    for (const bool buffers : {true, false}) {
        GL_has_vertex_buffer_object = buffers;
        obj_set_vert_n(fi, 0, obj::vert(fi, 0)->n); // no buffer
        glClear(GL_COLOR_BUFFER_BIT);
        obj_draw_file(fi);
        const auto rgba = pixel(450, 450);
        EXPECT_NEAR(rgba[0], 51, 1);
        EXPECT_NEAR(rgba[1], 102, 1);
        EXPECT_NEAR(rgba[2], 204, 1);
    }
    glDisable(GL_VERTEX_PROGRAM_ARB);
    glDeleteProgramsARB(1, &name);
}

TEST_F(ObjDrawTest, TheArraysPointIntoTheVertices)
{
    const int fi = square();
    for (const bool buffers : {true, false}) {
        GL_has_vertex_buffer_object = buffers;
        obj_set_vert_n(fi, 0, obj::vert(fi, 0)->n);
        obj_init_file(fi);
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        obj_draw_vert(fi);
        const char* base = buffers ? nullptr : reinterpret_cast<const char*>(obj::file(fi)->vv);
        const auto offset = [base](GLenum what) {
            GLvoid* pointer = nullptr;
            glGetPointerv(what, &pointer);
            return static_cast<const char*>(pointer) - base;
        };
        EXPECT_EQ(offset(GL_NORMAL_ARRAY_POINTER), 12);
        EXPECT_EQ(offset(GL_TEXTURE_COORD_ARRAY_POINTER), 24);
        EXPECT_EQ(offset(GL_VERTEX_ARRAY_POINTER), 32);
        GLvoid* tangent = nullptr;
        glGetVertexAttribPointervARB(6, GL_VERTEX_ATTRIB_ARRAY_POINTER_ARB, &tangent);
        EXPECT_EQ(static_cast<const char*>(tangent) - base, 0);
        const auto attribute = [](GLenum what) {
            GLint value = -1;
            glGetVertexAttribivARB(6, what, &value);
            return value;
        };
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_ENABLED_ARB), 1);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_SIZE_ARB), 3);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_STRIDE_ARB), 44);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_NORMALIZED_ARB), 0);
        EXPECT_EQ(getInteger(GL_VERTEX_ARRAY_STRIDE), 44);
        EXPECT_EQ(getInteger(GL_VERTEX_ARRAY_SIZE), 3);
        EXPECT_EQ(getInteger(GL_TEXTURE_COORD_ARRAY_SIZE), 2);
        EXPECT_EQ(static_cast<GLuint>(getInteger(GL_ARRAY_BUFFER_BINDING_ARB)), obj::file(fi)->vbo);
        glPopClientAttrib();
    }
}

// ---- Materials ----------------------------------------------------------------------------------

TEST_F(ObjDrawTest, TheColorsBecomeTheMaterial)
{
    const int fi = square();
    for (int ki = 0; ki < 4; ++ki) {
        const auto value = static_cast<float>(ki) / 8;
        const float c[4] = {value, 0.5f, 0.25f, 0.75f};
        obj_set_mtrl_c(fi, 0, ki, c);
    }
    obj_draw_mtrl(fi, 0);
    EXPECT_THAT(material(GL_DIFFUSE), ElementsAre(0, 0.5f, 0.25f, 0.75f));
    EXPECT_THAT(material(GL_AMBIENT), ElementsAre(0.125f, 0.5f, 0.25f, 0.75f));
    EXPECT_THAT(material(GL_EMISSION), ElementsAre(0.25f, 0.5f, 0.25f, 0.75f));
    EXPECT_THAT(material(GL_SPECULAR), ElementsAre(0.375f, 0.5f, 0.25f, 0.75f));
    EXPECT_EQ(material(GL_SHININESS)[0], 8);
}

TEST_F(ObjDrawTest, AShininessOutOfRangeBecomesTheNearestInIt)
{
    const int fi = square();
    for (const auto& [given, expected] : {std::pair{1000.0f, 128.0f}, {-5.0f, 0.0f}}) {
        const float c[4] = {given, 0, 0, 0};
        obj_set_mtrl_c(fi, 0, 4, c);
        obj_draw_mtrl(fi, 0);
        EXPECT_EQ(material(GL_SHININESS)[0], expected);
    }
}

TEST_F(ObjDrawTest, AShininessThatIsNoNumberIsNone)
{
    const int fi = square();
    const float c[4] = {std::numeric_limits<float>::quiet_NaN(), 0, 0, 0};
    obj_set_mtrl_c(fi, 0, 4, c);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 5);
    obj_draw_mtrl(fi, 0);
    EXPECT_EQ(material(GL_SHININESS)[0], 0);
}

TEST_F(ObjDrawTest, ASurfaceWithoutAMaterialIsDrawnWithTheStateAsItIs)
{
    const int fi = square();
    const float before[4] = {0.125f, 0.25f, 0.5f, 1};
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, before);
    for (const int mi : {1, -1}) {
        obj_set_surf(fi, 0, mi);
        EXPECT_EQ(print(drawn(fi)), SQUARE);
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        obj_draw_vert(fi);
        obj_draw_surf(fi, 0);
        glPopClientAttrib();
        EXPECT_THAT(material(GL_DIFFUSE), ElementsAre(0.125f, 0.25f, 0.5f, 1));
    }
}

TEST_F(ObjDrawTest, MapsGoToAsManyUnitsAsThereAre)
{
    const int fi = square();
    GLuint maps[5];
    for (int ki = 0; ki < 5; ++ki) {
        maps[ki] = add_map(fi, ki);
    }
    const GLuint expected[] = {maps[0], maps[1], maps[3], maps[4]};
    for (const int units : {0, 1, 2, 3, 4, 16}) {
        reset_units();
        GL_max_texture_image_units = units;
        obj_draw_mtrl(fi, 0);
        EXPECT_EQ(getInteger(GL_ACTIVE_TEXTURE_ARB), GL_TEXTURE0_ARB);
        for (int unit = 0; unit < 4; ++unit) {
            EXPECT_EQ(enabled(unit), unit < units) << unit << " of " << units;
            EXPECT_EQ(bound(unit), unit < units ? expected[unit] : 0) << unit << " of " << units;
        }
        for (int unit = 4; unit < 8; ++unit) {
            EXPECT_FALSE(enabled(unit));
        }
    }
    reset_units();
}

TEST_F(ObjDrawTest, TheLastUnitWithAMapStaysActive)
{
    const int fi = square();
    add_map(fi, 1);
    add_map(fi, 4);
    obj_draw_mtrl(fi, 0);
    EXPECT_EQ(getInteger(GL_ACTIVE_TEXTURE_ARB), GL_TEXTURE1_ARB);
    EXPECT_FALSE(enabled(0));
    EXPECT_FALSE(enabled(2));
    reset_units();
}

TEST_F(ObjDrawTest, WithoutMultitexturingOnlyTheDiffuseMapIsBound)
{
    const int fi = square();
    const GLuint map = add_map(fi, 0);
    add_map(fi, 1);
    GL_has_multitexture = false;
    obj_draw_mtrl(fi, 0);
    EXPECT_EQ(bound(0), map);
    EXPECT_TRUE(enabled(0));
    EXPECT_FALSE(enabled(1));
    reset_units();
}

TEST_F(ObjDrawTest, AnEmissiveMapIsNeverBound)
{
    const int fi = square();
    add_map(fi, 2);
    obj_draw_mtrl(fi, 0);
    for (int unit = 3; unit >= 0; --unit) {
        EXPECT_FALSE(enabled(unit));
        EXPECT_EQ(bound(unit), 0U);
    }
}

TEST_F(ObjDrawTest, AMaterialWithoutMapsLeavesTheUnitsAsTheyWere)
{
    const int fi = square();
    const GLuint map = add_map(fi, 0);
    obj_add_mtrl(fi);
    obj_draw_mtrl(fi, 0);
    obj_draw_mtrl(fi, 1);
    EXPECT_EQ(bound(0), map);
    EXPECT_TRUE(enabled(0));
    reset_units();
}

TEST_F(ObjDrawTest, OptionOffsetAndScaleOfAMapAreSet)
{
    const int fi = square();
    const GLuint map = add_map(fi, 0);
    const float o[3] = {0.5f, 0.25f, 3};
    const float s[3] = {2, 4, 1};
    obj_set_mtrl_o(fi, 0, 0, o);
    obj_set_mtrl_s(fi, 0, 0, s);
    for (const auto& [opt, wrap] : {std::pair{0U, GL_REPEAT},
                                    {1U, GL_CLAMP_TO_EDGE},
                                    {2U, GL_REPEAT},
                                    {3U, GL_CLAMP_TO_EDGE}}) {
        obj_set_mtrl_opt(fi, 0, 0, opt);
        glMatrixMode(GL_PROJECTION);
        obj_draw_prop(fi, 0, 0);
        EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_MODELVIEW);
        EXPECT_EQ(bound(0), map);
        for (const GLenum what : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
            GLint value = 0;
            glGetTexParameteriv(GL_TEXTURE_2D, what, &value);
            EXPECT_EQ(value, wrap);
        }
        EXPECT_THAT(getMatrix(GL_TEXTURE_MATRIX),
                    ElementsAre(2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1, 0, 0.5f, 0.25f, 3, 1));
    }
    reset_units();
    // The coordinate (1, 1) becomes (1, 1) * (2, 4) + (0.5, 0.25).
    EXPECT_EQ(drawn(fi).at(0).vertices.at(2).texture[0], 2.5f);
    EXPECT_EQ(drawn(fi).at(0).vertices.at(2).texture[1], 4.25f);
}

TEST_F(ObjDrawTest, APropertyWithoutAMapChangesNothing)
{
    const int fi = square();
    glMatrixMode(GL_PROJECTION);
    obj_draw_prop(fi, 0, 0);
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_PROJECTION);
    EXPECT_FALSE(isEnabled(GL_TEXTURE_2D));
    glMatrixMode(GL_MODELVIEW);
}

TEST_F(ObjDrawTest, ColorTrackingIsOffWhileAModelIsDrawn)
{
    const int fi = square();
    const float green[4] = {0, 1, 0, 1};
    obj_set_mtrl_c(fi, 0, 2, green); // shines by itself
    const float black[4] = {0, 0, 0, 1};
    obj_set_mtrl_c(fi, 0, 0, black);
    obj_set_mtrl_c(fi, 0, 1, black);
    glEnable(GL_LIGHTING);
    glColorMaterial(GL_FRONT_AND_BACK, GL_EMISSION);
    glEnable(GL_COLOR_MATERIAL);
    glColor4f(1, 0, 0, 1);
    obj_draw_file(fi);
    EXPECT_THAT(pixel(450, 450), ElementsAre(0, 255, 0, 255));
    EXPECT_TRUE(isEnabled(GL_COLOR_MATERIAL));
    glDisable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black);
}

// ---- Axes ---------------------------------------------------------------------------------------

TEST_F(ObjDrawTest, AxesAreLinesAlongTangentAcrossAndNormal)
{
    const int fi = obj_add_file(nullptr);
    obj_add_vert(fi);
    obj_vert& vertex = *obj::vert(fi, 0);
    vertex = {{1, 0, 0}, {0, 0, 1}, {0, 0}, {0.25f, 0.5f, 0}}; // n x u = (0, 1, 0)
    glEnable(GL_LIGHTING);
    glEnable(GL_TEXTURE_2D);
    const auto lines = Feedback::of([fi] { obj_draw_axes(fi, 0.25f); });
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    ASSERT_EQ(lines.size(), 3U);
    const float ends[3][3] = {{555, 555, 0.5f}, {462.5f, 647.5f, 0.5f}, {462.5f, 555, 0.625f}};
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(lines[i].vertices.size(), 2U);
        EXPECT_EQ(lines[i].vertices[0].x, 462.5f);
        EXPECT_EQ(lines[i].vertices[0].y, 555);
        EXPECT_EQ(lines[i].vertices[0].z, 0.5f);
        EXPECT_EQ(lines[i].vertices[1].x, ends[i][0]);
        EXPECT_EQ(lines[i].vertices[1].y, ends[i][1]);
        EXPECT_EQ(lines[i].vertices[1].z, ends[i][2]);
        for (const Feedback::Vertex& v : lines[i].vertices) {
            for (std::size_t k = 0; k < 4; ++k) {
                EXPECT_EQ(v.color[k], k == 3 || k == i ? 1 : 0);
            }
        }
    }
}

} // namespace

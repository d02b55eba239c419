#include "ObjAPI.h"

#include "ObjDrawing.h"

#include <functional>

namespace {

/// What drawing could touch, as text.
class StateTest : public ObjDrawTest {
protected:
    static void add(std::string& text, const char* label, const float* values, int count)
    {
        text += label;
        for (int i = 0; i < count; ++i) {
            text += ' ' + std::to_string(values[i]);
        }
        text += '\n';
    }

    static std::string state()
    {
        std::string text;
        const auto integer = [&text](const char* label, GLenum what) {
            text += std::string(label) + ' ' + std::to_string(getInteger(what)) + '\n';
        };
        integer("matrix mode", GL_MATRIX_MODE);
        integer("array buffer", GL_ARRAY_BUFFER_BINDING_ARB);
        integer("element buffer", GL_ELEMENT_ARRAY_BUFFER_BINDING_ARB);
        integer("client unit", GL_CLIENT_ACTIVE_TEXTURE_ARB);
        integer("attribute depth", GL_ATTRIB_STACK_DEPTH);
        integer("client depth", GL_CLIENT_ATTRIB_STACK_DEPTH);
        integer("vertex stride", GL_VERTEX_ARRAY_STRIDE);
        integer("normal stride", GL_NORMAL_ARRAY_STRIDE);
        integer("coordinate stride", GL_TEXTURE_COORD_ARRAY_STRIDE);
        for (const GLenum what : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_TEXTURE_COORD_ARRAY,
                                  GL_COLOR_ARRAY, GL_LIGHTING, GL_COLOR_MATERIAL, GL_TEXTURE_2D}) {
            text += std::to_string(what) + (isEnabled(what) ? " on\n" : " off\n");
        }
        GLint attribute = 0;
        glGetVertexAttribivARB(6, GL_VERTEX_ATTRIB_ARRAY_ENABLED_ARB, &attribute);
        text += std::string("attribute 6 ") + std::to_string(attribute) + '\n';
        for (const GLenum what : {GL_DIFFUSE, GL_AMBIENT, GL_EMISSION, GL_SPECULAR, GL_SHININESS}) {
            const auto value = material(what);
            add(text, "material", value.data(), 4);
        }
        float color[4];
        glGetFloatv(GL_CURRENT_COLOR, color);
        add(text, "color", color, 4);
        add(text, "modelview", getMatrix(GL_MODELVIEW_MATRIX).data(), 16);
        const GLint active = getInteger(GL_ACTIVE_TEXTURE_ARB);
        integer("active unit", GL_ACTIVE_TEXTURE_ARB);
        for (int unit = 0; unit < 4; ++unit) {
            text += std::string("unit ") + std::to_string(unit) + ' ' +
                    std::to_string(bound(unit)) + (enabled(unit) ? " on\n" : " off\n");
            add(text, "matrix", getMatrix(GL_TEXTURE_MATRIX).data(), 16);
        }
        glActiveTextureARB(static_cast<GLenum>(active));
        return text;
    }

    /// Calls \p draw in a state where everything differs from the defaults and from what drawing
    /// sets, and expects that state again.
    static void expect_restored(const std::function<void()>& draw)
    {
        GLuint buffers[2];
        glGenBuffersARB(2, buffers);
        glBindBufferARB(GL_ARRAY_BUFFER_ARB, buffers[0]);
        glBufferDataARB(GL_ARRAY_BUFFER_ARB, 1000, nullptr, GL_STATIC_DRAW_ARB);
        glBindBufferARB(GL_ELEMENT_ARRAY_BUFFER_ARB, buffers[1]);
        glBufferDataARB(GL_ELEMENT_ARRAY_BUFFER_ARB, 1000, nullptr, GL_STATIC_DRAW_ARB);
        glVertexPointer(2, GL_FLOAT, 20, nullptr);
        GLuint textures[4];
        glGenTextures(4, textures);
        for (int unit = 0; unit < 4; ++unit) {
            glActiveTextureARB(GL_TEXTURE0_ARB + static_cast<GLenum>(unit));
            glBindTexture(GL_TEXTURE_2D, textures[unit]);
            glMatrixMode(GL_TEXTURE);
            glLoadIdentity();
            glTranslatef(static_cast<float>(unit), 5, 6);
        }
        glActiveTextureARB(GL_TEXTURE2_ARB);
        glMatrixMode(GL_PROJECTION);
        const float color[4] = {0.25f, 0.5f, 0.75f, 0.5f};
        glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE, color);
        glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 3);
        glColor4fv(color);
        glEnable(GL_LIGHTING);

        const std::string before = state();
        draw();
        EXPECT_EQ(state(), before);

        glDisable(GL_LIGHTING);
        glDeleteBuffersARB(2, buffers);
        reset_units();
        glDeleteTextures(4, textures);
        const float defaults[2][4] = {{0.2f, 0.2f, 0.2f, 1}, {0.8f, 0.8f, 0.8f, 1}};
        glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, defaults[0]);
        glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, defaults[1]);
        glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 0);
    }
};

TEST_F(StateTest, DrawingAFileLeavesTheStateAsItWas)
{
    for (const bool buffers : {true, false}) {
        for (const bool multitexture : {true, false}) {
            const int fi = square();
            for (int ki = 0; ki < 5; ++ki) {
                add_map(fi, ki);
            }
            GL_has_vertex_buffer_object = buffers;
            GL_has_multitexture = multitexture;
            expect_restored([fi] { obj_draw_file(fi); });
        }
    }
}

TEST_F(StateTest, DrawingAFileWithFewerUnitsLeavesTheStateAsItWas)
{
    for (const int units : {0, 1, 2}) {
        const int fi = square();
        for (int ki = 0; ki < 5; ++ki) {
            add_map(fi, ki);
        }
        GL_max_texture_image_units = units;
        expect_restored([fi] { obj_draw_file(fi); });
    }
}

TEST_F(StateTest, DrawingAxesLeavesTheStateAsItWas)
{
    const int fi = square();
    expect_restored([fi] { obj_draw_axes(fi, 1); });
    EXPECT_NE(obj::file(fi)->vbo, 0U);
}

TEST_F(StateTest, MakingABufferLeavesTheStateAsItWas)
{
    const int fi = square();
    expect_restored([fi] { obj_init_file(fi); });
}

TEST_F(StateTest, ABoundElementBufferDoesNotMatter)
{
    const int fi = square();
    expect_restored([fi] { EXPECT_EQ(print(drawn(fi)), SQUARE); });
}

} // namespace

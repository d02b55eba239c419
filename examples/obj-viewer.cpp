// obj-viewer: loads an OBJ model, turns it on a turntable, and writes it back.

#include "FreeType.h"
#include "ObjAPI.h"
#include "PivotNode.h"
#include "PlainNode.h"
#include "SceneWindow.h"
#include "Usage.h"
#include "Vector.h"

#include <FL/Fl.H>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

namespace {

freetype::font_data font;

Vec3 positionOf(int file, int vertex)
{
    float v[3];
    obj_get_vert_v(file, vertex, v);
    return {v[0], v[1], v[2]};
}

/// Gives each vertex that the file has no normal for, and whose normal is NaN for that, the mean
/// normal of its triangles.
//! [model]
void addMissingNormals(int file)
{
    std::vector<Vec3> sums(static_cast<std::size_t>(obj_num_vert(file)));
    for (int si = 0; si < obj_num_surf(file); ++si) {
        for (int pi = 0; pi < obj_num_poly(file, si); ++pi) {
            int corners[3];
            obj_get_poly(file, si, pi, corners);
            const Vec3 a = positionOf(file, corners[0]);
            const Vec3 ab = positionOf(file, corners[1]) - a;
            const Vec3 ac = positionOf(file, corners[2]) - a;
            for (const int vi : corners) {
                Vec3& sum = sums[static_cast<std::size_t>(vi)];
                sum = sum + Vec3::CrossProduct(ab, ac);
            }
        }
    }
    for (int vi = 0; vi < obj_num_vert(file); ++vi) {
        float normal[3];
        obj_get_vert_n(file, vi, normal);
        if (!std::isfinite(normal[0])) {
            const Vec3& sum = sums[static_cast<std::size_t>(vi)];
            const float mean[3] = {sum.x, sum.y, sum.z};
            obj_set_vert_n(file, vi, mean);
        }
    }
    obj_proc_file(file); // normalizes the normals, and computes the tangents
}
//! [model]

class Model final : public PlainNode {
public:
    std::string name; ///< of the OBJ file, in the current folder
    int file = -1;    ///< index in the model store
    float radius = 0; ///< units of the model
    bool axes = false;

    explicit Model(std::string fileName) : name(std::move(fileName)) {}

    int cull() override
    {
        if (file == -1) {
            load();
            return -1; // GL has this frame's transform already; the new one counts in the next
        }
        draw();
        return 1;
    }

    /// Reads the model, moves its center to the origin, and scales its radius to 0.4. Called by the
    /// first cull: textures need a GL context.
    void load()
    {
        file = obj_add_file(name.c_str());
        addMissingNormals(file);
        const int count = obj_num_vert(file);
        Vec3 center;
        for (int vi = 0; vi < count; ++vi) {
            center = center + positionOf(file, vi) / static_cast<float>(count);
        }
        for (int vi = 0; vi < count; ++vi) {
            radius = std::max(radius, Vec3::EuclDistance(center, positionOf(file, vi)));
        }
        const float factor = radius > 0 ? 0.4f / radius : 1;
        scale(factor, factor, factor);
        translate(-center.x, -center.y, -center.z);
    }

    void draw() override
    {
        glPushAttrib(GL_ENABLE_BIT | GL_LIGHTING_BIT | GL_COLOR_BUFFER_BIT | GL_LINE_BIT);
        constexpr GLenum NEEDED[] = {GL_DEPTH_TEST, GL_LIGHTING, GL_LIGHT0, GL_NORMALIZE, GL_BLEND};
        for (const GLenum what : NEEDED) {
            glEnable(what);
        }
        glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA); // opaque surfaces come first
        obj_draw_file(file);
        if (axes) {
            glLineWidth(2);
            obj_draw_axes(file, 0.2f * radius);
        }
        glPopAttrib();
    }

    void write()
    {
        const std::string copy = std::filesystem::path(name).stem().string() + "-copy";
        obj_write_file(file, (copy + ".obj").c_str(), (copy + ".mtl").c_str());
        const bool written = std::filesystem::exists(copy + ".obj");
        std::printf("%s %s.obj and %s.mtl\n", written ? "wrote" : "cannot write", copy.c_str(),
                    copy.c_str());
    }
};

/// The framework's window, with two more keys and with text over the scene.
//! [window]
class Viewer final : public SceneWindow {
public:
    explicit Viewer(Model& shown) : SceneWindow(740, 740), model(shown) {}

    int handle(int event) override
    {
        if (event == FL_KEYDOWN && Fl::event_key() == 'a') {
            model.axes = !model.axes;
        } else if (event == FL_KEYDOWN && Fl::event_key() == 'w' && model.file != -1) {
            model.write();
        }
        return Window::handle(event);
    }

    void draw() override
    {
        //! [text]
        const bool newContext = valid() == 0;
        Window::draw(); // loads the model in the first frame
        if (newContext) {
            font.init(KELPIX_FONT, 12);
        }
        glColor3f(1, 0.9f, 0.7f);
        freetype::print(1, font, 16, 73, "%.100s\nvertices: %d\nsurfaces: %d\nmaterials: %d",
                        model.name.c_str(), obj_num_vert(model.file), obj_num_surf(model.file),
                        obj_num_mtrl(model.file));
        //! [text]
    }

private:
    Model& model;
};
//! [window]

/// \return the exit status
int show(const std::filesystem::path& path)
{
    if (path.has_parent_path()) {
        std::filesystem::current_path(path.parent_path()); // materials refer to files beside it
    }
    PivotNode turntable;
    turntable.setUpdateFunc([](Node* node) { node->rotate(0, 1, 0, 1); });
    Model model(path.filename());
    turntable.attachChild(&model);

    Viewer window(model);
    window.pivot.rotate(1, 0, 0, 20); // seen a little from above
    window.pivot.attachChild(&turntable);
    return window.run() ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[])
{
    constexpr const char* USAGE = "usage: obj-viewer FILE.obj\n"
                                  "Shows the model in that file.\n";
    if (const auto status = answerUsage(argc, argv, {1}, USAGE)) {
        return *status;
    }
    std::error_code error;
    if (!std::filesystem::is_regular_file(argv[1], error)) {
        std::fprintf(stderr, "obj-viewer: there is no file %s\n", argv[1]);
        return 1;
    }
    std::puts("obj-viewer: a model on a turntable\n"
              "  a      shows the axes of each vertex: tangent red, normal blue, the third green\n"
              "  w      writes the model and its materials\n"
              "  wheel  zooms\n"
              "  drag   with v moves, with z, x or c turns the model (button first, then key)\n"
              "  q      ends");
    try {
        return show(argv[1]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "obj-viewer: %s\n", failure.what());
        return 1;
    }
}

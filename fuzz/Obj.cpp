/// The input is a model (model.obj), its material library (m.mtl) and its maps (a.png, b.jpg), in
/// this order, divided by lines "@@@".

#include "Harness.h"
#include "ObjAPI.h"
#include "Textures.h"

#include <png.h>

extern "C" {
png_structp __real_png_create_read_struct(const char* version, void* data, png_error_ptr error,
                                          png_error_ptr warning);
png_structp __wrap_png_create_read_struct(const char* version, void* data, png_error_ptr error,
                                          png_error_ptr warning)
{
    return fuzz::memory::runsOut() ? nullptr
                                   : __real_png_create_read_struct(version, data, error, warning);
}
png_infop __real_png_create_info_struct(png_const_structrp png);
png_infop __wrap_png_create_info_struct(png_const_structrp png)
{
    return fuzz::memory::runsOut() ? nullptr : __real_png_create_info_struct(png);
}
}

namespace {

void checkModel(int fi)
{
    for (int si = 0; si < obj_num_surf(fi); ++si) {
        fuzz::expect(obj_get_surf(fi, si) < obj_num_mtrl(fi), "the material is there");
        for (int pi = 0; pi < obj_num_poly(fi, si); ++pi) {
            int vi[3];
            obj_get_poly(fi, si, pi, vi);
            for (const int i : vi) {
                fuzz::expect(0 <= i && i < obj_num_vert(fi), "the corner is there");
            }
        }
        for (int li = 0; li < obj_num_line(fi, si); ++li) {
            int vi[2];
            obj_get_line(fi, si, li, vi);
            for (const int i : vi) {
                fuzz::expect(0 <= i && i < obj_num_vert(fi), "the end is there");
            }
        }
    }
}

} // namespace

void fuzz::test(std::string_view input)
{
    const TextureCheck textures;
    memory::most = std::size_t{1} << 20; // each usemtl reads its images anew
    const char* const names[] = {"model.obj", "m.mtl", "a.png", "b.jpg"};
    const std::vector<std::string_view> files = parts(input);
    for (std::size_t i = 0; i < std::min<std::size_t>(files.size(), 4) && !input.empty(); ++i) {
        place(names[i], files[i]);
    }
    const int before = obj_num_file();
    const int fi = call([&] { return obj_add_file((folder() + names[0]).c_str()); });
    if (fi >= 0) {
        checkModel(fi);
        obj_norm_file(fi);
        obj_del_file(fi);
    }
    expect(obj_num_file() == before, "nothing is left");
}

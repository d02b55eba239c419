/// The input is a model (model.obj), its material library (m.mtl) and its maps (a.png, b.jpg), in
/// this order, divided by lines "@@@".

#include "Harness.h"
#include "ObjAPI.h"

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
    const char* const names[] = {"model.obj", "m.mtl", "a.png", "b.jpg"};
    const std::vector<std::string_view> files = parts(input);
    for (std::size_t i = 0; i < std::min<std::size_t>(files.size(), 4); ++i) {
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

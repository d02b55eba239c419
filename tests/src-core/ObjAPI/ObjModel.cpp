#include "ObjModel.h"

#include "Bits.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

Model model_of(int fi)
{
    Model model;
    for (int mi = 0; mi < obj_num_mtrl(fi); ++mi) {
        Model::Material material;
        if (const char* name = obj_get_mtrl_name(fi, mi)) {
            material.name = name;
        }
        for (int ki = 0; ki < 5; ++ki) {
            Model::Property& p = material.kv[static_cast<std::size_t>(ki)];
            const char* map_name = obj::prop(fi, mi, ki)->str;
            p.map_name = map_name == nullptr ? "(none)" : map_name;
            p.opt = static_cast<int>(obj_get_mtrl_opt(fi, mi, ki));
            obj_get_mtrl_c(fi, mi, ki, p.c.data());
            obj_get_mtrl_o(fi, mi, ki, p.o.data());
            obj_get_mtrl_s(fi, mi, ki, p.s.data());
        }
        model.materials.push_back(material);
    }
    for (int si = 0; si < obj_num_surf(fi); ++si) {
        Model::Surface surface;
        surface.mi = obj_get_surf(fi, si);
        for (int pi = 0; pi < obj_num_poly(fi, si); ++pi) {
            obj_get_poly(fi, si, pi, surface.triangles.emplace_back().data());
        }
        for (int li = 0; li < obj_num_line(fi, si); ++li) {
            obj_get_line(fi, si, li, surface.lines.emplace_back().data());
        }
        model.surfaces.push_back(surface);
    }
    for (int vi = 0; vi < obj_num_vert(fi); ++vi) {
        Model::Vertex vertex;
        std::copy_n(obj::vert(fi, vi)->u, 3, vertex.u.begin());
        obj_get_vert_n(fi, vi, vertex.n.data());
        obj_get_vert_t(fi, vi, vertex.t.data());
        obj_get_vert_v(fi, vi, vertex.v.data());
        model.vertices.push_back(vertex);
    }
    return model;
}

namespace {

template<std::size_t N>
void print(std::ostream& out, const char* label, const std::array<float, N>& values)
{
    out << ' ' << label;
    for (const float value : values) {
        out << ' ' << std::hex << bits(value) << std::dec;
        if (!std::isnan(value)) {
            out << '(' << value << ')';
        }
    }
}

} // namespace

std::string describe(const Model& model)
{
    std::ostringstream out;
    for (const Model::Material& material : model.materials) {
        out << "material " << material.name << '\n';
        for (const Model::Property& p : material.kv) {
            out << "  map " << p.map_name << " opt " << p.opt;
            print(out, "c", p.c);
            print(out, "o", p.o);
            print(out, "s", p.s);
            out << '\n';
        }
    }
    for (const Model::Surface& surface : model.surfaces) {
        out << "surface of material " << surface.mi << '\n';
        for (const auto& triangle : surface.triangles) {
            out << "  f " << triangle[0] << ' ' << triangle[1] << ' ' << triangle[2] << '\n';
        }
        for (const auto& line : surface.lines) {
            out << "  l " << line[0] << ' ' << line[1] << '\n';
        }
    }
    for (const Model::Vertex& vertex : model.vertices) {
        out << "vertex";
        print(out, "u", vertex.u);
        print(out, "n", vertex.n);
        print(out, "t", vertex.t);
        print(out, "v", vertex.v);
        out << '\n';
    }
    return out.str();
}

ObjFixture::ObjFixture()
{
    std::string name = testing::TempDir() + "kelpix-obj-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        std::abort();
    }
    folder_ = name;
}

ObjFixture::~ObjFixture()
{
    while (obj_num_file() > 0) {
        obj_del_file(obj_num_file() - 1);
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::string ObjFixture::write(const std::string& name, std::string_view text) const
{
    std::filesystem::create_directories((folder_ / name).parent_path());
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return path(name);
}

std::string ObjFixture::read(const std::string& name) const
{
    std::ifstream in(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

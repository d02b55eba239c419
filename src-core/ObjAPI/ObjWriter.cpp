#include "ObjStore.h"
#include "ObjText.h"
#include "OpenFile.h"

#include <array>
#include <cmath>
#include <cstdio>

using obj::file;

namespace {

/// What "%f" takes.
double wide(float value)
{
    return static_cast<double>(value);
}

void write_vector(std::FILE* out, const char* word, const float* v, int size)
{
    std::fprintf(out, "%s", word);
    for (int i = 0; i < size; ++i) {
        std::fprintf(out, " %12.8f", wide(v[i]));
    }
    std::fprintf(out, "\n");
}

/// Writes a line of corners, each with the one-based index of its vertex three times.
template<typename Primitive>
void write_corners(std::FILE* out, const char* word, const Primitive& primitive)
{
    std::fprintf(out, "%s", word);
    for (const int vi : primitive.vi) {
        const long long number = vi + 1LL;
        std::fprintf(out, " %lld/%lld/%lld", number, number, number);
    }
    std::fprintf(out, "\n");
}

const char* name_of(const obj_mtrl* m)
{
    return m != nullptr && m->name != nullptr ? m->name : "default";
}

void write_obj(const obj_file& f, const char* path, const char* library)
{
    const Files::Handle out = Files::create(path);
    if (out == nullptr) {
        return;
    }
    if (library != nullptr) {
        std::fprintf(out.get(), "mtllib %s\n", library);
    }
    for (int vi = 0; vi < f.vc; ++vi) {
        write_vector(out.get(), "v ", f.vv[vi].v, 3);
    }
    for (int vi = 0; vi < f.vc; ++vi) {
        write_vector(out.get(), "vt", f.vv[vi].t, 2);
    }
    for (int vi = 0; vi < f.vc; ++vi) {
        write_vector(out.get(), "vn", f.vv[vi].n, 3);
    }
    for (int si = 0; si < f.sc; ++si) {
        const obj_surf& s = f.sv[si];
        const bool has_mtrl = 0 <= s.mi && s.mi < f.mc;
        std::fprintf(out.get(), "usemtl %s\n", name_of(has_mtrl ? &f.mv[s.mi] : nullptr));
        for (int pi = 0; pi < s.pc; ++pi) {
            write_corners(out.get(), "f", s.pv[pi]);
        }
        for (int li = 0; li < s.lc; ++li) {
            write_corners(out.get(), "l", s.lv[li]);
        }
    }
}

void write_map(std::FILE* out, const char* label, const obj_prop& p)
{
    if (p.str == nullptr) {
        return;
    }
    std::fprintf(out, "map_%s ", label);
    if ((p.opt & 1) != 0) {
        std::fprintf(out, "-clamp on ");
    }
    if (std::fabs(p.o[0]) > 0 || std::fabs(p.o[1]) > 0 || std::fabs(p.o[2]) > 0) {
        std::fprintf(out, "-o %f %f %f ", wide(p.o[0]), wide(p.o[1]), wide(p.o[2]));
    }
    if (p.s[0] != 1 || p.s[1] != 1 || p.s[2] != 1) {
        std::fprintf(out, "-s %f %f %f ", wide(p.s[0]), wide(p.s[1]), wide(p.s[2]));
    }
    std::fprintf(out, "%s\n", p.str);
}

void write_mtl(const obj_file& f, const char* path)
{
    const Files::Handle out = Files::create(path);
    if (out == nullptr) {
        return;
    }
    for (int mi = 0; mi < f.mc; ++mi) {
        const obj_mtrl& m = f.mv[mi];
        std::fprintf(out.get(), "newmtl %s\n", name_of(&m));
        write_vector(out.get(), "Kd", m.kv[0].c, 3);
        write_vector(out.get(), "Ka", m.kv[1].c, 3);
        write_vector(out.get(), "Ke", m.kv[2].c, 3);
        write_vector(out.get(), "Ks", m.kv[3].c, 3);
        write_vector(out.get(), "Ns", m.kv[4].c, 1);
        write_vector(out.get(), "d ", &m.kv[0].c[3], 1);
        write_map(out.get(), "Kd", m.kv[0]);
        write_map(out.get(), "Ka", m.kv[1]);
        write_map(out.get(), "Ke", m.kv[1]); // the ambient map again, see obj_write_file
        write_map(out.get(), "Ks", m.kv[3]);
        write_map(out.get(), "Ns", m.kv[4]);
    }
}

} // namespace

void obj_write_file(int fi, const char* obj, const char* mtl)
{
    const obj_file& f = *file(fi);
    const obj::PlainNumbers plain;
    if (obj != nullptr) {
        write_obj(f, obj, mtl);
    }
    if (mtl != nullptr) {
        write_mtl(f, mtl);
    }
}

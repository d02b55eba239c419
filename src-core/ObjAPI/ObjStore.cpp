#include "ObjStore.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using obj::drop_if;
using obj::file;
using obj::grow;
using obj::line;
using obj::mtrl;
using obj::poly;
using obj::prop;
using obj::surf;
using obj::vert;

namespace {

// The store.
obj_file* fv = nullptr; ///< files
int fc = 0;             ///< number of files
int fm = 0;             ///< capacity

[[noreturn]] void fail(const char* source, unsigned line, const char* condition)
{
    std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", source, line, condition);
    std::abort();
}

/// Like assert, but in every kind of build and with a text of its own.
#define CHECK(condition) ((condition) ? static_cast<void>(0) : fail(__FILE__, __LINE__, #condition))

template<typename T>
void erase(T* array, int& count, int index)
{
    std::copy(array + index + 1, array + count, array + index);
    --count;
}

void set_text(char*& text, const char* source)
{
    char* copy = source == nullptr ? nullptr : strdup(source);
    std::free(text);
    text = copy;
}

void delete_texture(obj_prop& p)
{
    if (p.map != 0) {
        glDeleteTextures(1, &p.map);
        p.map = 0;
    }
}

/// Deletes the vertex buffer, which no longer equals the vertices in the store.
void invalidate(obj_file& f)
{
    if (f.vbo != 0) {
        if (glDeleteBuffersARB != nullptr) {
            glDeleteBuffersARB(1, &f.vbo);
        }
        f.vbo = 0;
    }
}

void release(obj_file& f)
{
    invalidate(f);
    for (int mi = 0; mi < f.mc; ++mi) {
        obj::release(f.mv[mi]);
    }
    for (int si = 0; si < f.sc; ++si) {
        obj::release(f.sv[si]);
    }
    std::free(f.mv);
    std::free(f.vv);
    std::free(f.sv);
}

/// Removes the triangles or lines that use vertex \p vi and decrements the higher indices.
template<typename Primitive>
void drop_vertex(Primitive* array, int& count, int vi)
{
    drop_if(array, count, [vi](Primitive& primitive) {
        for (int& index : primitive.vi) {
            if (index == vi) {
                return true;
            }
        }
        for (int& index : primitive.vi) {
            index -= index > vi;
        }
        return false;
    });
}

} // namespace

namespace obj {

obj_file* file(int fi)
{
    CHECK(0 <= fi && fi < fc);
    return &fv[fi];
}

obj_mtrl* mtrl(int fi, int mi)
{
    CHECK(0 <= mi && mi < file(fi)->mc);
    return &fv[fi].mv[mi];
}

obj_prop* prop(int fi, int mi, int ki)
{
    obj_mtrl* m = mtrl(fi, mi);
    CHECK(0 <= ki && ki < 5);
    return &m->kv[ki];
}

obj_vert* vert(int fi, int vi)
{
    CHECK(0 <= vi && vi < file(fi)->vc);
    return &fv[fi].vv[vi];
}

obj_surf* surf(int fi, int si)
{
    CHECK(0 <= si && si < file(fi)->sc);
    return &fv[fi].sv[si];
}

obj_poly* poly(int fi, int si, int pi)
{
    CHECK(0 <= pi && pi < surf(fi, si)->pc);
    return &surf(fi, si)->pv[pi];
}

obj_line* line(int fi, int si, int li)
{
    CHECK(0 <= li && li < surf(fi, si)->lc);
    return &surf(fi, si)->lv[li];
}

void release(obj_mtrl& m)
{
    for (int ki = 0; ki < 5; ++ki) {
        std::free(m.kv[ki].str);
        if (ki < 4) { // the texture of property 4 is not deleted, see obj_del_mtrl
            delete_texture(m.kv[ki]);
        }
    }
    std::free(m.name);
}

void release(obj_surf& s)
{
    std::free(s.pv);
    std::free(s.lv);
}

void set_map(obj_prop* p, const char* name, const char* path)
{
    delete_texture(*p);
    p->map = read_img(path);
    set_text(p->str, name);
}

} // namespace obj

// ---- Add ----------------------------------------------------------------------------------------

int obj_add_file(const char* filename)
{
    const int fi = grow(fv, fc, fm);
    if (fi >= 0) {
        fv[fi] = {};
        if (filename != nullptr) {
            obj::read_obj(fi, filename);
            obj_mini_file(fi);
            obj_proc_file(fi);
        }
    }
    return fi;
}

int obj_add_mtrl(int fi)
{
    obj_file* f = file(fi);
    const int mi = grow(f->mv, f->mc, f->mm);
    if (mi >= 0) {
        obj_mtrl& m = f->mv[mi];
        m = {};
        for (int ki = 0; ki < 5; ++ki) {
            std::copy_n(DEFAULT_COLORS[ki], 4, m.kv[ki].c);
            std::fill_n(m.kv[ki].s, 3, 1.0f);
        }
    }
    return mi;
}

int obj_add_vert(int fi)
{
    obj_file* f = file(fi);
    const int vi = grow(f->vv, f->vc, f->vm);
    if (vi >= 0) {
        f->vv[vi] = {};
        invalidate(*f); // it lacks the new vertex
    }
    return vi;
}

int obj_add_surf(int fi)
{
    obj_file* f = file(fi);
    const int si = grow(f->sv, f->sc, f->sm);
    if (si >= 0) {
        f->sv[si] = {};
    }
    return si;
}

int obj_add_poly(int fi, int si)
{
    obj_surf* s = surf(fi, si);
    const int pi = grow(s->pv, s->pc, s->pm);
    if (pi >= 0) {
        s->pv[pi] = {};
    }
    return pi;
}

int obj_add_line(int fi, int si)
{
    obj_surf* s = surf(fi, si);
    const int li = grow(s->lv, s->lc, s->lm);
    if (li >= 0) {
        s->lv[li] = {};
    }
    return li;
}

// ---- Count --------------------------------------------------------------------------------------

int obj_num_file()
{
    return fc;
}

int obj_num_mtrl(int fi)
{
    return file(fi)->mc;
}

int obj_num_vert(int fi)
{
    return file(fi)->vc;
}

int obj_num_surf(int fi)
{
    return file(fi)->sc;
}

int obj_num_poly(int fi, int si)
{
    return surf(fi, si)->pc;
}

int obj_num_line(int fi, int si)
{
    return surf(fi, si)->lc;
}

// ---- Materials ----------------------------------------------------------------------------------

void obj_set_mtrl_name(int fi, int mi, const char* name)
{
    set_text(mtrl(fi, mi)->name, name);
}

void obj_set_mtrl_map(int fi, int mi, int ki, const char* filename)
{
    obj::set_map(prop(fi, mi, ki), filename, filename);
}

void obj_set_mtrl_opt(int fi, int mi, int ki, unsigned int opt)
{
    prop(fi, mi, ki)->opt = static_cast<int>(opt);
}

void obj_set_mtrl_c(int fi, int mi, int ki, const float c[4])
{
    std::copy_n(c, 4, prop(fi, mi, ki)->c);
}

void obj_set_mtrl_s(int fi, int mi, int ki, const float s[3])
{
    std::copy_n(s, 3, prop(fi, mi, ki)->s);
}

void obj_set_mtrl_o(int fi, int mi, int ki, const float o[3])
{
    std::copy_n(o, 3, prop(fi, mi, ki)->o);
}

const char* obj_get_mtrl_name(int fi, int mi)
{
    return mtrl(fi, mi)->name;
}

GLuint obj_get_mtrl_map(int fi, int mi, int ki)
{
    return prop(fi, mi, ki)->map;
}

unsigned int obj_get_mtrl_opt(int fi, int mi, int ki)
{
    return static_cast<unsigned int>(prop(fi, mi, ki)->opt);
}

void obj_get_mtrl_c(int fi, int mi, int ki, float* c)
{
    std::copy_n(prop(fi, mi, ki)->c, 4, c);
}

void obj_get_mtrl_s(int fi, int mi, int ki, float* s)
{
    std::copy_n(prop(fi, mi, ki)->s, 3, s);
}

void obj_get_mtrl_o(int fi, int mi, int ki, float* o)
{
    std::copy_n(prop(fi, mi, ki)->o, 3, o);
}

// ---- Vertices -----------------------------------------------------------------------------------

void obj_set_vert_v(int fi, int vi, const float* v)
{
    std::copy_n(v, 3, vert(fi, vi)->v);
    invalidate(*file(fi));
}

void obj_set_vert_t(int fi, int vi, const float* t)
{
    std::copy_n(t, 2, vert(fi, vi)->t);
    invalidate(*file(fi));
}

void obj_set_vert_n(int fi, int vi, const float* n)
{
    std::copy_n(n, 3, vert(fi, vi)->n);
    invalidate(*file(fi));
}

void obj_get_vert_v(int fi, int vi, float* v)
{
    std::copy_n(vert(fi, vi)->v, 3, v);
}

void obj_get_vert_t(int fi, int vi, float* t)
{
    std::copy_n(vert(fi, vi)->t, 2, t);
}

void obj_get_vert_n(int fi, int vi, float* n)
{
    std::copy_n(vert(fi, vi)->n, 3, n);
}

// ---- Surfaces, triangles, lines -----------------------------------------------------------------

void obj_set_surf(int fi, int si, int mi)
{
    surf(fi, si)->mi = mi;
}

int obj_get_surf(int fi, int si)
{
    return surf(fi, si)->mi;
}

void obj_set_poly(int fi, int si, int pi, const int vi[3])
{
    std::copy_n(vi, 3, poly(fi, si, pi)->vi);
}

void obj_get_poly(int fi, int si, int pi, int vi[3])
{
    std::copy_n(poly(fi, si, pi)->vi, 3, vi);
}

void obj_set_line(int fi, int si, int li, const int vi[2])
{
    std::copy_n(vi, 2, line(fi, si, li)->vi);
}

void obj_get_line(int fi, int si, int li, int vi[2])
{
    std::copy_n(line(fi, si, li)->vi, 2, vi);
}

// ---- Delete -------------------------------------------------------------------------------------

void obj_del_file(int fi)
{
    release(*file(fi));
    erase(fv, fc, fi);
}

void obj_del_mtrl(int fi, int mi)
{
    obj::release(*mtrl(fi, mi));
    obj_file* f = file(fi);
    erase(f->mv, f->mc, mi);
    drop_if(f->sv, f->sc, [mi](obj_surf& s) {
        if (s.mi == mi) {
            obj::release(s);
            return true;
        }
        s.mi -= static_cast<int>(s.mi > mi);
        return false;
    });
}

void obj_del_vert(int fi, int vi)
{
    vert(fi, vi); // checks the indices
    obj_file* f = file(fi);
    erase(f->vv, f->vc, vi);
    for (int si = 0; si < f->sc; ++si) {
        drop_vertex(f->sv[si].pv, f->sv[si].pc, vi);
        drop_vertex(f->sv[si].lv, f->sv[si].lc, vi);
    }
    invalidate(*f);
}

void obj_del_surf(int fi, int si)
{
    obj::release(*surf(fi, si));
    obj_file* f = file(fi);
    erase(f->sv, f->sc, si);
}

void obj_del_poly(int fi, int si, int pi)
{
    poly(fi, si, pi);
    obj_surf* s = surf(fi, si);
    erase(s->pv, s->pc, pi);
}

void obj_del_line(int fi, int si, int li)
{
    line(fi, si, li);
    obj_surf* s = surf(fi, si);
    erase(s->lv, s->lc, li);
}

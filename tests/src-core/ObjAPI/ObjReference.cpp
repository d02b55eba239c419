#include "ObjReference.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

namespace reference {

namespace {

using Vector = std::array<float, 3>;

Vector minus(const Vector& a, const Vector& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vector times(const Vector& a, float k)
{
    return {a[0] * k, a[1] * k, a[2] * k};
}

Vector cross(const Vector& a, const Vector& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector unit(const Vector& a)
{
    const float squares = a[0] * a[0] + a[1] * a[1] + a[2] * a[2];
    return times(a, 1 / sqrtf(squares));
}

void add(Vector& sum, const Vector& v)
{
    for (std::size_t i = 0; i < 3; ++i) {
        sum[i] += v[i];
    }
}

Model::Vertex* vertex(Model& model, int vi)
{
    const bool there = vi >= 0 && vi < static_cast<int>(model.vertices.size());
    return there ? &model.vertices[static_cast<std::size_t>(vi)] : nullptr;
}

float alpha(const Model& model, const Model::Surface& surface)
{
    const bool there = surface.mi >= 0 && surface.mi < static_cast<int>(model.materials.size());
    return there ? model.materials[static_cast<std::size_t>(surface.mi)].kv[0].c[3] : 1.0f;
}

Model::Material new_material()
{
    Model::Material material;
    material.kv[0].c = {0.8f, 0.8f, 0.8f, 1};
    material.kv[1].c = {0.2f, 0.2f, 0.2f, 1};
    material.kv[2].c = {0, 0, 0, 1};
    material.kv[3].c = {0, 0, 0, 1};
    material.kv[4].c = {8, 0, 0, 0};
    for (Model::Property& p : material.kv) {
        p.map_name = "(none)";
    }
    return material;
}

int clamped(long number)
{
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

class Reader {
public:
    Model model;

    void read_obj(const char* filename)
    {
        FILE* file = fopen(filename, "r");
        if (file == nullptr) {
            return;
        }
        model.materials.push_back(new_material());
        model.surfaces.emplace_back();
        size_t surface = 0;
        int group = 0;
        char library[1024] = "";
        std::string directory(filename);
        const size_t cut = directory.find_last_of("/\\");
        directory = cut == std::string::npos ? "." : directory.substr(0, cut);

        char line[1024];
        while (fgets(line, sizeof line, file) != nullptr) {
            char word[1024];
            int n = 0;
            if (sscanf(line, "%s%n", word, &n) != 1) {
                continue;
            }
            const char* arguments = line + n;
            if (strcmp(word, "f") == 0) {
                face(arguments, surface, group);
            } else if (strcmp(word, "l") == 0) {
                polyline(arguments, surface);
            } else if (strcmp(word, "vt") == 0) {
                std::array<float, 2> t = {0, 0};
                sscanf(arguments, "%f %f", &t[0], &t[1]);
                coordinates_.push_back(t);
            } else if (strcmp(word, "vn") == 0) {
                Vector v = {0, 0, 0};
                sscanf(arguments, "%f %f %f", &v[0], &v[1], &v[2]);
                normals_.push_back(v);
            } else if (strcmp(word, "v") == 0) {
                Vector v = {0, 0, 0};
                sscanf(arguments, "%f %f %f", &v[0], &v[1], &v[2]);
                positions_.push_back(v);
                heads_.push_back(-1);
            } else if (strcmp(word, "mtllib") == 0) {
                sscanf(arguments, "%s", library);
            } else if (strcmp(word, "usemtl") == 0) {
                char name[1024] = "";
                sscanf(arguments, "%s", name);
                model.materials.push_back(new_material());
                model.surfaces.emplace_back();
                surface = model.surfaces.size() - 1;
                if (name[0] != '\0') {
                    read_mtl(directory, library, name, model.materials.back());
                }
                model.surfaces.back().mi = static_cast<int>(model.materials.size()) - 1;
            } else if (strcmp(word, "s") == 0) {
                long number = 0;
                sscanf(arguments, "%ld", &number);
                group = clamped(number);
            }
        }
        fclose(file);
    }

private:
    struct Corner {
        int vertex, group, v, t, n, next;
    };

    int convert(long number, size_t count) const
    {
        const int index = clamped(number);
        return index < 0 ? index + static_cast<int>(count) : index - 1;
    }

    /// Resolves a corner and adds it to the table.
    void corner(int v, int t, int n, int group, bool of_line)
    {
        const bool chained = v >= 0 && v < static_cast<int>(positions_.size());
        Corner fresh = {0, group, v, t, n, -1};
        if (chained) {
            for (int j = heads_[static_cast<size_t>(v)]; j >= 0 && fresh.next < 0;
                 j = corners_[static_cast<size_t>(j)].next) {
                const Corner& old = corners_[static_cast<size_t>(j)];
                if (old.v == v && old.t == t && (of_line || (old.n == n && old.group == group))) {
                    fresh.next = j;
                }
            }
        }
        if (fresh.next >= 0) {
            fresh.vertex = corners_[static_cast<size_t>(fresh.next)].vertex;
            fresh.group = corners_[static_cast<size_t>(fresh.next)].group;
        } else {
            fresh.vertex = static_cast<int>(model.vertices.size());
            model.vertices.emplace_back();
            if (chained) {
                model.vertices.back().v = positions_[static_cast<size_t>(v)];
            }
            if (n >= 0 && n < static_cast<int>(normals_.size())) {
                model.vertices.back().n = normals_[static_cast<size_t>(n)];
            }
            if (t >= 0 && t < static_cast<int>(coordinates_.size())) {
                model.vertices.back().t = coordinates_[static_cast<size_t>(t)];
            }
        }
        if (chained) {
            heads_[static_cast<size_t>(v)] = static_cast<int>(corners_.size());
        }
        corners_.push_back(fresh);
    }

    void face(const char* text, size_t surface, int group)
    {
        const size_t first = corners_.size();
        char token[1024];
        int length = 0;
        while (sscanf(text, "%s%n", token, &length) == 1) {
            long v = 0;
            long t = 0;
            long n = 0;
            if (sscanf(token, "%ld/%ld/%ld", &v, &t, &n) != 3) {
                n = 0;
                if (sscanf(token, "%ld/%ld", &v, &t) != 2) {
                    t = 0;
                    if (sscanf(token, "%ld//%ld", &v, &n) != 2) {
                        n = 0;
                        if (sscanf(token, "%ld", &v) != 1) {
                            break;
                        }
                    }
                }
            }
            corner(convert(v, positions_.size()), convert(t, coordinates_.size()),
                   convert(n, normals_.size()), group, false);
            text += length;
        }
        const size_t count = corners_.size() - first;
        if (group != 0 && count >= 3 && corners_[first].n == -1) {
            bool there = true;
            std::array<Vector, 3> p = {};
            for (size_t k = 0; k < 3; ++k) {
                const int v = corners_[first + k].v;
                there = there && v >= 0 && v < static_cast<int>(positions_.size());
                if (there) {
                    p[k] = positions_[static_cast<size_t>(v)];
                }
            }
            if (there) {
                const Vector n = unit(cross(minus(p[1], p[0]), minus(p[2], p[0])));
                for (size_t k = first; k < corners_.size(); ++k) {
                    if (Model::Vertex* target = vertex(model, corners_[k].v)) {
                        add(target->n, n);
                    }
                }
            }
        }
        for (size_t k = 0; k + 2 < count; ++k) {
            model.surfaces[surface].triangles.push_back({corners_[first].vertex,
                                                         corners_[first + k + 1].vertex,
                                                         corners_[first + k + 2].vertex});
        }
    }

    void polyline(const char* text, size_t surface)
    {
        const size_t first = corners_.size();
        char token[1024];
        int length = 0;
        while (sscanf(text, "%s%n", token, &length) == 1) {
            long v = 0;
            long t = 0;
            if (sscanf(token, "%ld/%ld", &v, &t) != 2) {
                t = 0;
                if (sscanf(token, "%ld", &v) != 1) {
                    break;
                }
            }
            corner(convert(v, positions_.size()), convert(t, coordinates_.size()), -1, 0, true);
            text += length;
        }
        for (size_t k = first; k + 1 < corners_.size(); ++k) {
            model.surfaces[surface].lines.push_back({corners_[k].vertex, corners_[k + 1].vertex});
        }
    }

    static void read_mtl(const std::string& directory, const char* library, const char* name,
                         Model::Material& material)
    {
        const std::string path = directory + "/" + library;
        FILE* file = path.size() < 1024 ? fopen(path.c_str(), "r") : nullptr;
        if (file == nullptr) {
            return;
        }
        char line[1024];
        bool found = false;
        while (fgets(line, sizeof line, file) != nullptr) {
            char word[1024];
            int n = 0;
            if (sscanf(line, "%s%n", word, &n) != 1) {
                continue;
            }
            const char* arguments = line + n;
            if (strcmp(word, "newmtl") == 0) {
                if (found) {
                    break;
                }
                char other[1024] = "";
                sscanf(arguments, "%s", other);
                if (strcmp(other, name) == 0) {
                    found = true;
                    material.name = name;
                }
            } else if (found) {
                property(word, arguments, material);
            }
        }
        fclose(file);
    }

    static void property(const char* word, const char* arguments, Model::Material& material)
    {
        const std::pair<const char*, size_t> maps[] = {
            {"map_Kd", 0}, {"map_Ka", 1}, {"map_Ke", 2}, {"map_Ks", 3}, {"map_Ns", 4}};
        const std::pair<const char*, size_t> colors[] = {
            {"Kd", 0}, {"Ka", 1}, {"Ke", 2}, {"Ks", 3}, {"Ns", 4}};
        for (const auto& [label, kind] : maps) {
            if (strcmp(word, label) == 0) {
                image_map(arguments, material.kv[kind]);
            }
        }
        for (const auto& [label, kind] : colors) {
            if (strcmp(word, label) == 0) {
                float* c = material.kv[kind].c.data();
                sscanf(arguments, "%f %f %f", c, c + 1, c + 2);
            }
        }
        if (strcmp(word, "d") == 0) {
            sscanf(arguments, "%f", &material.kv[0].c[3]);
        }
    }

    static void image_map(const char* p, Model::Property& property)
    {
        property.opt = 0;
        Vector o = {0, 0, 0};
        Vector s = {1, 1, 1};
        std::string name;
        while (*p != '\0' && *p != '\r' && *p != '\n') {
            char word[1024];
            int n = 0;
            if (sscanf(p, " -clamp %s%n", word, &n) == 1) {
                property.opt = strcmp(word, "on") == 0 ? 1 : 0;
            } else if (sscanf(p, " -s %f %f %f%n", &s[0], &s[1], &s[2], &n) == 3 ||
                       sscanf(p, " -s %f %f%n", &s[0], &s[1], &n) == 2 ||
                       sscanf(p, " -s %f%n", &s[0], &n) == 1 ||
                       sscanf(p, " -o %f %f %f%n", &o[0], &o[1], &o[2], &n) == 3 ||
                       sscanf(p, " -o %f %f%n", &o[0], &o[1], &n) == 2 ||
                       sscanf(p, " -o %f%n", &o[0], &n) == 1) {
            } else if (sscanf(p, " %s%n", word, &n) == 1) {
                name = word;
            } else {
                break;
            }
            p += n;
        }
        property.map_name = name.empty() ? "(none)" : name;
        property.o = o;
        property.s = s;
    }

    std::vector<Vector> positions_;
    std::vector<int> heads_;
    std::vector<std::array<float, 2>> coordinates_;
    std::vector<Vector> normals_;
    std::vector<Corner> corners_;
};

} // namespace

Model read(const std::string& filename)
{
    Reader reader;
    reader.read_obj(filename.c_str());
    mini(reader.model);
    proc(reader.model);
    return reader.model;
}

void del_mtrl(Model& model, int mi)
{
    model.materials.erase(model.materials.begin() + mi);
    for (size_t si = model.surfaces.size(); si-- > 0;) {
        if (model.surfaces[si].mi == mi) {
            model.surfaces.erase(model.surfaces.begin() + static_cast<std::ptrdiff_t>(si));
        } else if (model.surfaces[si].mi > mi) {
            --model.surfaces[si].mi;
        }
    }
}

namespace {

template<typename Primitive>
void del_index(std::vector<Primitive>& primitives, int vi)
{
    for (size_t i = primitives.size(); i-- > 0;) {
        if (std::count(primitives[i].begin(), primitives[i].end(), vi) > 0) {
            primitives.erase(primitives.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        for (int& index : primitives[i]) {
            if (index > vi) {
                --index;
            }
        }
    }
}

} // namespace

void del_vert(Model& model, int vi)
{
    model.vertices.erase(model.vertices.begin() + vi);
    for (Model::Surface& surface : model.surfaces) {
        del_index(surface.triangles, vi);
        del_index(surface.lines, vi);
    }
}

void mini(Model& model)
{
    for (size_t si = model.surfaces.size(); si-- > 0;) {
        if (model.surfaces[si].triangles.empty() && model.surfaces[si].lines.empty()) {
            model.surfaces.erase(model.surfaces.begin() + static_cast<std::ptrdiff_t>(si));
        }
    }
    for (int mi = static_cast<int>(model.materials.size()) - 1; mi >= 0; --mi) {
        int users = 0;
        for (const Model::Surface& surface : model.surfaces) {
            users += surface.mi == mi;
        }
        if (users == 0) {
            del_mtrl(model, mi);
        }
    }
}

void proc(Model& model)
{
    for (Model::Vertex& v : model.vertices) {
        v.n = unit(v.n);
        v.u = {0, 0, 0};
    }
    for (const Model::Surface& surface : model.surfaces) {
        for (const auto& triangle : surface.triangles) {
            Model::Vertex* a = vertex(model, triangle[0]);
            Model::Vertex* b = vertex(model, triangle[1]);
            Model::Vertex* c = vertex(model, triangle[2]);
            if (a == nullptr || b == nullptr || c == nullptr) {
                continue;
            }
            const Vector d1 = minus(b->v, a->v);
            const Vector d2 = minus(c->v, a->v);
            const float dt1 = b->t[1] - a->t[1];
            const float dt2 = c->t[1] - a->t[1];
            const Vector tangent = unit(minus(times(d1, dt2), times(d2, dt1)));
            add(a->u, tangent);
            add(b->u, tangent);
            add(c->u, tangent);
        }
    }
    for (Model::Vertex& v : model.vertices) {
        v.u = unit(cross(cross(v.n, v.u), v.n));
    }
    for (size_t i = 0; i < model.surfaces.size(); ++i) {
        for (size_t j = i + 1; j < model.surfaces.size(); ++j) {
            if (alpha(model, model.surfaces[j]) > alpha(model, model.surfaces[i])) {
                std::swap(model.surfaces[i], model.surfaces[j]);
            }
        }
    }
}

void norm(Model& model)
{
    for (const Model::Surface& surface : model.surfaces) {
        for (const auto& triangle : surface.triangles) {
            Model::Vertex* a = vertex(model, triangle[0]);
            Model::Vertex* b = vertex(model, triangle[1]);
            Model::Vertex* c = vertex(model, triangle[2]);
            if (a == nullptr || b == nullptr || c == nullptr) {
                continue;
            }
            const Vector n = unit(cross(minus(b->v, a->v), minus(c->v, a->v)));
            for (Model::Vertex* v : {a, b, c}) {
                v->n[0] += n[0];
                v->n[1] += n[1];
                v->n[2] += n[0];
            }
        }
    }
}

} // namespace reference

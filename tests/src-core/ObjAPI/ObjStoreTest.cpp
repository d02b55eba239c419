#include "ObjAPI.h"

#include "ObjModel.h"
#include "ObjReference.h"

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <gmock/gmock.h>
#include <random>

namespace {

class ObjStoreTest : public ObjTest {
protected:
    /// A model with one material, one surface, three vertices, one triangle and one line.
    static int small()
    {
        const int fi = obj_add_file(nullptr);
        obj_add_mtrl(fi);
        obj_add_surf(fi);
        for (int i = 0; i < 3; ++i) {
            obj_add_vert(fi);
        }
        obj_add_poly(fi, 0);
        obj_add_line(fi, 0);
        return fi;
    }
};

// ---- Records ------------------------------------------------------------------------------------

TEST_F(ObjStoreTest, TheVertexIsElevenFloats)
{
    EXPECT_EQ(sizeof(obj_vert), 44U);
    EXPECT_EQ(offsetof(obj_vert, u), 0U);
    EXPECT_EQ(offsetof(obj_vert, n), 12U);
    EXPECT_EQ(offsetof(obj_vert, t), 24U);
    EXPECT_EQ(offsetof(obj_vert, v), 32U);
}

TEST_F(ObjStoreTest, CapacitiesRun0248)
{
    const int fi = obj_add_file(nullptr);
    const obj_file* f = obj::file(fi);
    EXPECT_EQ(f->mm, 0);
    EXPECT_EQ(f->vm, 0);
    EXPECT_EQ(f->sm, 0);
    const int expected[] = {2, 2, 4, 4, 8};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(obj_add_mtrl(fi), i);
        EXPECT_EQ(obj_add_vert(fi), i);
        EXPECT_EQ(obj_add_surf(fi), i);
        EXPECT_EQ(obj_add_poly(fi, 0), i);
        EXPECT_EQ(obj_add_line(fi, 0), i);
        const obj_surf* s = obj::surf(fi, 0);
        EXPECT_EQ(f->mm, expected[i]);
        EXPECT_EQ(f->vm, expected[i]);
        EXPECT_EQ(f->sm, expected[i]);
        EXPECT_EQ(s->pm, expected[i]);
        EXPECT_EQ(s->lm, expected[i]);
    }
}

TEST_F(ObjStoreTest, AFullArrayBeyondHalfTheRangeDoesNotGrow)
{
    int* array = nullptr;
    int count = INT_MAX / 2 + 1;
    int capacity = count;
    EXPECT_EQ(obj::grow(array, count, capacity), -1);
    EXPECT_EQ(array, nullptr);
    EXPECT_EQ(count, INT_MAX / 2 + 1);
    EXPECT_EQ(capacity, INT_MAX / 2 + 1);
}

TEST_F(ObjStoreTest, ANewMaterialHasTheDefaults)
{
    const int fi = obj_add_file(nullptr);
    const int mi = obj_add_mtrl(fi);
    EXPECT_EQ(obj_get_mtrl_name(fi, mi), nullptr);
    const float colors[5][4] = {
        {0.8f, 0.8f, 0.8f, 1}, {0.2f, 0.2f, 0.2f, 1}, {0, 0, 0, 1}, {0, 0, 0, 1}, {8, 0, 0, 0}};
    for (int ki = 0; ki < 5; ++ki) {
        EXPECT_EQ(obj_get_mtrl_map(fi, mi, ki), 0U);
        EXPECT_EQ(obj_get_mtrl_opt(fi, mi, ki), 0U);
        EXPECT_EQ(obj::prop(fi, mi, ki)->str, nullptr);
        float c[4];
        float o[3];
        float s[3];
        obj_get_mtrl_c(fi, mi, ki, c);
        obj_get_mtrl_o(fi, mi, ki, o);
        obj_get_mtrl_s(fi, mi, ki, s);
        EXPECT_THAT(c, testing::ElementsAreArray(colors[ki]));
        EXPECT_THAT(o, testing::ElementsAre(0, 0, 0));
        EXPECT_THAT(s, testing::ElementsAre(1, 1, 1));
    }
}

TEST_F(ObjStoreTest, OtherNewRecordsAreZeroEvenInUsedMemory)
{
    const int fi = small();
    const float ones[3] = {1, 1, 1};
    const int two[3] = {2, 2, 2};
    obj_set_vert_v(fi, 2, ones);
    obj_set_vert_t(fi, 2, ones);
    obj_set_vert_n(fi, 2, ones);
    obj_set_poly(fi, 0, 0, two);
    obj_set_line(fi, 0, 0, two);
    obj_set_surf(fi, 0, 7);
    obj_del_poly(fi, 0, 0);
    obj_del_line(fi, 0, 0);
    obj_add_poly(fi, 0);
    obj_add_line(fi, 0);
    EXPECT_THAT(obj::poly(fi, 0, 0)->vi, testing::ElementsAre(0, 0, 0));
    EXPECT_THAT(obj::line(fi, 0, 0)->vi, testing::ElementsAre(0, 0));
    obj_del_vert(fi, 2);
    obj_add_vert(fi);
    EXPECT_THAT(obj::vert(fi, 2)->u, testing::Each(0));
    EXPECT_THAT(obj::vert(fi, 2)->n, testing::Each(0));
    EXPECT_THAT(obj::vert(fi, 2)->t, testing::Each(0));
    EXPECT_THAT(obj::vert(fi, 2)->v, testing::Each(0));
    obj_del_surf(fi, 0);
    obj_add_surf(fi);
    EXPECT_EQ(obj_get_surf(fi, 0), 0);
    EXPECT_EQ(obj_num_poly(fi, 0), 0);
    EXPECT_EQ(obj_num_line(fi, 0), 0);
    obj_del_file(fi);
    obj_add_file(nullptr);
    EXPECT_EQ(obj_num_mtrl(fi), 0);
    EXPECT_EQ(obj_num_vert(fi), 0);
    EXPECT_EQ(obj_num_surf(fi), 0);
    EXPECT_EQ(obj::file(fi)->vbo, 0U);
    EXPECT_EQ(obj::file(fi)->vm, 0);
}

TEST_F(ObjStoreTest, WhatIsSetIsWhatIsGot)
{
    const int fi = small();
    const float v[4] = {1, 2, 3, 4};
    float got[4] = {};
    for (int ki = 0; ki < 5; ++ki) {
        obj_set_mtrl_c(fi, 0, ki, v);
        obj_get_mtrl_c(fi, 0, ki, got);
        EXPECT_THAT(got, testing::ElementsAre(1, 2, 3, 4));
        obj_set_mtrl_opt(fi, 0, ki, 0x80000001U);
        EXPECT_EQ(obj_get_mtrl_opt(fi, 0, ki), 0x80000001U);
    }
    const float o[3] = {5, 6, 7};
    obj_set_mtrl_o(fi, 0, 2, o);
    obj_set_mtrl_s(fi, 0, 2, v);
    got[3] = 9; // three floats only
    obj_get_mtrl_o(fi, 0, 2, got);
    EXPECT_THAT(got, testing::ElementsAre(5, 6, 7, 9));
    obj_get_mtrl_s(fi, 0, 2, got);
    EXPECT_THAT(got, testing::ElementsAre(1, 2, 3, 9));

    obj_set_vert_v(fi, 1, v);
    obj_set_vert_t(fi, 1, o);
    obj_set_vert_n(fi, 1, o);
    obj_get_vert_v(fi, 1, got);
    EXPECT_THAT(got, testing::ElementsAre(1, 2, 3, 9));
    obj_get_vert_n(fi, 1, got);
    EXPECT_THAT(got, testing::ElementsAre(5, 6, 7, 9));
    got[2] = 8; // two floats only
    obj_get_vert_t(fi, 1, got);
    EXPECT_THAT(got, testing::ElementsAre(5, 6, 8, 9));

    const int corners[3] = {2, 1, 0};
    int indices[3] = {};
    obj_set_poly(fi, 0, 0, corners);
    obj_get_poly(fi, 0, 0, indices);
    EXPECT_THAT(indices, testing::ElementsAre(2, 1, 0));
    obj_set_line(fi, 0, 0, corners);
    indices[2] = 7;
    obj_get_line(fi, 0, 0, indices);
    EXPECT_THAT(indices, testing::ElementsAre(2, 1, 7));
    obj_set_surf(fi, 0, 12);
    EXPECT_EQ(obj_get_surf(fi, 0), 12);
}

TEST_F(ObjStoreTest, NamesAreCopies)
{
    const int fi = small();
    std::string name = "coral";
    obj_set_mtrl_name(fi, 0, name.c_str());
    name = "other";
    EXPECT_STREQ(obj_get_mtrl_name(fi, 0), "coral");
    obj_set_mtrl_name(fi, 0, obj_get_mtrl_name(fi, 0) + 2);
    EXPECT_STREQ(obj_get_mtrl_name(fi, 0), "ral");
    obj_set_mtrl_name(fi, 0, nullptr);
    EXPECT_EQ(obj_get_mtrl_name(fi, 0), nullptr);
}

TEST_F(ObjStoreTest, AMapThatCannotBeReadKeepsItsName)
{
    const int fi = small();
    obj_set_mtrl_map(fi, 0, 3, "nowhere.png");
    EXPECT_EQ(obj_get_mtrl_map(fi, 0, 3), 0U);
    EXPECT_STREQ(obj::prop(fi, 0, 3)->str, "nowhere.png");
    obj_set_mtrl_map(fi, 0, 3, nullptr);
    EXPECT_EQ(obj_get_mtrl_map(fi, 0, 3), 0U);
    EXPECT_EQ(obj::prop(fi, 0, 3)->str, nullptr);
}

// ---- Deletion -----------------------------------------------------------------------------------

TEST_F(ObjStoreTest, DeletingAVertexTakesItsTrianglesAndShiftsTheOthers)
{
    const int fi = obj_add_file(nullptr);
    obj_add_surf(fi);
    for (int i = 0; i < 5; ++i) {
        obj_add_vert(fi);
        const float v[3] = {static_cast<float>(i), 0, 0};
        obj_set_vert_v(fi, i, v);
    }
    const int triangles[4][3] = {{0, 1, 2}, {1, 2, 3}, {3, 4, 0}, {2, 4, 3}};
    for (int pi = 0; pi < 4; ++pi) {
        obj_add_poly(fi, 0);
        obj_set_poly(fi, 0, pi, triangles[pi]);
    }
    const int lines[3][2] = {{1, 0}, {2, 4}, {0, 3}};
    for (int li = 0; li < 3; ++li) {
        obj_add_line(fi, 0);
        obj_set_line(fi, 0, li, lines[li]);
    }
    obj_del_vert(fi, 0);
    const Model model = model_of(fi);
    ASSERT_EQ(model.vertices.size(), 4U);
    EXPECT_EQ(model.vertices[0].v[0], 1);
    EXPECT_EQ(model.vertices[3].v[0], 4);
    EXPECT_THAT(model.surfaces[0].triangles,
                testing::ElementsAre(std::array{0, 1, 2}, std::array{1, 3, 2}));
    EXPECT_THAT(model.surfaces[0].lines, testing::ElementsAre(std::array{1, 3}));
    EXPECT_EQ(obj::file(fi)->vm, 8); // capacities stay
    EXPECT_EQ(obj::surf(fi, 0)->pm, 4);
}

TEST_F(ObjStoreTest, DeletingAMaterialTakesItsSurfacesAndRenumbersTheOthers)
{
    const int fi = obj_add_file(nullptr);
    for (int i = 0; i < 3; ++i) {
        obj_set_mtrl_name(fi, obj_add_mtrl(fi), std::to_string(i).c_str());
    }
    for (const int mi : {2, 1, 0, 1, 9, -1}) {
        obj_set_surf(fi, obj_add_surf(fi), mi);
    }
    obj_del_mtrl(fi, 1);
    EXPECT_EQ(obj_num_mtrl(fi), 2);
    EXPECT_STREQ(obj_get_mtrl_name(fi, 1), "2");
    ASSERT_EQ(obj_num_surf(fi), 4);
    EXPECT_EQ(obj_get_surf(fi, 0), 1);
    EXPECT_EQ(obj_get_surf(fi, 1), 0);
    EXPECT_EQ(obj_get_surf(fi, 2), 8);
    EXPECT_EQ(obj_get_surf(fi, 3), -1);
}

TEST_F(ObjStoreTest, DeletingAFileShiftsTheLaterOnes)
{
    for (int i = 0; i < 3; ++i) {
        const int fi = obj_add_file(nullptr);
        for (int n = 0; n <= i; ++n) {
            obj_add_vert(fi);
        }
    }
    obj_del_file(1);
    EXPECT_EQ(obj_num_file(), 2);
    EXPECT_EQ(obj_num_vert(0), 1);
    EXPECT_EQ(obj_num_vert(1), 3);
}

TEST_F(ObjStoreTest, RandomOperationsLeaveWhatThePlainFormLeaves)
{
    std::mt19937 random(5);
    const auto below = [&random](int n) {
        return n < 1 ? 0 : static_cast<int>(random() % static_cast<unsigned>(n));
    };
    for (int round = 0; round < 60; ++round) {
        const int fi = obj_add_file(nullptr);
        Model model;
        for (int step = 0; step < 150; ++step) {
            const int mc = static_cast<int>(model.materials.size());
            const int vc = static_cast<int>(model.vertices.size());
            const int sc = static_cast<int>(model.surfaces.size());
            const int si = below(sc);
            Model::Surface* s = sc > 0 ? &model.surfaces[static_cast<std::size_t>(si)] : nullptr;
            switch (below(13)) {
            case 0:
            case 1: {
                const std::string name = std::to_string(step);
                EXPECT_EQ(obj_add_mtrl(fi), mc);
                obj_set_mtrl_name(fi, mc, name.c_str());
                model.materials.push_back(model_of(fi).materials.back());
                break;
            }
            case 2:
            case 3:
            case 4: {
                EXPECT_EQ(obj_add_vert(fi), vc);
                const float v[3] = {static_cast<float>(step), 0, 0};
                obj_set_vert_v(fi, vc, v);
                model.vertices.emplace_back().v = {v[0], 0, 0};
                break;
            }
            case 5:
                EXPECT_EQ(obj_add_surf(fi), sc);
                obj_set_surf(fi, sc, below(mc + 2));
                model.surfaces.emplace_back().mi = obj_get_surf(fi, sc);
                break;
            case 6:
            case 7:
            case 8:
                if (s != nullptr) {
                    const std::array<int, 3> t = {below(vc), below(vc + 1), below(vc)};
                    obj_set_poly(fi, si, obj_add_poly(fi, si), t.data());
                    s->triangles.push_back(t);
                    const std::array<int, 2> l = {below(vc), below(vc)};
                    obj_set_line(fi, si, obj_add_line(fi, si), l.data());
                    s->lines.push_back(l);
                }
                break;
            case 9:
                if (vc > 0) {
                    const int vi = below(vc);
                    obj_del_vert(fi, vi);
                    reference::del_vert(model, vi);
                }
                break;
            case 10:
                if (mc > 0) {
                    const int mi = below(mc);
                    obj_del_mtrl(fi, mi);
                    reference::del_mtrl(model, mi);
                }
                break;
            case 11:
                if (s != nullptr && !s->triangles.empty()) {
                    const int pi = below(static_cast<int>(s->triangles.size()));
                    obj_del_poly(fi, si, pi);
                    s->triangles.erase(s->triangles.begin() + pi);
                }
                if (s != nullptr && !s->lines.empty()) {
                    const int li = below(static_cast<int>(s->lines.size()));
                    obj_del_line(fi, si, li);
                    s->lines.erase(s->lines.begin() + li);
                }
                break;
            default:
                if (s != nullptr && below(4) == 0) {
                    obj_del_surf(fi, si);
                    model.surfaces.erase(model.surfaces.begin() + si);
                } else if (below(20) == 0) {
                    obj_mini_file(fi);
                    reference::mini(model);
                }
            }
        }
        ASSERT_EQ(describe(model_of(fi)), describe(model)) << "round " << round;
    }
}

// ---- Bad indices --------------------------------------------------------------------------------

struct BadIndex {
    const char* condition;
    std::function<void()> call;
};

using ObjStoreDeathTest = ObjStoreTest;

TEST_F(ObjStoreDeathTest, ABadIndexNamesItsConditionAndAborts)
{
    const int fi = small();
    float f[4] = {};
    int v[3] = {};
    const char* const file = "0 <= fi && fi < fc";
    const char* const mtrl = "0 <= mi && mi < file(fi)->mc";
    const char* const prop = "0 <= ki && ki < 5";
    const char* const surf = "0 <= si && si < file(fi)->sc";
    const char* const poly = "0 <= pi && pi < surf(fi, si)->pc";
    const char* const line = "0 <= li && li < surf(fi, si)->lc";
    const char* const vert = "0 <= vi && vi < file(fi)->vc";
    const std::vector<BadIndex> calls = {
        {file, [=] { obj_add_mtrl(-1); }},
        {file, [=] { obj_add_vert(1); }},
        {file, [=] { obj_add_surf(1); }},
        {file, [=] { obj_add_poly(1, 0); }},
        {surf, [=] { obj_add_poly(fi, 1); }},
        {file, [=] { obj_add_line(-1, 0); }},
        {surf, [=] { obj_add_line(fi, -1); }},
        {file, [=] { obj_num_mtrl(1); }},
        {file, [=] { obj_num_vert(1); }},
        {file, [=] { obj_num_surf(1); }},
        {surf, [=] { obj_num_poly(fi, 1); }},
        {surf, [=] { obj_num_line(fi, 1); }},
        {file, [=] { obj_set_mtrl_name(1, 0, ""); }},
        {mtrl, [=] { obj_set_mtrl_name(fi, 1, ""); }},
        {mtrl, [=] { obj_set_mtrl_map(fi, -1, 0, ""); }},
        {prop, [=] { obj_set_mtrl_map(fi, 0, 5, ""); }},
        {prop, [=] { obj_set_mtrl_opt(fi, 0, -1, 0); }},
        {prop, [=] { obj_set_mtrl_c(fi, 0, 5, f); }},
        {prop, [=] { obj_set_mtrl_s(fi, 0, 5, f); }},
        {prop, [=] { obj_set_mtrl_o(fi, 0, 5, f); }},
        {mtrl, [=] { obj_get_mtrl_name(fi, 1); }},
        {mtrl, [=] { obj_get_mtrl_map(fi, 1, 0); }},
        {prop, [=] { obj_get_mtrl_opt(fi, 0, 5); }},
        {prop, [=]() mutable { obj_get_mtrl_c(fi, 0, 5, f); }},
        {prop, [=]() mutable { obj_get_mtrl_s(fi, 0, 5, f); }},
        {prop, [=]() mutable { obj_get_mtrl_o(fi, 0, 5, f); }},
        {vert, [=] { obj_set_vert_v(fi, 3, f); }},
        {vert, [=] { obj_set_vert_t(fi, -1, f); }},
        {vert, [=] { obj_set_vert_n(fi, 3, f); }},
        {vert, [=]() mutable { obj_get_vert_v(fi, 3, f); }},
        {vert, [=]() mutable { obj_get_vert_t(fi, 3, f); }},
        {vert, [=]() mutable { obj_get_vert_n(fi, 3, f); }},
        {surf, [=] { obj_set_surf(fi, 1, 0); }},
        {surf, [=] { obj_get_surf(fi, 1); }},
        {poly, [=] { obj_set_poly(fi, 0, 1, v); }},
        {surf, [=]() mutable { obj_get_poly(fi, 1, 0, v); }},
        {poly, [=]() mutable { obj_get_poly(fi, 0, -1, v); }},
        {line, [=] { obj_set_line(fi, 0, 1, v); }},
        {line, [=]() mutable { obj_get_line(fi, 0, 1, v); }},
        {file, [=] { obj_del_file(1); }},
        {mtrl, [=] { obj_del_mtrl(fi, 1); }},
        {vert, [=] { obj_del_vert(fi, 3); }},
        {surf, [=] { obj_del_surf(fi, 1); }},
        {poly, [=] { obj_del_poly(fi, 0, 1); }},
        {line, [=] { obj_del_line(fi, 0, 1); }},
        {file, [=] { obj_mini_file(1); }},
        {file, [=] { obj_proc_file(1); }},
        {file, [=] { obj_norm_file(1); }},
        {file, [=] { obj_init_file(1); }},
        {file, [=] { obj_draw_vert(1); }},
        {prop, [=] { obj_draw_prop(fi, 0, 5); }},
        {mtrl, [=] { obj_draw_mtrl(fi, 1); }},
        {surf, [=] { obj_draw_surf(fi, 1); }},
        {file, [=] { obj_draw_file(1); }},
        {file, [=] { obj_draw_axes(1, 1); }},
        {file, [=] { obj_write_file(1, nullptr, nullptr); }},
    };
    for (std::size_t i = 0; i < calls.size(); ++i) {
        SCOPED_TRACE(std::string("call ") + std::to_string(i));
        std::string message = "^[^:]*ObjStore\\.cpp:[0-9]+: failed assertion `";
        for (const char* c = calls[i].condition; *c != '\0'; ++c) {
            message += *c == '(' || *c == ')' ? std::string("\\") + *c : std::string(1, *c);
        }
        message += "'\n$";
        EXPECT_EXIT(calls[i].call(), testing::KilledBySignal(SIGABRT), message);
    }
}

} // namespace

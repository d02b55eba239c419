#include "ObjAPI.h"

#include "FailingMemory.h"
#include "ObjModel.h"

#include <gmock/gmock.h>
#include <malloc.h>

namespace {

using testing::AllOf;
using testing::Ge;
using testing::Le;

/// In a program of its own: the reader's tables are empty before the first model is read.
class ObjMemoryTest : public ObjTest {
protected:
    /// Writes a model of three surfaces with three triangles each. \return its path
    std::string writeModel() const
    {
        write("m.mtl", "newmtl a\nKd 1 0 0\nd 0.5\n");
        std::string text = "mtllib m.mtl\ns 1\n";
        for (int i = 0; i < 9; ++i) {
            text += "v 1 2 3\nv 4 5 6\nv 7 8 8\nvt 1 1\nvn 0 0 1\n";
            text += "f -1/-1/-1 -2/-1/-1 -3/-1/-1\nf -1 -2 -3 -1/1\nl -1 -2 -3\n";
            text += i % 3 == 2 ? "usemtl a\n" : "";
        }
        return write("m.obj", text);
    }

    /// Every index of the model is in its table.
    static void expectSound(const Model& m)
    {
        const int vc = static_cast<int>(m.vertices.size());
        for (const Model::Surface& surface : m.surfaces) {
            for (const auto& triangle : surface.triangles) {
                for (const int vi : triangle) {
                    EXPECT_TRUE(0 <= vi && vi < vc);
                }
            }
            for (const auto& line : surface.lines) {
                for (const int vi : line) {
                    EXPECT_TRUE(0 <= vi && vi < vc);
                }
            }
            EXPECT_LT(surface.mi, static_cast<int>(m.materials.size()));
        }
    }

    static void expectComplete(const Model& m)
    {
        EXPECT_EQ(m.surfaces.size(), 3U);
        EXPECT_EQ(m.surfaces.at(0).triangles.size(), 9U);
    }
};

// The store's arrays grow by realloc, which a sanitizer does not let fail.
#ifndef KELPIX_SANITIZED

/// Adds elements until there is no room left for one more.
template<typename Add>
void fill(Add add)
{
    const FailingMemory memory(0, FailingMemory::FOR_EVER);
    while (add() >= 0) {
    }
}

TEST_F(ObjMemoryTest, TheFileTableGrowsByTheRuleOfAllArrays)
{
    // The table never shrinks: this is the room that an earlier test has left, or none.
    fill([] { return obj_add_file(nullptr); });
    int capacity = obj_num_file();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(obj_add_file(nullptr), capacity) << "there is memory again";
        capacity = capacity == 0 ? 2 : 2 * capacity;
        const std::size_t size = sizeof(obj_file) * static_cast<std::size_t>(capacity);
        EXPECT_THAT(malloc_usable_size(obj::file(0)), AllOf(Ge(size), Le(size + 40)))
            << "the allocator rounds it up";
        fill([] { return obj_add_file(nullptr); });
        EXPECT_EQ(obj_num_file(), capacity);
    }
}

TEST_F(ObjMemoryTest, AnAddWithoutMemoryGivesMinusOneAndChangesNothing)
{
    const int fi = obj_add_file(nullptr);
    obj_add_surf(fi);
    fill([fi] { return obj_add_mtrl(fi); });
    fill([fi] { return obj_add_vert(fi); });
    fill([fi] { return obj_add_surf(fi); });
    fill([fi] { return obj_add_poly(fi, 0); });
    fill([fi] { return obj_add_line(fi, 0); });
    fill([] { return obj_add_file(nullptr); });
    const int files = obj_num_file();
    const std::string before = describe(model_of(fi));
    const obj_file f = *obj::file(fi);
    const obj_surf s = *obj::surf(fi, 0);
    {
        const FailingMemory memory(0, FailingMemory::FOR_EVER);
        EXPECT_EQ(obj_add_file(nullptr), -1);
        EXPECT_EQ(obj_add_mtrl(fi), -1);
        EXPECT_EQ(obj_add_vert(fi), -1);
        EXPECT_EQ(obj_add_surf(fi), -1);
        EXPECT_EQ(obj_add_poly(fi, 0), -1);
        EXPECT_EQ(obj_add_line(fi, 0), -1);
    }
    EXPECT_EQ(obj_num_file(), files);
    EXPECT_EQ(describe(model_of(fi)), before);
    EXPECT_EQ(obj::file(fi)->mm, f.mm);
    EXPECT_EQ(obj::file(fi)->vm, f.vm);
    EXPECT_EQ(obj::file(fi)->sm, f.sm);
    EXPECT_EQ(obj::file(fi)->mv, f.mv);
    EXPECT_EQ(obj::surf(fi, 0)->pm, s.pm);
    EXPECT_EQ(obj::surf(fi, 0)->lm, s.lm);
    EXPECT_EQ(obj_add_mtrl(fi), f.mc) << "there is memory again";
}

#endif

// Before the reader's tables have room: they keep it from model to model.
TEST_F(ObjMemoryTest, AModelReadWithoutMemoryIsSoundWhereverMemoryEnds)
{
    const std::string file = writeModel();
    bool complete = false;
    for (int n = 0; !complete; ++n) {
        ASSERT_LT(n, 1000);
        int fi = -1;
        {
            const FailingMemory memory(n, FailingMemory::FOR_EVER);
            fi = obj_add_file(file.c_str());
            complete = !memory.hasFailed();
        }
        if (fi >= 0) {
            const Model m = model_of(fi);
            expectSound(m);
            if (complete) {
                expectComplete(m);
            }
            obj_del_file(fi);
        }
    }
}

TEST_F(ObjMemoryTest, AnyAllocationMayFail)
{
    const std::string file = writeModel();
    expectNothingLost([&] {
        failEachAllocation([&] { return obj_add_file(file.c_str()); },
                           [&](int fi, bool complete) {
                               if (fi >= 0 || complete) {
                                   ASSERT_EQ(fi, 0);
                                   const Model m = model_of(fi);
                                   expectSound(m);
                                   if (complete) {
                                       expectComplete(m);
                                   }
                                   obj_del_file(fi);
                               }
                               EXPECT_EQ(obj_num_file(), 0);
                           });
    });
}

TEST_F(ObjMemoryTest, WritingNeedsNoneOfItsOwn)
{
    const std::string file = writeModel();
    const int fi = obj_add_file(file.c_str());
    const std::string obj = path("copy.obj");
    const std::string mtl = path("copy.mtl");
    failEachAllocation(
        [&] {
            obj_write_file(fi, obj.c_str(), mtl.c_str());
            return 0;
        },
        [](int, bool) {});
    EXPECT_NE(read("copy.obj"), "");
    EXPECT_NE(read("copy.mtl"), "");
    obj_del_file(fi);
}

} // namespace

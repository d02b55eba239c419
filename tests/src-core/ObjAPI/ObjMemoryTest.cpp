#include "ObjAPI.h"

#include "FailingMemory.h"
#include "ObjModel.h"

#include <cstdlib>

namespace {

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

int allowed = 0;

void* failing_after_a_while(void* memory, std::size_t size)
{
    return allowed-- > 0 ? std::realloc(memory, size) : nullptr;
}

TEST_F(ObjMemoryTest, AModelReadWithoutMemoryIsSoundWhereverMemoryEnds)
{
    const std::string file = writeModel();
    bool complete = false;
    for (int n = 0; !complete; ++n) {
        ASSERT_LT(n, 1000);
        allowed = n;
        obj::reallocate = failing_after_a_while;
        const int fi = obj_add_file(file.c_str());
        complete = allowed >= 0;
        obj::reallocate = std::realloc;
        if (n == 0) {
            EXPECT_EQ(fi, -1);
            EXPECT_EQ(obj_num_file(), 0);
            continue;
        }
        const Model m = model_of(fi);
        expectSound(m);
        if (complete) {
            expectComplete(m);
        }
        obj_del_file(fi);
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

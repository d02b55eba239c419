#include "ObjAPI.h"

#include "ObjModel.h"

#include <cstdlib>

namespace {

/// In a program of its own: the reader's tables are empty before the first model is read.
class ObjMemoryTest : public ObjTest {};

int allowed = 0;

void* failing_after_a_while(void* memory, std::size_t size)
{
    return allowed-- > 0 ? std::realloc(memory, size) : nullptr;
}

TEST_F(ObjMemoryTest, AModelReadWithoutMemoryIsSoundWhereverMemoryEnds)
{
    write("m.mtl", "newmtl a\nKd 1 0 0\nd 0.5\n");
    std::string text = "mtllib m.mtl\ns 1\n";
    for (int i = 0; i < 9; ++i) {
        text += "v 1 2 3\nv 4 5 6\nv 7 8 8\nvt 1 1\nvn 0 0 1\n";
        text += "f -1/-1/-1 -2/-1/-1 -3/-1/-1\nf -1 -2 -3 -1/1\nl -1 -2 -3\n";
        text += i % 3 == 2 ? "usemtl a\n" : "";
    }
    const std::string file = write("m.obj", text);

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
        if (complete) {
            EXPECT_EQ(m.surfaces.size(), 3U);
            EXPECT_EQ(m.surfaces[0].triangles.size(), 9U);
        }
        obj_del_file(fi);
    }
}

} // namespace

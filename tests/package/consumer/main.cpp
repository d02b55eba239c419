// A program of somebody else: a node, its transform, a model, and a window that is never shown. It
// includes headers with and without their folder, and in no particular order.

#include "Window.h"
#include <FL/gl.h>
#include <cstdio>
#include <kelpix/ObjAPI.h>
#include <kelpix/PivotNode.h>
#include <kelpix/SceneGraph.h>
#include <kelpix/Window.h>

int main()
{
    PivotNode pivot;
    SceneGraph graph;
    graph.setPivotNode(&pivot);
    pivot.translate(1, 2, 3);
    Window window(1, 0, 0, 64, 64);
    window.getRender()->setSG(&graph);
    std::printf("%g %d\n", static_cast<double>(pivot.glTransform()[14]), obj_add_file("none.obj"));
}

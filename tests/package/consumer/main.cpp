// A program of somebody else: a node, its transform, a model, and a window that is never shown.

#include <GL/glew.h>

#include "ObjAPI.h"
#include "PivotNode.h"
#include "SceneGraph.h"
#include "Window.h"

#include <cstdio>

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

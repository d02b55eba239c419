#include "PivotNode.h"

#include "Frustum.h"

int PivotNode::cull()
{
    draw();
    return 1;
}

void PivotNode::draw()
{
    float position[4];
    Frustum::get_view_point(position);
    viewpoint[0] = -position[0];
    viewpoint[1] = -position[1];
}

#include "RootNode.h"

#include "Frustum.h"

int RootNode::cull()
{
    draw();
    return 1;
}

void RootNode::draw()
{
    float position[4];
    Frustum::get_view_point(position);
    viewpoint[0] = -position[0];
    viewpoint[1] = -position[1];
}

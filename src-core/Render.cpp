#include "Render.h"

#include "SceneGraph.h"

void Render::frame()
{
    sg->draw();
}

void Render::idleFrame()
{
    sg->update();
}

#include "UnderwaterScene.h"

#include "Environment.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "Window.h"

UnderwaterScene::UnderwaterScene() : root(new RootNode), pivot(new PivotNode)
{
    root->setName("root");
    pivot->setName("pivot");
}

void UnderwaterScene::addWater(OggSound* voice)
{
    water = new Environment(voice);
    // The newest operation acts first: the unit square is centered, then scaled to fill the view.
    water->scale(1.2f, 1.2f, 1.0f);
    water->translate(-0.5f, -0.5f, 0.0f);
    water->setName("water");
    root->attachChild(pivot);
    pivot->attachChild(water);
    graph.setRootNode(root);
    graph.setPivotNode(pivot);
}

void UnderwaterScene::showIn(Window& window, freetype::font_data& font,
                             void (*drawCallback)(Window*))
{
    constexpr int PERSPECTIVE = 1;
    window.getRender()->getCamera()->setProjType(PERSPECTIVE);
    window.setOffset(0, 0);
    window.border(1);
    window.end();
    window.setFont(&font);
    window.setDrawCallback(drawCallback);
    window.getRender()->setSG(&graph);
}

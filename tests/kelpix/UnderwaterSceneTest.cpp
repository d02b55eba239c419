#include "UnderwaterScene.h"

#include "Environment.h"
#include "FreeType.h"
#include "MoCap.h"
#include "OggSound.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "TestWorld.h"
#include "Window.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

void drawNothing(Window*)
{
}

class UnderwaterSceneTest : public testing::Test {
protected:
    void addWater(OggSound* voice)
    {
        testing::internal::CaptureStdout();
        scene->addWater(voice);
        testing::internal::GetCapturedStdout();
    }

    SceneFolder folder{farAwayRecording()};
    // The nodes live until the process ends.
    UnderwaterScene* scene = kept().emplace_back(new UnderwaterScene);

private:
    static std::vector<UnderwaterScene*>& kept()
    {
        static auto* const scenes = new std::vector<UnderwaterScene*>;
        return *scenes;
    }
};

TEST_F(UnderwaterSceneTest, StartsWithARootAndAPivotApart)
{
    EXPECT_STREQ(scene->root->getName(), "root");
    EXPECT_STREQ(scene->pivot->getName(), "pivot");
    EXPECT_EQ(scene->pivot->getParent(), nullptr);
    EXPECT_EQ(scene->water, nullptr);
    EXPECT_EQ(scene->graph.getRootNode(), nullptr);
}

TEST_F(UnderwaterSceneTest, TheWaterCompletesTheTree)
{
    OggSound voice;
    addWater(&voice);
    EXPECT_STREQ(scene->water->getName(), "water");
    EXPECT_THAT(scene->root->children, ElementsAre(scene->pivot));
    EXPECT_THAT(scene->pivot->children, ElementsAre(scene->water));
    EXPECT_EQ(scene->graph.getRootNode(), scene->root);
    EXPECT_EQ(scene->graph.getPivotNode(), scene->pivot);
    EXPECT_EQ(scene->graph.envNode, nullptr);
    EXPECT_EQ(recordingOf(scene->water)->sound, &voice);
    recordingOf(scene->water)->sound = nullptr;
}

TEST_F(UnderwaterSceneTest, TheWaterIsCenteredAndAFifthLargerThanTheView)
{
    addWater(nullptr);
    const float expected[16] = {1.2f, 0, 0, 0, 0, 1.2f, 0, 0, 0, 0, 1, 0, -0.6f, -0.6f, 0, 1};
    EXPECT_THAT(scene->water->transformmat, ElementsAreArray(expected));
}

TEST_F(UnderwaterSceneTest, AWindowShowsItInPerspective)
{
    Window window(1, 0, 0, 740, 740);
    window.offset[0] = 3;
    window.border(0);
    window.begin();
    freetype::font_data font;
    scene->showIn(window, font, drawNothing);
    EXPECT_EQ(window.getRender()->getCamera()->projType, 1);
    EXPECT_THAT(window.offset, ElementsAre(0, 0));
    EXPECT_NE(window.border(), 0U);
    EXPECT_EQ(Fl_Group::current(), nullptr);
    EXPECT_EQ(window.our_font, &font);
    EXPECT_EQ(window.drawcallback, drawNothing);
    EXPECT_EQ(window.getRender()->getSG(), &scene->graph);
}

} // namespace

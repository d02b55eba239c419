// The whole scene with the generated media in a real window: of any size, minimized for a while,
// and hidden by its program and shown again.

#include <GL/glew.h>

#include "Stage.h"
#include "WindowInput.h"

#include <FL/Fl.H>
#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace {

using testing::HasSubstr;
using testing::Not;

class SceneWindowTest : public testing::Test {
protected:
    static constexpr int SIDE = 160;

    std::filesystem::path before = std::filesystem::current_path();
    Stage* stage = nullptr;
    std::string printed; ///< by the scene, since the last look

    void SetUp() override
    {
        std::filesystem::current_path(KELPIX_MEDIA);
        // What is in it lives as long as the program.
        static std::vector<Stage*> all;
        quietly([&] { all.push_back(new Stage(SIDE, SIDE, 1, Stage::Voice{441000, 44100})); });
        stage = all.back();
        show();
        play(20);
        expectNewContext();
        EXPECT_TRUE(hasWater());
    }

    void TearDown() override
    {
        hide();
        std::filesystem::current_path(before);
    }

    template<typename Action>
    void quietly(Action action)
    {
        testing::internal::CaptureStdout();
        action();
        printed += testing::internal::GetCapturedStdout();
    }

    void show()
    {
        stage->window.show();
        bool drawn = false;
        quietly([&] {
            drawn = runUntil([&] { return stage->window.context() && stage->window.valid(); });
        });
        ASSERT_TRUE(drawn);
    }

    void hide()
    {
        stage->window.hide();
        handlePendingEvents();
    }

    /// The window says for each new context what GL can do.
    void expectNewContext()
    {
        EXPECT_THAT(printed, HasSubstr("GLEW ok;"));
        printed.clear();
    }
    void expectNoNewContext() { EXPECT_THAT(printed, Not(HasSubstr("GLEW ok;"))); }

    /// Frames as FLTK draws them, each after an update.
    void play(int frames)
    {
        for (int n = 0; n < frames; ++n) {
            quietly([&] {
                stage->update();
                stage->window.redraw();
                Fl::flush();
            });
            ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "frame " << n;
        }
    }

    /// As a user does who drags the window's corner.
    void resizeTo(int w, int h)
    {
        xdotool(stage->window, "windowsize @ " + std::to_string(w) + " " + std::to_string(h));
        handlePendingEvents();
        play(1);
        std::array<GLint, 4> viewport{};
        glGetIntegerv(GL_VIEWPORT, viewport.data());
        EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, w, h}));
    }

    /// Whether a frame shows the image of the water: nothing else has so many colors.
    bool hasWater()
    {
        stage->window.make_current();
        quietly([&] { stage->draw(); });
        std::vector<std::array<unsigned char, 4>> pixels(std::size_t{SIDE} * SIDE);
        glReadPixels(0, 0, SIDE, SIDE, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        return std::set(pixels.begin(), pixels.end()).size() > 1000;
    }
};

TEST_F(SceneWindowTest, EverySizeIsDrawn)
{
    for (const auto& [w, h] : {std::pair{1, 1}, {1, 4096}, {4096, 1}, {4096, 4096}}) {
        resizeTo(w, h);
    }
    std::mt19937 random(1);
    for (int n = 0; n < 15; ++n) {
        const auto w = static_cast<int>(1 + random() % 4096);
        resizeTo(w, static_cast<int>(1 + random() % 4096));
    }
    resizeTo(SIDE, SIDE);
    EXPECT_TRUE(hasWater());
    expectNoNewContext();
}

TEST_F(SceneWindowTest, AMinimizedWindowComesBackAsItWas)
{
    void* const context = stage->window.context();
    for (int n = 0; n < 3; ++n) {
        xdotool(stage->window, "windowunmap @");
        handlePendingEvents();
        ASSERT_TRUE(stage->window.shown());
        EXPECT_TRUE(stage->window.valid()) << "its updates would stop";
        stage->window.frames = 0;
        play(10);
        EXPECT_EQ(stage->window.frames, 0) << "frames that nobody sees";

        xdotool(stage->window, "windowmap @");
        handlePendingEvents();
        play(10);
        EXPECT_GE(stage->window.frames, 10);
        EXPECT_TRUE(hasWater());
    }
    EXPECT_EQ(stage->window.context(), context);
    expectNoNewContext();
}

TEST_F(SceneWindowTest, AHiddenWindowLosesTheListsOfItsScene)
{
    // Its nodes were made ready in the first context and do not know of another. They draw what
    // needs no list, and later what other nodes' new lists of the same name hold, but do no harm.
    for (int n = 0; n < 2; ++n) {
        hide();
        stage->update();
        show();
        expectNewContext();
        EXPECT_FALSE(hasWater());
        play(200); // bubbles rise, leave, and delete their lists
    }
}

TEST_F(SceneWindowTest, AHiddenWindowKeepsItsListsWhileAnotherIsShown)
{
    class Keeper : public Fl_Gl_Window {
    public:
        Keeper() : Fl_Gl_Window(0, 0, 10, 10) { end(); }
        void draw() override {}
    };
    Keeper keeper;
    keeper.mode(stage->window.mode());
    keeper.show();
    keeper.make_current();
    for (int n = 0; n < 3; ++n) {
        hide();
        stage->update();
        show();
        expectNewContext();
        play(20);
        EXPECT_TRUE(hasWater());
    }
}

} // namespace

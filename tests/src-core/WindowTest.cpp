#include <GL/glew.h>

#include "Window.h"

#include "ArmedTimers.h"
#include "FreeType.h"
#include "ProbeNode.h"
#include "SceneGraph.h"
#include "TempDirectory.h"
#include "WindowInput.h"

#include <FL/Fl.H>
#include <algorithm>
#include <array>
#include <cmath>
#include <dlfcn.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What the next initialization of GLEW shall find.
struct MachineGL {
    GLenum result = GLEW_OK;
    GLboolean vertexShader = 1;
    GLboolean fragmentShader = 1;
    GLboolean bufferObject = 1;
};
std::optional<MachineGL> machine;

} // namespace

/// Stands before GLEW's own.
GLenum glewInit()
{
    using Init = GLenum (*)();
    static const auto next = reinterpret_cast<Init>(dlsym(RTLD_NEXT, "glewInit"));
    const GLenum result = next();
    if (!machine) {
        return result;
    }
    __GLEW_ARB_vertex_shader = machine->vertexShader;
    __GLEW_ARB_fragment_shader = machine->fragmentShader;
    __GLEW_ARB_vertex_buffer_object = machine->bufferObject;
    return machine->result;
}

namespace {

TEST(WindowDataTest, StartsUnshownAndUnzoomed)
{
    testing::internal::CaptureStdout();
    Window window(3, 11, 22, 333, 444);
    window.end();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Loading...\n");
    EXPECT_EQ(window.frames, 0);
    EXPECT_EQ(window.fps, 0);
    EXPECT_EQ(window.pscale, 1);
    EXPECT_EQ(window.windowId, 3);
    EXPECT_EQ(window.getWindowId(), 3);
    EXPECT_EQ(window.height, 444);
    EXPECT_EQ(window.width, 333);
    EXPECT_THAT(window.origin, ElementsAre(11, 22));
    EXPECT_EQ(window.drawcallback, nullptr);
    EXPECT_FALSE(window.shown());
    EXPECT_STREQ(window.label(), "");
    EXPECT_EQ(window.x(), 11);
    EXPECT_EQ(window.y(), 22);
    EXPECT_EQ(window.w(), 333);
    EXPECT_EQ(window.h(), 444);
    EXPECT_EQ(window.mode(), 30);
    EXPECT_EQ(window.mode(), FL_RGB | FL_DOUBLE | FL_ACCUM | FL_ALPHA | FL_DEPTH);
}

TEST(WindowDataTest, KeepsItsFieldsInOrder)
{
    const Window window(1, 0, 0, 10, 10);
    Fl_Group::current(nullptr);
    const std::array<const void*, 12> fields = {
        &window.frames,   &window.fps,   &window.offset, &window.pscale,
        &window.our_font, &window.MOUSE, &window.render, &window.windowId,
        &window.height,   &window.width, &window.origin, &window.drawcallback};
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));
}

TEST(WindowDataTest, SettersAndGetters)
{
    Window window(1, 0, 0, 10, 10);
    window.end();
    freetype::font_data font;
    window.setOffset(0.25f, -0.5f);
    window.setFont(&font);
    const auto callback = [](Window*) {};
    window.setDrawCallback(callback);
    EXPECT_THAT(window.offset, ElementsAre(0.25f, -0.5f));
    EXPECT_EQ(window.our_font, &font);
    EXPECT_EQ(window.drawcallback, static_cast<void (*)(Window*)>(callback));
    EXPECT_EQ(window.getRender(), &window.render);
    EXPECT_EQ(window.getRender()->getCamera(), &window.render.camera);
}

TEST(WindowDataTest, TheFrameRateIsSampledAtOnceAndThenOnceASecond)
{
    armedTimers().clear();
    Window window(1, 0, 0, 10, 10);
    window.end();
    EXPECT_THAT(armedTimers(), ElementsAre(ArmedTimer{0.0, timer, &window, false}));
    window.frames = 40;
    timer(&window);
    EXPECT_EQ(window.fps, 40);
    EXPECT_EQ(window.frames, 0);
    EXPECT_THAT(armedTimers(), ElementsAre(ArmedTimer{0.0, timer, &window, false},
                                           ArmedTimer{1.0, timer, &window, true}));
    timer(&window);
    EXPECT_EQ(window.fps, 0);
}

TEST(WindowDataTest, TheSamplerRearmsItselfWithoutAWindow)
{
    armedTimers().clear();
    timer(nullptr);
    EXPECT_THAT(armedTimers(), ElementsAre(ArmedTimer{1.0, timer, nullptr, true}));
    Fl::remove_timeout(timer, nullptr);
}

TEST(WindowDataTest, ADestroyedWindowIsNotSampled)
{
    auto window = std::make_unique<Window>(1, 0, 0, 10, 10);
    window->end();
    void* const address = window.get();
    EXPECT_TRUE(Fl::has_timeout(timer, address));
    window.reset();
    EXPECT_FALSE(Fl::has_timeout(timer, address));
}

/// Shows windows in a folder that holds the scene's font.
class WindowTest : public testing::Test {
protected:
    Journal journal;
    ProbeNode root{"root", journal};
    SceneGraph graph;
    freetype::font_data font;

    static void SetUpTestSuite()
    {
        folder() = std::make_unique<TempDirectory>();
        std::filesystem::create_directory("fonts");
        std::filesystem::copy_file(KELPIX_FONT, "fonts/ChalkboardBold.ttf");
    }
    static void TearDownTestSuite() { folder().reset(); }
    static std::unique_ptr<TempDirectory>& folder()
    {
        static std::unique_ptr<TempDirectory> directory;
        return directory;
    }

    void SetUp() override { graph.setRootNode(&root); }

    std::unique_ptr<Window> makeWindow(int id = 1)
    {
        auto window = std::make_unique<Window>(id, 0, 0, 300, 200);
        window->end();
        window->getRender()->setSG(&graph);
        window->getRender()->getCamera()->setProjType(1);
        return window;
    }

    /// Shows it and waits for its first frame. Its context is current then.
    static void show(Window& window)
    {
        window.show();
        ASSERT_TRUE(runUntil([&] { return window.valid() != 0; }));
        window.make_current();
    }

    std::unique_ptr<Window> showWindow(int id = 1)
    {
        auto window = makeWindow(id);
        show(*window);
        return window;
    }

    static std::vector<GLint> viewportOf(Window& window)
    {
        window.make_current();
        std::vector<GLint> viewport(4);
        glGetIntegerv(GL_VIEWPORT, viewport.data());
        return viewport;
    }
    static GLint getInteger(GLenum what)
    {
        GLint value = 0;
        glGetIntegerv(what, &value);
        return value;
    }
    static std::vector<float> getFloats(GLenum what, std::size_t count)
    {
        std::vector<float> values(count);
        glGetFloatv(what, values.data());
        return values;
    }
};

bool hasExtension(const std::string& name)
{
    const std::string all = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    return (" " + all + " ").find(" " + name + " ") != std::string::npos;
}

TEST_F(WindowTest, TheFirstFrameSaysWhatGLCanDo)
{
    auto window = makeWindow();
    testing::internal::CaptureStdout();
    show(*window);
    const std::string printed = testing::internal::GetCapturedStdout();
    const bool shaders =
        hasExtension("GL_ARB_vertex_shader") && hasExtension("GL_ARB_fragment_shader");
    const bool buffers = hasExtension("GL_ARB_vertex_buffer_object");
    EXPECT_EQ(printed, std::string("GLEW ok; ") + (shaders ? "can do GLSL; " : "can't do GLSL; ") +
                           (buffers ? "can do VBO; " : "can't do VBO; ") + "\n");
}

TEST_F(WindowTest, WhatIsMissingIsSaid)
{
    auto window = showWindow();
    const auto printed = [&](const MachineGL& claim) {
        machine = claim;
        testing::internal::CaptureStdout();
        window->initGL();
        machine = {};
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(printed({GLEW_OK, 1, 1, 1}), "GLEW ok; can do GLSL; can do VBO; \n");
    EXPECT_EQ(printed({GLEW_OK, 0, 1, 1}), "GLEW ok; can't do GLSL; can do VBO; \n");
    EXPECT_EQ(printed({GLEW_OK, 1, 0, 1}), "GLEW ok; can't do GLSL; can do VBO; \n");
    EXPECT_EQ(printed({GLEW_OK, 1, 1, 0}), "GLEW ok; can do GLSL; can't do VBO; \n");
    EXPECT_EQ(printed({GLEW_ERROR_NO_GLX_DISPLAY, 0, 0, 0}),
              "GLEW failed; can't do GLSL; can't do VBO; \n");
    EXPECT_EQ(window->valid(), 1);
}

TEST_F(WindowTest, InitializationSetsTheFixedState)
{
    auto window = showWindow();
    EXPECT_EQ(window->valid(), 1);
    EXPECT_THAT(getFloats(GL_COLOR_CLEAR_VALUE, 4), ElementsAre(0.02f, 0.1f, 0.15f, 1.0f));
    EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
    EXPECT_TRUE(glIsEnabled(GL_COLOR_MATERIAL));
    EXPECT_EQ(getInteger(GL_COLOR_MATERIAL_FACE), GL_FRONT);
    EXPECT_EQ(getInteger(GL_COLOR_MATERIAL_PARAMETER), GL_AMBIENT);
    EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_MODELVIEW);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(WindowTest, TheVisualHasWhatWasAskedFor)
{
    auto window = showWindow();
    EXPECT_EQ(getInteger(GL_DOUBLEBUFFER), 1);
    EXPECT_GE(getInteger(GL_ALPHA_BITS), 1);
    EXPECT_GE(getInteger(GL_DEPTH_BITS), 1);
    EXPECT_GE(getInteger(GL_ACCUM_RED_BITS), 1);
}

TEST_F(WindowTest, InitializationSetsTheCameraUpWithTheOffset)
{
    auto window = makeWindow();
    window->setOffset(0.5f, 0.25f);
    window->getRender()->getCamera()->setProjType(0);
    show(*window);
    EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, 300, 200));
    EXPECT_THAT(window->getRender()->getCamera()->view, ElementsAre(300, 200));
    const std::vector<float> projection = getFloats(GL_PROJECTION_MATRIX, 16);
    EXPECT_NEAR(projection[0], 1.0 / 300, 1e-7);
    EXPECT_NEAR(projection[12], -0.5, 1e-6);
    EXPECT_NEAR(projection[13], -0.25, 1e-6);
}

TEST_F(WindowTest, TheZoomFactorStartsAsTheRootsScale)
{
    root.scale(1.5f, 3, 1);
    auto window = makeWindow();
    EXPECT_EQ(window->pscale, 1);
    show(*window);
    EXPECT_EQ(window->pscale, 1.5f);
}

TEST_F(WindowTest, TheFontIsLoadedAtTwelvePoints)
{
    auto window = makeWindow();
    window->setFont(&font);
    show(*window);
    EXPECT_EQ(font.h, 12);
    for (GLuint c = 0; c < 128; ++c) {
        EXPECT_TRUE(glIsList(font.list_base + c)) << c;
    }
    font.clean();
}

TEST_F(WindowTest, AMissingFontEscapesFromDraw)
{
    auto window = showWindow();
    window->setFont(&font);
    window->valid(0);
    std::filesystem::rename("fonts", "elsewhere");
    std::string message;
    try {
        window->draw();
    } catch (const std::runtime_error& failure) {
        message = failure.what();
    }
    std::filesystem::rename("elsewhere", "fonts");
    EXPECT_EQ(message, "FT_New_Face failed (there is probably a problem with your font file)");
    EXPECT_EQ(window->frames, 1) << "the failed frame counts";
    font.clean();
}

TEST_F(WindowTest, AnInvalidContextIsInitializedAgain)
{
    auto window = showWindow();
    window->make_current();
    testing::internal::CaptureStdout();
    window->draw();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");

    glClearColor(1, 1, 1, 1);
    root.scale(2, 2, 1);
    window->valid(0);
    testing::internal::CaptureStdout();
    window->draw();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "GLEW ok; can do GLSL; can do VBO; \n");
    EXPECT_THAT(getFloats(GL_COLOR_CLEAR_VALUE, 4), ElementsAre(0.02f, 0.1f, 0.15f, 1.0f));
    EXPECT_EQ(window->pscale, 2);
    EXPECT_EQ(window->valid(), 1);
}

TEST_F(WindowTest, AFrameIsClearedDrawnTitledAndCounted)
{
    static Journal* sharedJournal = nullptr;
    static Window* sharedWindow = nullptr;
    sharedJournal = &journal;
    auto window = showWindow();
    sharedWindow = window.get();
    journal.clear();
    window->frames = 0;
    root.onCull = [](ProbeNode&) {
        EXPECT_STREQ(sharedWindow->label(), "kelpix (0.0 fps)") << "titled after the frame";
        std::array<unsigned char, 4> pixel{};
        glReadPixels(150, 100, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, pixel.data());
        // 0.02, 0.1 and 0.15 of 255.
        EXPECT_THAT(pixel, ElementsAre(5, 26, 38, 0));
        float depth = 0;
        glReadPixels(150, 100, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
        EXPECT_EQ(depth, 1);
    };
    window->setDrawCallback([](Window* drawn) {
        sharedJournal->push_back("callback " + std::string(drawn->label()) + " " +
                                 std::to_string(drawn->frames));
    });
    // Something to clear.
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glClearColor(1, 1, 1, 1);
    glClearDepth(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glPopAttrib();
    window->fps = 12.25f;
    window->draw();
    EXPECT_THAT(journal, ElementsAre("root.cull", "callback kelpix (12.2 fps) 0"));
    EXPECT_EQ(window->frames, 1);
    window->setDrawCallback(nullptr);
    root.onCull = nullptr;
    window->draw();
    EXPECT_EQ(window->frames, 2);
}

TEST_F(WindowTest, TheTitleTellsTheFrameRate)
{
    auto window = showWindow();
    EXPECT_STREQ(window->label(), "kelpix (0.0 fps)");
    EXPECT_EQ(xdotool(*window, "getwindowname @"), "kelpix (0.0 fps)");
    window->frames = 40;
    timer(window.get());
    window->draw();
    EXPECT_STREQ(window->label(), "kelpix (40.0 fps)");
    handlePendingEvents();
    EXPECT_EQ(xdotool(*window, "getwindowname @"), "kelpix (40.0 fps)");
}

TEST_F(WindowTest, NoFrameRateOverflowsTheTitle)
{
    auto window = showWindow();
    window->fps = std::numeric_limits<float>::max();
    window->draw();
    EXPECT_EQ(std::string(window->label()).substr(0, 12), "kelpix (3402");
    window->fps = std::numeric_limits<float>::quiet_NaN();
    window->draw();
    EXPECT_THAT(window->label(), testing::AnyOf(testing::StrEq("kelpix (nan fps)"),
                                                testing::StrEq("kelpix (-nan fps)")));
}

TEST_F(WindowTest, OnlyWindowOneUpdatesItsScene)
{
    auto first = showWindow(1);
    auto second = showWindow(2);
    journal.clear();
    second->idle();
    EXPECT_THAT(journal, IsEmpty());
    first->idle();
    EXPECT_THAT(journal, ElementsAre("root.doupdate"));
    second->make_current();
    second->draw();
    EXPECT_THAT(journal, ElementsAre("root.doupdate", "root.cull"));
}

TEST_F(WindowTest, NothingIsUpdatedBeforeTheFirstFrame)
{
    auto window = makeWindow();
    window->idle();
    EXPECT_THAT(journal, IsEmpty());
    show(*window);
    journal.clear();
    window->valid(0);
    window->idle();
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(WindowTest, ANewSizeReachesTheCameraAndNotTheBaseClass)
{
    auto window = makeWindow();
    window->setOffset(0.001f, 0);
    show(*window);
    window->resize(7, 8, 500, 100);
    EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, 500, 100));
    EXPECT_NEAR(getFloats(GL_PROJECTION_MATRIX, 16)[0], std::sqrt(3.0) / 5, 1e-6);
    EXPECT_EQ(getFloats(GL_PROJECTION_MATRIX, 16)[12], 0) << "a resize drops the offset";
    EXPECT_EQ(window->x(), 7);
    EXPECT_EQ(window->y(), 8);
    EXPECT_EQ(window->w(), 500);
    EXPECT_EQ(window->h(), 100);
    EXPECT_EQ(window->valid(), 1) << "the base class makes it invalid";
    EXPECT_EQ(window->width, 300);
    EXPECT_EQ(window->height, 200);
    EXPECT_THAT(window->origin, ElementsAre(0, 0));
    EXPECT_THAT(window->getRender()->getCamera()->view, ElementsAre(300, 200));
    window->draw();
    EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, 500, 100));
}

TEST_F(WindowTest, ASizeGivenBeforeTheFirstFrameIsAppliedInIt)
{
    auto window = makeWindow();
    window->setOffset(0.001f, 0);
    window->resize(0, 0, 400, 100);
    window->resize(0, 0, 600, 100);
    window->show();
    window->make_current();
    window->draw();
    EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, 600, 100));
    EXPECT_NEAR(getFloats(GL_PROJECTION_MATRIX, 16)[0], std::sqrt(3.0) / 6, 1e-6);
    EXPECT_EQ(getFloats(GL_PROJECTION_MATRIX, 16)[12], 0);
    EXPECT_THAT(window->getRender()->getCamera()->view, ElementsAre(300, 200));

    // Also when one side alone differs.
    for (const auto& [w, h] : {std::pair{600, 100}, {600, 200}, {300, 100}}) {
        window->resize(0, 0, w, h);
        window->valid(0); // as FLTK does for a new context
        window->draw();
        EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, w, h));
    }
}

TEST_F(WindowTest, ASizeFromTheXServerBeforeTheFirstFrameIsAppliedInIt)
{
    auto window = makeWindow();
    window->show();
    Fl::flush(); // nothing is drawn before the X server says that the window is exposed
    xdotool(*window, "windowsize @ 450 150");
    show(*window);
    EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, 450, 150));
}

TEST_F(WindowTest, TheConstructedSizeGivenBeforeTheFirstFrameKeepsTheOffset)
{
    auto window = makeWindow();
    window->setOffset(0.001f, 0);
    window->resize(5, 5, 300, 200);
    show(*window);
    EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, 300, 200));
    EXPECT_NE(getFloats(GL_PROJECTION_MATRIX, 16)[12], 0);
}

TEST_F(WindowTest, ASizeFromTheXServerReachesItsOwnWindow)
{
    auto first = showWindow();
    auto second = showWindow(2);
    xdotool(*first, "windowsize --sync @ 450 150");
    second->make_current();
    handlePendingEvents();
    EXPECT_THAT(viewportOf(*first), ElementsAre(0, 0, 450, 150));
    EXPECT_THAT(viewportOf(*second), ElementsAre(0, 0, 300, 200));
}

TEST_F(WindowTest, AWindowShownAgainHasTheSizeThatItHad)
{
    auto window = showWindow();
    xdotool(*window, "windowsize --sync @ 500 100");
    handlePendingEvents();
    window->hide();
    show(*window);
    EXPECT_THAT(viewportOf(*window), ElementsAre(0, 0, 500, 100));
    EXPECT_THAT(xdotool(*window, "getwindowgeometry @"), testing::HasSubstr("500x100"));
}

} // namespace

#include "AppManager.h"

#include "ArmedTimers.h"
#include "ProbeNode.h"
#include "SceneGraph.h"
#include "Window.h"
#include "WindowInput.h"

#include <FL/Fl.H>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <optional>
#include <sys/time.h>

namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::Pair;

/// Microseconds that FLTK takes for the time of day; the machine's clock while there are none.
std::optional<long long> testTime;

} // namespace

/// Stands in for the C library's, from which FLTK takes the time of its timers.
extern "C" int gettimeofday(timeval* now, void* /*zone*/) noexcept
{
    if (testTime) {
        *now = {*testTime / 1'000'000, *testTime % 1'000'000};
        return 0;
    }
    timespec machine{};
    clock_gettime(CLOCK_REALTIME, &machine);
    *now = {machine.tv_sec, machine.tv_nsec / 1000};
    return 0;
}

namespace {

/// Two windows of one scene that nobody has shown.
class AppManagerTest : public testing::Test {
protected:
    Journal journal;
    ProbeNode root{"root", journal};
    SceneGraph graph;
    std::unique_ptr<Window> first = makeWindow(1);
    std::unique_ptr<Window> second = makeWindow(2);
    AppManager manager;

    std::unique_ptr<Window> makeWindow(int id)
    {
        auto window = std::make_unique<Window>(id, 0, 0, 60, 40);
        window->end();
        window->getRender()->setSG(&graph);
        window->getRender()->getCamera()->setProjType(1);
        return window;
    }
    void SetUp() override
    {
        graph.setRootNode(&root);
        tm_idle = 0;
        tm_draw = 0;
        armedTimers().clear();
    }

    /// What one firing of a timer arms next.
    static std::vector<ArmedTimer> armedBy(void (*callback)(void*), void* argument)
    {
        armedTimers().clear();
        callback(argument);
        // It would go on without end otherwise.
        Fl::remove_timeout(callback, argument);
        return armedTimers();
    }
};

TEST_F(AppManagerTest, ListsWindowsInTheOrderOfTheirArrival)
{
    EXPECT_THAT(manager.windowList, IsEmpty());
    EXPECT_EQ(manager.getWindowList(), &manager.windowList);
    manager.addWindow(second.get());
    manager.addWindow(first.get());
    EXPECT_THAT(manager.windowList, ElementsAre(second.get(), first.get()));
}

TEST_F(AppManagerTest, WithoutWindowsTheRatesStayAsTheyAre)
{
    tm_idle = 11;
    tm_draw = 22;
    manager.addTimeouts(40, 50);
    EXPECT_EQ(tm_idle, 11);
    EXPECT_EQ(tm_draw, 22);
    EXPECT_THAT(armedTimers(), IsEmpty());
}

TEST_F(AppManagerTest, AddTimeoutsShowsEachWindowAndStartsItsRedrawsFirst)
{
    manager.addWindow(first.get());
    manager.addWindow(second.get());
    EXPECT_FALSE(first->shown());
    manager.addTimeouts(20, 60);
    EXPECT_TRUE(first->shown());
    EXPECT_TRUE(second->shown());
    EXPECT_EQ(tm_idle, 20);
    EXPECT_EQ(tm_draw, 60);
    EXPECT_THAT(armedTimers(), ElementsAre(ArmedTimer{0.0, timerRedraw, first.get(), false},
                                           ArmedTimer{0.0, timerIdle, first.get(), false},
                                           ArmedTimer{0.0, timerRedraw, second.get(), false},
                                           ArmedTimer{0.0, timerIdle, second.get(), false}));
}

TEST_F(AppManagerTest, TheLastRatesHoldForAllWindows)
{
    AppManager other;
    manager.addWindow(first.get());
    other.addWindow(second.get());
    manager.addTimeouts(20, 60);
    other.addTimeouts(10, 30);
    EXPECT_THAT(armedBy(timerIdle, first.get()),
                ElementsAre(ArmedTimer{1.0 / 10, timerIdle, first.get(), true}));
    EXPECT_THAT(armedBy(timerRedraw, first.get()),
                ElementsAre(ArmedTimer{1.0 / 30, timerRedraw, first.get(), true}));
}

TEST_F(AppManagerTest, ThePeriodsAreQuotientsInDoublePrecision)
{
    tm_idle = 40;
    tm_draw = 60;
    EXPECT_THAT(armedBy(timerIdle, first.get()),
                ElementsAre(ArmedTimer{0.025, timerIdle, first.get(), true}));
    EXPECT_THAT(armedBy(timerRedraw, first.get()),
                ElementsAre(ArmedTimer{1.0 / 60.0, timerRedraw, first.get(), true}));
    // The rate is looked up at each firing.
    tm_draw = 0.1f;
    EXPECT_THAT(
        armedBy(timerRedraw, first.get()),
        ElementsAre(ArmedTimer{1.0 / static_cast<double>(0.1f), timerRedraw, first.get(), true}));
}

TEST_F(AppManagerTest, TimersRearmThemselvesWithoutAWindow)
{
    tm_idle = 20;
    tm_draw = 60;
    EXPECT_THAT(armedBy(timerIdle, nullptr),
                ElementsAre(ArmedTimer{1.0 / 20, timerIdle, nullptr, true}));
    EXPECT_THAT(armedBy(timerRedraw, nullptr),
                ElementsAre(ArmedTimer{1.0 / 60, timerRedraw, nullptr, true}));
}

TEST_F(AppManagerTest, RatesThatAreNotPositiveNeverFireAgain)
{
    constexpr double NEVER = std::numeric_limits<double>::infinity();
    for (const float rate : {0.0f, -0.0f, -40.0f, -std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::quiet_NaN()}) {
        tm_idle = rate;
        tm_draw = rate;
        EXPECT_THAT(armedBy(timerIdle, nullptr),
                    ElementsAre(ArmedTimer{NEVER, timerIdle, nullptr, true}));
        EXPECT_THAT(armedBy(timerRedraw, nullptr),
                    ElementsAre(ArmedTimer{NEVER, timerRedraw, nullptr, true}));
    }
}

TEST_F(AppManagerTest, RatesBeyondAllScreensAreCapped)
{
    for (const float rate : {20000.0f, 1e30f, std::numeric_limits<float>::infinity()}) {
        tm_idle = rate;
        EXPECT_THAT(armedBy(timerIdle, nullptr),
                    ElementsAre(ArmedTimer{0.0001, timerIdle, nullptr, true}));
    }
}

TEST_F(AppManagerTest, NoRateKeepsTheToolkitInItsTimerLoop)
{
    manager.addWindow(first.get());
    for (const float rate : {0.0f, -1.0f, 1e30f}) {
        manager.addTimeouts(rate, rate);
        for (int i = 0; i < 5; ++i) {
            Fl::wait(0.01); // would not return
        }
        Fl::remove_timeout(timerIdle, first.get());
        Fl::remove_timeout(timerRedraw, first.get());
    }
}

TEST_F(AppManagerTest, TheIdleTimerUpdatesTheSceneOnceForTheFirstWindowOnly)
{
    first->show();
    second->show();
    ASSERT_TRUE(runUntil([this] { return first->valid() && second->valid(); }));
    journal.clear();
    armedBy(timerIdle, second.get());
    EXPECT_THAT(journal, IsEmpty());
    armedBy(timerIdle, first.get());
    EXPECT_THAT(journal, ElementsAre("root.doupdate"));
}

TEST_F(AppManagerTest, TheRedrawTimerAsksForARepaintThatComesLater)
{
    first->show();
    ASSERT_TRUE(runUntil([this] { return first->valid() != 0; }));
    handlePendingEvents();
    journal.clear();
    EXPECT_EQ(first->damage(), 0);
    armedBy(timerRedraw, first.get());
    EXPECT_NE(first->damage(), 0);
    EXPECT_THAT(journal, IsEmpty());
    Fl::flush();
    EXPECT_THAT(journal, ElementsAre("root.cull"));
}

TEST_F(AppManagerTest, TheFirstPassAsksForARedrawBeforeItUpdates)
{
    first->show();
    ASSERT_TRUE(runUntil([this] { return first->valid() != 0; }));
    handlePendingEvents();
    static Window* watched = nullptr;
    watched = first.get();
    root.onUpdate = [](ProbeNode& node) {
        node.journal.emplace_back(watched->damage() ? "redraw is due" : "no redraw is due");
    };
    journal.clear();
    manager.addWindow(first.get());
    manager.addTimeouts(1, 1);
    ASSERT_TRUE(runUntil([this] { return journal.size() >= 3; }));
    EXPECT_THAT(journal, ElementsAre("root.doupdate", "redraw is due", "root.cull"));
}

TEST_F(AppManagerTest, UpdatesAndFramesGoOnAfterTheFirst)
{
    manager.addWindow(first.get());
    manager.addTimeouts(200, 100);
    const auto count = [this](const char* entry) {
        return std::ranges::count(journal, std::string(entry));
    };
    EXPECT_TRUE(runUntil([&] { return count("root.doupdate") >= 5 && count("root.cull") >= 5; }));
}

TEST_F(AppManagerTest, TheTimersOfAWindowEndWithIt)
{
    Window* const window = first.get();
    manager.addWindow(window);
    manager.addTimeouts(40, 40);
    EXPECT_TRUE(Fl::has_timeout(timerIdle, window));
    EXPECT_TRUE(Fl::has_timeout(timerRedraw, window));
    first.reset();
    EXPECT_FALSE(Fl::has_timeout(timerIdle, window));
    EXPECT_FALSE(Fl::has_timeout(timerRedraw, window));
}

TEST_F(AppManagerTest, RatesAreSetAfterTheWindowIsShown)
{
    /// Notes the rates that hold when it is shown.
    class Watcher : public Window {
    public:
        std::vector<float> rates;
        Watcher() : Window(2, 0, 0, 60, 40) { end(); }
        void show() override { rates = {tm_idle, tm_draw}; }
    };
    Watcher watcher;
    manager.addWindow(&watcher);
    tm_idle = 11;
    tm_draw = 22;
    manager.addTimeouts(20, 60);
    EXPECT_THAT(watcher.rates, ElementsAre(11, 22));
    EXPECT_EQ(tm_idle, 20);
    EXPECT_EQ(tm_draw, 60);
}

/// Runs the event loop on a clock that only the test moves.
class AppManagerClockTest : public AppManagerTest {
protected:
    void SetUp() override
    {
        AppManagerTest::SetUp();
        first->show();
        ASSERT_TRUE(runUntil([this] { return first->valid() != 0; }));
        handlePendingEvents();
        testTime = 1'000'000'000;
        // Starts anew on this clock.
        Fl::remove_timeout(timer, first.get());
        Fl::add_timeout(0.0, timer, first.get());
    }
    void TearDown() override { testTime.reset(); }

    /// Starts the timers, which all fire once.
    void start(float idle, float redraw)
    {
        manager.addWindow(first.get());
        manager.addTimeouts(idle, redraw);
        Fl::wait(0);
    }
    /// Lets so many milliseconds go by.
    static void pass(int milliseconds)
    {
        for (int i = 0; i < milliseconds; ++i) {
            testTime = *testTime + 1000;
            Fl::wait(0);
        }
    }
    /// So many frames, or one more: an Expose event may be late.
    static auto frames(int count) { return AllOf(Ge(count), Le(count + 1)); }
    std::pair<int, int> updatesAndFramesIn(int milliseconds)
    {
        journal.clear();
        pass(milliseconds);
        return {static_cast<int>(std::ranges::count(journal, "root.doupdate")),
                static_cast<int>(std::ranges::count(journal, "root.cull"))};
    }
};

TEST_F(AppManagerClockTest, UpdatesAndFramesComeAtTheirRates)
{
    start(20, 60);
    // A little more than two seconds, so that no timer is due at the very end.
    EXPECT_THAT(updatesAndFramesIn(2010), Pair(40, frames(120)));
    EXPECT_NEAR(first->fps, 60, 2);
    char title[32];
    std::snprintf(title, sizeof title, "kelpix (%.1f fps)", static_cast<double>(first->fps));
    EXPECT_STREQ(first->label(), title);
}

TEST_F(AppManagerClockTest, TheTimersOfAWindowOutliveItsManager)
{
    {
        AppManager local;
        local.addWindow(first.get());
        local.addTimeouts(20, 60);
    }
    Fl::wait(0);
    EXPECT_THAT(updatesAndFramesIn(1010), Pair(20, frames(60)));
}

TEST_F(AppManagerClockTest, AClockThatJumpsForwardsCostsTwoUpdatesAtMost)
{
    start(40, 40);
    pass(1010);
    testTime = *testTime + 3'600'000'000;
    EXPECT_THAT(updatesAndFramesIn(1000), Pair(AllOf(Ge(40), Le(42)), AllOf(Ge(40), Le(43))));
    EXPECT_THAT(updatesAndFramesIn(1000), Pair(40, frames(40)));
}

TEST_F(AppManagerClockTest, AClockThatJumpsBackwardsCostsOneUpdateAtMost)
{
    start(40, 40);
    pass(1010);
    testTime = *testTime - 3'600'000'000;
    EXPECT_THAT(updatesAndFramesIn(1000), Pair(AllOf(Ge(39), Le(40)), AllOf(Ge(39), Le(41))));
    EXPECT_THAT(updatesAndFramesIn(1000), Pair(40, frames(40)));
}

TEST_F(AppManagerClockTest, ARateOfZeroFiresOnlyOnce)
{
    journal.clear();
    start(0, 40);
    EXPECT_THAT(journal, Contains("root.doupdate").Times(1));
    EXPECT_THAT(updatesAndFramesIn(2010), Pair(0, frames(80)));
}

} // namespace

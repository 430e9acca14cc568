// How pictures reach the screen: the pacing of presents against the
// display's refresh, and the choice of renderer for the machine.
#include "platform/FramePacer.h"
#include "platform/RenderChoice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double Hz60 = 1.0 / 60.0;

// A game loop on a simulated clock: each frame takes `work` seconds to
// compose, then the present, which either returns at once or waits for the
// display's next refresh (at `phase` + k periods).
struct SimulatedLoop {
    double t = 0.0;
    double work = 0.001;
    double oversleep = 0.0;       // how much later than asked a sleep wakes
    double presentCost = 0.0;     // the present's own work
    bool presentWaits = false;
    double phase = 0.007;
    double longestWait = 0.0;
    std::vector<double> shown;    // when each picture reached the screen
    std::vector<double> held;     // how long each present waited for its refresh
    CFramePacer pacer{[this] { return t; }, [this](double s) {
                          longestWait = std::max(longestWait, s);
                          t += s + oversleep;
                      }};

    void Frame(double period = Hz60)
    {
        t += work;
        pacer.WaitForTurn(period);
        t += presentCost;
        const double called = t;
        if (presentWaits)
            t = phase + std::ceil((t - phase) / period + 1e-9) * period;
        held.push_back(t - called);
        shown.push_back(t);
        pacer.Presented();
    }
    void RunFor(double seconds, double period = Hz60)
    {
        const double end = t + seconds;
        while (t < end)
            Frame(period);
    }
    double Rate(std::size_t from = 0) const
    {
        return static_cast<double>(shown.size() - 1 - from) / (shown.back() - shown[from]);
    }
    double ShortestInterval(std::size_t from = 1) const
    {
        double shortest = 1e9;
        for (std::size_t i = std::max<std::size_t>(from, 1); i < shown.size(); ++i)
            shortest = std::min(shortest, shown[i] - shown[i - 1]);
        return shortest;
    }
};

TEST(FramePacer, APresentThatDoesNotWaitIsHeldToTheRefreshRateExactly)
{
    // The plain case, a sleep that overshoots by 80 us as Linux's do, and a
    // slow one: none may change the rate (whole-millisecond waits made 62.5).
    for (double oversleep : {0.0, 0.00008, 0.0004}) {
        SimulatedLoop loop;
        loop.oversleep = oversleep;
        loop.RunFor(10.0);
        EXPECT_NEAR(loop.Rate(), 60.0, 0.05) << "oversleeping " << oversleep;
        EXPECT_GE(loop.ShortestInterval(), Hz60 * (1 - CFramePacer::CatchUpShare) - 1e-9);
        EXPECT_LE(loop.longestWait, Hz60);
    }
}

TEST(FramePacer, ASlowPresentIsNotTakenForAWaitForTheDisplay)
{
    // OpenGL drawn by a software rasteriser: 6 ms a present, no waiting.
    SimulatedLoop loop;
    loop.presentCost = 0.006;
    loop.RunFor(10.0);
    EXPECT_NEAR(loop.Rate(), 60.0, 0.05);
    EXPECT_GE(loop.ShortestInterval(), Hz60 * (1 - CFramePacer::CatchUpShare) - 1e-9);
}

TEST(FramePacer, APresentThatWaitsForTheDisplayKeepsEveryRefresh)
{
    for (double phase : {0.0, 0.004, 0.0166}) {
        SimulatedLoop loop;
        loop.presentWaits = true;
        loop.phase = phase;
        loop.RunFor(10.0);
        EXPECT_NEAR(loop.Rate(), 60.0, 0.05) << "phase " << phase;
        // After the first frames a picture waits no longer than the pacer's
        // lead for its refresh: it is not held back a whole period.
        EXPECT_LE(*std::max_element(loop.held.begin() + 3, loop.held.end()), CFramePacer::WaitedShare * Hz60 + 1e-9);
        // One picture a refresh: none skipped because the pacer slept past one.
        EXPECT_NEAR(loop.ShortestInterval(), Hz60, 1e-6);
        for (std::size_t i = 1; i < loop.shown.size(); ++i)
            ASSERT_NEAR(loop.shown[i] - loop.shown[i - 1], Hz60, 1e-6) << "frame " << i;
    }
}

TEST(FramePacer, SlowFramesAreNotMadeUpWithABurst)
{
    SimulatedLoop loop;
    loop.RunFor(1.0);
    const std::size_t before = loop.shown.size();
    loop.work = 0.1; // a stall, as when the level's objects come in at once
    loop.Frame();
    loop.work = 0.001;
    loop.RunFor(1.0);
    EXPECT_GE(loop.ShortestInterval(before), Hz60 * (1 - CFramePacer::CatchUpShare) - 1e-9);
    EXPECT_NEAR(loop.Rate(before + 1), 60.0, 0.5);

    // A frame held up now and then by less than the share the pacer makes up
    // costs no picture.
    SimulatedLoop jittery;
    for (int frame = 0; frame < 600; ++frame) {
        jittery.work = frame % 10 == 9 ? 0.001 + 0.003 + Hz60 : 0.001;
        jittery.Frame();
    }
    EXPECT_NEAR(jittery.Rate(), 60.0, 0.1);

    // Frames slower than the display are shown as they come, unhindered.
    SimulatedLoop slow;
    slow.work = 0.025;
    slow.RunFor(2.0);
    EXPECT_NEAR(slow.Rate(), 40.0, 0.1);
    EXPECT_EQ(slow.longestWait, 0.0);
}

TEST(FramePacer, FollowsAChangeOfRefreshRate)
{
    SimulatedLoop loop;
    loop.RunFor(1.0, 1.0 / 30);
    const std::size_t from = loop.shown.size();
    loop.longestWait = 0.0;
    loop.RunFor(2.0, 1.0 / 144);
    EXPECT_LE(loop.longestWait, 1.0 / 144 + 1e-9);
    EXPECT_NEAR(loop.Rate(from + 1), 144.0, 0.5);
}

struct ChoiceCase {
    const char* what;
    RenderSituation situation;
    const char* driver;
    bool plainFramebuffer;
    bool openGlWindow;
    bool askForVsync;
};

TEST(RenderChoice, SoftwareWhereOpenGlWouldBeASoftwareRasteriser)
{
    const ChoiceCase cases[] = {
        {"a GPU on X11", {"x11", "", "", true, false}, "", false, true, true},
        {"no GPU on X11", {"x11", "", "", false, false}, "software", true, false, false},
        // Wayland's windows take pictures only through OpenGL or Vulkan.
        {"no GPU on Wayland", {"wayland", "", "", false, false}, "", false, true, true},
        {"software OpenGL forced", {"x11", "", "", true, true}, "software", true, false, false},
        {"the player asks for software", {"x11", "software", "", true, false}, "software", true, false, false},
        {"software over OpenGL asked for", {"x11", "software", "1", false, false}, "software", false, true, false},
        {"software, the player's framebuffer", {"x11", "software", "0", false, false}, "software", false, false,
         false},
        {"the player asks for OpenGL", {"x11", "opengl", "", false, false}, "opengl", false, true, true},
        {"OpenGL ES asked for", {"x11", "opengles2", "", true, false}, "opengles2", false, true, true},
        {"no display at all", {"dummy", "", "", true, false}, "software", true, false, false},
    };
    for (const ChoiceCase& c : cases) {
        const RenderChoice choice = Platform::ChooseRenderer(c.situation);
        EXPECT_EQ(choice.driver, c.driver) << c.what;
        EXPECT_EQ(choice.plainFramebuffer, c.plainFramebuffer) << c.what;
        EXPECT_EQ(choice.openGlWindow, c.openGlWindow) << c.what;
        EXPECT_EQ(choice.askForVsync, c.askForVsync) << c.what;
    }
}

TEST(RenderChoice, RecognisesSoftwareRasterisersByTheirNames)
{
    EXPECT_TRUE(Platform::IsSoftwareRasteriser("llvmpipe (LLVM 15.0.6, 256 bits)"));
    EXPECT_TRUE(Platform::IsSoftwareRasteriser("Software Rasterizer"));
    EXPECT_TRUE(Platform::IsSoftwareRasteriser("softpipe"));
    EXPECT_FALSE(Platform::IsSoftwareRasteriser("Mesa Intel(R) UHD Graphics 620 (KBL GT2)"));
    EXPECT_FALSE(Platform::IsSoftwareRasteriser("NVIDIA GeForce RTX 3060/PCIe/SSE2"));
    EXPECT_FALSE(Platform::IsSoftwareRasteriser(""));
}

} // namespace

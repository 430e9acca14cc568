// How pictures reach the screen: the pacing of presents against the
// display's refresh, the choice of video driver and renderer for the
// machine, and the
// picture scaled to the screen.
#include "platform/App.h"
#include "platform/FramePacer.h"
#include "platform/PictureScaler.h"
#include "platform/RenderChoice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr double Hz60 = 1.0 / 60.0;

// How the machine under a game loop behaves.
struct Conditions {
    double oversleep = 0.0;   // how much later than asked a sleep wakes
    double presentCost = 0.0; // the present's own work
    bool presentWaits = false;
    double phase = 0.007;
};

// A game loop on a simulated clock: each frame takes `work` seconds to
// compose, then the present, which either returns at once or waits for the
// display's next refresh (at `phase` + k periods).
struct SimulatedLoop : Conditions {
    explicit SimulatedLoop(Conditions conditions = {}) : Conditions(conditions) {}
    double t = 0.0;
    double work = 0.001;
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

// Held to the refresh rate exactly, with no picture closer to the last than
// the pacer allows and no sleep of more than a period. A present that returns
// at once: with a sleep that overshoots by 80 us as Linux's do, a slow sleep,
// and a present that takes 6 ms of its own (OpenGL drawn by a software
// rasteriser), which is not to be taken for a wait for the display;
// whole-millisecond waits made 62.5. A present that waits for the display,
// whatever its phase: every refresh keeps its picture (none skipped because the
// pacer slept past one), and after the first frames none waits longer than the
// pacer's lead for its refresh, rather than a whole period.
TEST(FramePacer, HeldToTheRefreshRateWhetherOrNotThePresentWaits)
{
    const Conditions cases[] = {{},
                                {.oversleep = 0.00008},
                                {.oversleep = 0.0004},
                                {.presentCost = 0.006},
                                {.presentWaits = true, .phase = 0.0},
                                {.presentWaits = true, .phase = 0.004},
                                {.presentWaits = true, .phase = 0.0166}};
    for (const Conditions& c : cases) {
        SCOPED_TRACE(::testing::Message() << "oversleeping " << c.oversleep << ", presenting " << c.presentCost
                                          << (c.presentWaits ? ", waiting from phase " : ", phase ") << c.phase);
        SimulatedLoop loop(c);
        loop.RunFor(10.0);
        EXPECT_NEAR(loop.Rate(), 60.0, 0.05);
        EXPECT_GE(loop.ShortestInterval(), Hz60 * (1 - CFramePacer::CatchUpShare) - 1e-9);
        EXPECT_LE(loop.longestWait, Hz60);
        EXPECT_LE(*std::max_element(loop.held.begin() + 3, loop.held.end()), CFramePacer::WaitedShare * Hz60 + 1e-9);
        for (std::size_t i = 1; c.presentWaits && i < loop.shown.size(); ++i)
            ASSERT_NEAR(loop.shown[i] - loop.shown[i - 1], Hz60, 1e-6) << "frame " << i;
    }
}

TEST(FramePacer, SlowFramesAreNotMadeUpWithABurstAndAChangeOfRefreshRateIsFollowed)
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

    // A change of refresh rate is followed.
    SimulatedLoop changed;
    changed.RunFor(1.0, 1.0 / 30);
    const std::size_t from = changed.shown.size();
    changed.longestWait = 0.0;
    changed.RunFor(2.0, 1.0 / 144);
    EXPECT_LE(changed.longestWait, 1.0 / 144 + 1e-9);
    EXPECT_NEAR(changed.Rate(from + 1), 144.0, 0.5);
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

TEST(VideoDrivers, ADriverIsNamedInAListWhateverItsCase)
{
    EXPECT_TRUE(Platform::NamedInDriverList("dummy", "DUMMY"));
    EXPECT_TRUE(Platform::NamedInDriverList("offscreen", "wayland,offscreen"));
    EXPECT_FALSE(Platform::NamedInDriverList("offscreen", "x11"));
    EXPECT_FALSE(Platform::NamedInDriverList("dummy", ""));
}

struct FitCase {
    const char* what;
    ScaleMode mode;
    int outputWidth, outputHeight;
    PictureFit fit;
};

TEST(Scaling, WhereThePictureLandsForEachModeAndScreen)
{
    using enum ScaleMode;
    const FitCase cases[] = {
        {"4K, whole multiple", Integer, 3840, 2160, {896, 312, 2048, 1536, 2}},
        {"4K, fitted", Smooth, 3840, 2160, {480, 0, 2880, 2160, 1}},
        {"4K, twice then fitted", Sharp, 3840, 2160, {480, 0, 2880, 2160, 2}},
        {"1080p, once: no larger multiple fits", Integer, 1920, 1080, {448, 156, 1024, 768, 1}},
        {"1080p, sharp is smooth from once", Sharp, 1920, 1080, {240, 0, 1440, 1080, 1}},
        {"1280x800, bars beside", Smooth, 1280, 800, {106, 0, 1067, 800, 1}},
        {"smaller than the picture: shrunk to fit", Integer, 800, 600, {0, 0, 800, 600, 1}},
        {"smaller and wider", Sharp, 1000, 500, {166, 0, 667, 500, 1}},
        {"no output", Smooth, 0, 0, {0, 0, 0, 0, 1}},
    };
    for (const FitCase& c : cases)
        EXPECT_EQ(Platform::FitPicture(c.mode, 1024, 768, c.outputWidth, c.outputHeight), c.fit) << c.what;
}

TEST(Scaling, ModesAreNamedAndSteppedThroughInTurn)
{
    ScaleMode mode = ScaleMode::Smooth;
    for (const char* name : {"sharp", "integer", "smooth"}) {
        mode = Platform::NextScaleMode(mode);
        EXPECT_STREQ(Platform::ScaleModeName(mode), name);
        EXPECT_EQ(Platform::ScaleModeNamed(name), mode);
    }
    EXPECT_FALSE(Platform::ScaleModeNamed("bilinear"));
}

// A small picture scaled as the display scales the game's: colours are the
// 16-bit values themselves, widened so that every byte takes part in a blend.
struct ScaledPicture {
    static constexpr int Width = 64, Height = 48;
    static std::uint32_t Widened(std::uint32_t v) { return (v & 0xFF) * 0x01000001u | (v >> 8) * 0x00010100u; }
    int pictureWidth;
    std::vector<std::uint16_t> pixels;
    int outputWidth, outputHeight;
    PictureFit fit;
    std::vector<std::uint32_t> output;
    CPictureScaler scaler;

    ScaledPicture(ScaleMode mode, int width, int height, int pictureWidth = Width, int pictureHeight = Height)
        : pictureWidth(pictureWidth), pixels(static_cast<std::size_t>(pictureWidth * pictureHeight)),
          outputWidth(width), outputHeight(height),
          fit(Platform::FitPicture(mode, pictureWidth, pictureHeight, width, height)),
          output(static_cast<std::size_t>(width * height), 0xDEADBEEF)
    {
        std::vector<std::uint32_t> colours(1u << 16);
        for (std::uint32_t v = 0; v < colours.size(); ++v)
            colours[v] = Widened(v);
        scaler.Configure(fit, pictureWidth, pictureHeight, width, height, colours);
    }
    const std::vector<CPictureScaler::Rect>& Scale()
    {
        return scaler.Scale(pixels.data(), pictureWidth * 2, output.data(), outputWidth * 4);
    }
};

TEST(PictureScaler, AWholeMultipleRepeatsEachPixelAndLeavesBlackBars)
{
    ScaledPicture picture(ScaleMode::Integer, 200, 150); // three times, 4 and 3 pixels of bars
    std::mt19937 random(7);
    for (auto& p : picture.pixels)
        p = static_cast<std::uint16_t>(random());
    const auto& drawn = picture.Scale();
    ASSERT_EQ(drawn, (std::vector<CPictureScaler::Rect>{{0, 0, 200, 150}}));
    ASSERT_EQ(picture.fit, (PictureFit{4, 3, 192, 144, 3}));
    for (int y = 0; y < 150; ++y)
        for (int x = 0; x < 200; ++x) {
            const bool inside = x >= 4 && x < 196 && y >= 3 && y < 147;
            const std::uint32_t expected = inside ? ScaledPicture::Widened(picture.pixels[(y - 3) / 3 * 64 + (x - 4) / 3]) : 0;
            ASSERT_EQ(picture.output[y * 200 + x], expected) << x << "," << y;
        }
}

// What changed is drawn again, and only it: the picture scaled a change at
// a time equals the picture scaled afresh, and every output pixel that
// changed lies in a rectangle said to be drawn. The widest picture is the
// game's own width: a row of the most tiles.
TEST(PictureScaler, ScalingOnlyWhatChangedEqualsScalingAfresh)
{
    struct Size {
        int width, height, pictureWidth, pictureHeight;
    };
    for (ScaleMode mode : {ScaleMode::Integer, ScaleMode::Smooth, ScaleMode::Sharp})
        for (auto [width, height, pictureWidth, pictureHeight] :
             {Size{300, 170, 64, 48}, Size{50, 40, 64, 48}, Size{1500, 30, 1024, 16}}) {
            ScaledPicture kept(mode, width, height, pictureWidth, pictureHeight);
            kept.Scale();
            std::mt19937 random(11);
            for (int frame = 0; frame < 20; ++frame) {
                const std::vector<std::uint32_t> before = kept.output;
                for (int n = 0; n < 5; ++n) // a few stars move
                    kept.pixels[random() % kept.pixels.size()] = static_cast<std::uint16_t>(random());
                const auto drawn = kept.Scale();
                ScaledPicture fresh(mode, width, height, pictureWidth, pictureHeight);
                fresh.pixels = kept.pixels;
                fresh.Scale();
                ASSERT_EQ(kept.output, fresh.output) << Platform::ScaleModeName(mode) << " " << width << ", frame " << frame;
                for (int i = 0; i < width * height; ++i) {
                    if (before[i] == kept.output[i])
                        continue;
                    const int x = i % width, y = i / width;
                    ASSERT_TRUE(std::any_of(drawn.begin(), drawn.end(), [&](const CPictureScaler::Rect& r) {
                        return x >= r.x && x < r.x + r.width && y >= r.y && y < r.y + r.height;
                    })) << Platform::ScaleModeName(mode) << " " << x << "," << y;
                }
            }
        }
}

TEST(PictureScaler, SharpBlendsOnlyWherePixelsMeet)
{
    // Stripes a pixel wide, enlarged 2.8 times: smooth filtering greys almost
    // every output pixel; sharp keeps the middle of every stripe pure.
    auto pureShare = [](ScaleMode mode) {
        ScaledPicture picture(mode, 180, 135);
        for (int i = 0; i < ScaledPicture::Width * ScaledPicture::Height; ++i)
            picture.pixels[i] = i % 2 ? 0xFFFF : 0;
        picture.Scale();
        const auto pure = std::count_if(picture.output.begin(), picture.output.end(),
                                        [](std::uint32_t p) { return p == 0 || p == 0xFFFFFFFF; });
        return static_cast<double>(pure) / static_cast<double>(picture.output.size());
    };
    EXPECT_GE(pureShare(ScaleMode::Sharp), 0.45);
    EXPECT_LT(pureShare(ScaleMode::Smooth), 0.1);
}

} // namespace

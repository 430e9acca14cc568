// The music stream as the output's mixer drives it: when a tune's end is
// reported, how a tune started again joins its end, and how a stop cuts;
// and which sound font the synthesiser plays with.
#include "platform/MusicStream.h"
#include "platform/AudioChecks.h"
#include "platform/Synthesiser.h"
#include "support/AudioFiles.h"
#include "support/BitmapFiles.h"
#include "support/MidiBytes.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <vector>

namespace {

using namespace qvtest;
using namespace qvtest::midi;

constexpr int Rate = 44100;
constexpr std::size_t Piece = 441; // the output takes 10 ms at a time
constexpr std::size_t FluidBlock = 64; // the synthesiser starts notes on its own blocks
constexpr float Audible = 0.01f;

std::size_t Frames(std::uint32_t ms)
{
    return static_cast<std::size_t>(ms) * Rate / 1000;
}

// A piano note with no reverb or chorus, so nothing is left once it has
// died away, at the start of a tune of the given length.
std::shared_ptr<const CMidiTune> DryNote(std::uint32_t noteMs, std::uint32_t tuneMs)
{
    const Bytes events = Join({{0x00, 0xB0, 91, 0, 0x00, 0xB0, 93, 0, 0x00, 0x90, 60, 127}, Delta(noteMs),
                               {0x80, 60, 0}});
    const Bytes bytes = OneTrackTune(events, tuneMs - noteMs);
    auto tune = CMidiTune::Parse(bytes.data(), bytes.size());
    return tune ? std::make_shared<const CMidiTune>(std::move(*tune)) : nullptr;
}

class MusicStreamTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        auto synthesiser = CSynthesiser::Create(Rate);
        ASSERT_TRUE(synthesiser) << "no General MIDI sound font installed";
        stream = std::make_unique<CMusicStream>(std::move(synthesiser), Rate);
    }

    // The output takes the next frames; true when the tune's end was reported.
    bool Take(std::size_t frames)
    {
        std::vector<float> piece(2 * frames, 0.0f);
        const bool ended = stream->Render(piece.data(), frames);
        output.insert(output.end(), piece.begin(), piece.end());
        return ended;
    }
    std::size_t Taken() const { return output.size() / 2; }
    // Takes pieces until the end is reported; false if it never is.
    bool TakeUntilTheEnd(std::size_t limit = Frames(5000))
    {
        for (std::size_t start = Taken(); Taken() - start < limit;)
            if (Take(Piece))
                return true;
        return false;
    }
    // The frames where a sound begins after at least gapMs of silence.
    std::vector<std::size_t> Onsets(std::uint32_t gapMs) const
    {
        std::vector<std::size_t> onsets;
        std::size_t quiet = Frames(gapMs);
        for (std::size_t f = 0; f < Taken(); ++f) {
            const bool loud = std::fabs(output[2 * f]) > Audible || std::fabs(output[2 * f + 1]) > Audible;
            if (loud && quiet >= Frames(gapMs))
                onsets.push_back(f);
            quiet = loud ? 0 : quiet + 1;
        }
        return onsets;
    }
    double Loudest(std::size_t from) const { return Peak(output.begin() + 2 * from, output.end()); }

    std::unique_ptr<CMusicStream> stream;
    std::vector<float> output; // everything taken, interleaved stereo
};

// The end is reported once, on the frame of the tune's last event (not after
// the note's release), a lead before it is heard; a start answered within the
// lead, however late, joins the end on its frame.
TEST_F(MusicStreamTest, TheEndIsReportedOnceOnTheLastEventAndAStartWithinTheLeadJoinsIt)
{
    const auto tune = DryNote(30, 800);
    stream->Start(tune);
    ASSERT_TRUE(TakeUntilTheEnd());
    EXPECT_EQ(Taken() + stream->FramesAhead(), Frames(800));
    for (std::uint32_t lateMs : {0u, 100u, 200u}) { // the main window's answer
        Take(Frames(lateMs));
        stream->Start(tune);
        ASSERT_TRUE(TakeUntilTheEnd()) << "loop " << lateMs;
    }
    EXPECT_FALSE(TakeUntilTheEnd(Frames(1000)));
    EXPECT_FALSE(stream->IsPlaying());
    const std::vector<std::size_t> onsets = Onsets(300);
    ASSERT_EQ(onsets.size(), 4u);
    for (std::size_t i = 1; i < onsets.size(); ++i)
        EXPECT_NEAR(static_cast<double>(onsets[i] - onsets[i - 1]), static_cast<double>(Frames(800)), FluidBlock)
            << "loop " << i;
}

TEST_F(MusicStreamTest, AStopCutsAtOnceReportsNoEndAndAFreshStartSoundsAtOnce)
{
    const auto tune = DryNote(300, 400);
    stream->Start(tune);
    Take(Frames(100));
    ASSERT_GT(Loudest(0), Audible);
    stream->Stop();
    const std::size_t stopped = Taken();
    EXPECT_FALSE(TakeUntilTheEnd(Frames(1000)));
    EXPECT_EQ(Loudest(stopped), 0.0f);
    EXPECT_EQ(stream->FramesAhead(), 0u);

    stream->Start(tune);
    const std::size_t started = Taken();
    Take(Piece);
    const std::vector<std::size_t> onsets = Onsets(100);
    ASSERT_FALSE(onsets.empty());
    EXPECT_LT(onsets.back() - started, FluidBlock) << "a start after a stop waits for nothing";
}

TEST(Synthesiser, ThePlayersFontsComeFirstAndAFontThatWillNotLoadFallsBackToTheGames)
{
    const std::vector<std::string> defaults = CSynthesiser::FontCandidates(nullptr);
    ASSERT_FALSE(defaults.empty());
    EXPECT_EQ(defaults.front(), "background.sf2") << "the game's own, in its folder";
    std::vector<std::string> expected{"/one.sf2", "two.sf2", "three.sf2"};
    expected.insert(expected.end(), defaults.begin(), defaults.end());
    EXPECT_EQ(CSynthesiser::FontCandidates("/one.sf2:two.sf2;;three.sf2:"), expected);

    ScopedWorkDir dir;
    std::filesystem::copy_file(QV_GAME_DIR "/background.sf2", "background.sf2");
    std::filesystem::copy_file("background.sf2", "mine.sf2");
    WriteFile("broken.sf2", "RIFF, but no sound font");
    const struct {
        const char* playerList;
        std::vector<std::string> loaded;
    } cases[] = {
        {"missing.sf2:broken.sf2", {"background.sf2"}},
        {"broken.sf2:mine.sf2", {"mine.sf2"}},
        {"mine.sf2;background.sf2", {"mine.sf2", "background.sf2"}},
    };
    for (const auto& c : cases) {
        ScopedEnv fonts("SDL_SOUNDFONTS", c.playerList);
        const auto synthesiser = CSynthesiser::Create(Rate);
        ASSERT_TRUE(synthesiser) << c.playerList;
        EXPECT_EQ(synthesiser->LoadedFonts(), c.loaded) << c.playerList;
    }
}

} // namespace

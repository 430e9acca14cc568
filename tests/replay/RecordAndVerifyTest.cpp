// Games played by script are recorded as the player's games are, then played
// again in a fresh game from their replays, which must end exactly as they
// were recorded; a replay changed by one key must go its own way from the
// frame that key came before.
#include "app/ReplayClock.h"
#include "app/ReplayPlayer.h"
#include "replay/Replay.h"
#include "support/TestApp.h"
#include "support/GameDriver.h"
#include "world/World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

namespace {

constexpr UINT Fire = 'F';
constexpr UINT FlightKeys[] = {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, Fire, 'D'};

// Plays from startLevel: the design screen refitted each time, random
// flight keys held and let go, frames of 15 to 18 ms, until the ship is lost
// or frameLimit frames have passed.
void PlayScripted(CGameDriver& driver, std::uint32_t seed, std::int32_t startLevel, int frameLimit)
{
    std::minstd_rand script(seed);
    driver.StartGame(startLevel);
    for (int frame = 0; frame < frameLimit && driver.GetGameState() != StateMenu;) {
        if (driver.GetGameState() == StateDesign) {
            driver.Refit();
            driver.StartLevel();
            continue;
        }
        if (script() % 5 == 0)
            driver.Key(FlightKeys[script() % std::size(FlightKeys)], script() % 2 == 0);
        driver.Frame(15 + static_cast<double>(script() % 4));
        ++frame;
    }
}

CReplay RecordScripted(std::uint32_t seed, std::int32_t startLevel, int frameLimit)
{
    qvtest::TestApp t(seed);
    CGameDriver driver(*t);
    PlayScripted(driver, seed, startLevel, frameLimit);
    t->EndRecording();
    return t->recorder.GetFinished();
}

// Plays a replay in a fresh game, frame by frame, to its end.
struct Replayed {
    std::int64_t firstDivergence;
    CReplay::Summary summary;
};

Replayed PlayBack(const CReplay& replay)
{
    qvtest::TestApp t(1);
    CReplayPlayer player(*t, replay);
    player.Begin();
    while (player.HasNextFrame())
        player.Step();
    player.Finish();
    return {player.GetFirstDivergence(), player.Summary()};
}

TEST(Replays, ScriptedGamesPlayBackExactlyFromSeveralStartLevels)
{
    for (const std::int32_t startLevel : {1, 4, 9, 30}) {
        const CReplay replay = RecordScripted(1000 + startLevel, startLevel, 3000);
        ASSERT_GT(replay.frames.size(), 100u) << startLevel;
        EXPECT_EQ(replay.header.startLevel, startLevel);
        const Replayed again = PlayBack(replay);
        EXPECT_EQ(again.firstDivergence, CReplayPlayer::NoDivergence) << startLevel;
        EXPECT_EQ(again.summary, replay.summary) << startLevel;
    }
}

TEST(Replays, AGameLostAndNamedInTheTableEndsWithTheNameAndPlaysBack)
{
    qvtest::TestApp t(99);
    // A table of losing scores, so whatever this game scores enters it.
    for (int i = 0; i < CHighScoreTable::Size; ++i)
        t->menus.SetHighScore(i, "OLD", -100 - i);
    CGameDriver driver(*t);
    PlayScripted(driver, 99, 40, 200000);
    ASSERT_EQ(driver.GetGameState(), StateMenu) << "the ship outlived the script";
    ASSERT_TRUE(t->recorder.IsRecording()) << "the recording ends only when the name is in";
    for (UINT key : {UINT{'A'}, UINT{'C'}, UINT{'E'}, VK_RETURN})
        driver.Press(key);
    ASSERT_FALSE(t->recorder.IsRecording());

    const CReplay replay = t->recorder.GetFinished();
    EXPECT_EQ(replay.header.highScores[9].score, -109);
    EXPECT_EQ(replay.inputs.back(), (CReplay::Input{WM_KEYDOWN, VK_RETURN}));
    const Replayed again = PlayBack(replay);
    EXPECT_EQ(again.firstDivergence, CReplayPlayer::NoDivergence);
    EXPECT_EQ(again.summary, replay.summary);

    // The game over is kept in the game's folder too, as it ended.
    t->recorder.WaitForSaves();
    std::ifstream in(CRecorder::LastGameFile, std::ios::binary);
    const std::string kept{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_EQ(kept, replay.Encode());
}

TEST(Replays, OneKeyChangedGoesItsOwnWayFromTheFrameItCameBefore)
{
    CReplay replay = RecordScripted(7, 3, 3000);
    // A thrust forward in flight turned into a thrust backward.
    std::size_t frame = 0;
    bool changed = false;
    for (; frame < replay.frames.size() && !changed; ++frame) {
        for (std::size_t i = replay.FirstInputBefore(frame); i < replay.EndInputBefore(frame) && !changed; ++i) {
            CReplay::Input& input = replay.inputs[i];
            if (input.message == WM_KEYDOWN && input.wParam == VK_UP && frame > 200) {
                input.wParam = VK_DOWN;
                changed = true;
            }
        }
    }
    ASSERT_TRUE(changed);
    const Replayed again = PlayBack(replay);
    EXPECT_EQ(again.firstDivergence, static_cast<std::int64_t>(frame - 1));
    qvtest::TestApp v;
    EXPECT_EQ(v->VerifyReplay(replay, "changed"), CGameApp::ReplayDiffersStatus);
}

TEST(Replays, ALongPauseCostsOneRecordAndPlaysBack)
{
    qvtest::TestApp t(21);
    CGameDriver driver(*t);
    PlayScripted(driver, 21, 2, 300);
    const std::size_t played = t->recorder.GetReplay().Encode().size();
    driver.Press(VK_ESCAPE); // paused for 20 minutes at 250 frames a second
    for (int i = 0; i < 300000; ++i)
        driver.Frame(4);
    driver.Press(VK_ESCAPE);
    for (int i = 0; i < 50; ++i)
        driver.Frame(16);
    t->EndRecording();

    const CReplay replay = t->recorder.GetFinished();
    EXPECT_GT(replay.FrameCount(), 300000u);
    EXPECT_LT(replay.Encode().size(), played + 1000);
    const Replayed again = PlayBack(replay);
    EXPECT_EQ(again.firstDivergence, CReplayPlayer::NoDivergence);
    EXPECT_EQ(again.summary, replay.summary);

    CReplay otherRules = replay;
    otherRules.header.rulesVersion = CReplay::RulesVersion + 1;
    qvtest::TestApp v;
    EXPECT_EQ(v->VerifyReplay(otherRules, "other rules"), CGameApp::ReplayDiffersStatus);
}

TEST(Replays, AGameAbandonedForANewOneEndsBeforeTheKeyThatStartedIt)
{
    qvtest::TestApp t(5);
    CGameDriver driver(*t);
    PlayScripted(driver, 5, 2, 400);
    driver.Press(VK_ESCAPE); // pause: the menu over the game, "New Game" chosen
    driver.Press(VK_RETURN);
    const CReplay abandoned = t->recorder.GetFinished();
    ASSERT_FALSE(abandoned.frames.empty());
    EXPECT_EQ(abandoned.inputs.back(), (CReplay::Input{WM_KEYUP, VK_ESCAPE}));
    EXPECT_TRUE(t->recorder.IsRecording()) << "the new game is recorded in its turn";
    const Replayed again = PlayBack(abandoned);
    EXPECT_EQ(again.firstDivergence, CReplayPlayer::NoDivergence);
    EXPECT_EQ(again.summary, abandoned.summary);
}

TEST(Replays, ReplaysWrittenToAFileAreCheckedFromIt)
{
    // A folder of this run's own: runs side by side must not share one.
    const qvtest::ScopedWorkDir dir;
    const std::filesystem::path& folder = dir.Path();
    const std::string mine = (folder / "mine.qvr").string();
    const std::string broken = (folder / "broken.qvr").string();
    {
        qvtest::TestApp t(11);
        t->recorder.SetRecordFile(mine);
        CGameDriver driver(*t);
        PlayScripted(driver, 11, 2, 500);
    } // a game still in play when the program ends is kept
    std::ofstream(broken, std::ios::binary) << "QVREPLAY";
    qvtest::TestApp v;
    EXPECT_EQ(v->VerifyReplayFile(mine), 0);
    EXPECT_EQ(v->VerifyReplayFile(broken), CGameApp::ReplayUnreadableStatus);
    EXPECT_EQ(v->VerifyReplayFile((folder / "missing.qvr").string()), CGameApp::ReplayUnreadableStatus);
}

// How the game stands after each number of frames, played straight through:
// the world's full state, so that a seek is checked against all of it.
std::vector<std::uint64_t> StatesPlayedStraight(const CReplay& replay)
{
    qvtest::TestApp t(1);
    CReplayPlayer player(*t, replay);
    player.Begin();
    std::vector<std::uint64_t> states{t->ReplaySummary(0).worldHash};
    while (player.HasNextFrame()) {
        player.Step();
        states.push_back(t->ReplaySummary(0).worldHash);
    }
    return states;
}

TEST(Replays, SeekingLandsWherePlayingStraightThereDoes)
{
    const CReplay replay = RecordScripted(1003, 3, 6000);
    const std::vector<std::uint64_t> straight = StatesPlayedStraight(replay);
    const std::size_t end = straight.size() - 1;
    qvtest::TestApp t(1);
    CReplayPlayer player(*t, replay);
    player.Begin();
    ASSERT_EQ(player.FrameCount(), end);
    ASSERT_TRUE(player.SeekNextLevel()) << "the script reaches a second level";
    const std::size_t secondLevel = player.GetFramesMade();
    EXPECT_EQ(t->world.GetLevel(), 3);
    // Ahead, back, to the start, one frame at a time, past the end.
    for (const std::size_t target : {end / 2, std::size_t{1}, end - 1, secondLevel, std::size_t{0}, end / 3,
                                     end / 3 + 1, end / 3 - 1, end + 10}) {
        player.SeekTo(target);
        const std::size_t landed = std::min(target, end);
        EXPECT_EQ(player.GetFramesMade(), landed) << target;
        EXPECT_EQ(t->ReplaySummary(0).worldHash, straight[landed]) << target;
        EXPECT_EQ(player.GetFirstDivergence(), CReplayPlayer::NoDivergence) << target;
    }
    // Every level's start was seen on the way, each a frame after which the level is new.
    const std::vector<std::size_t> starts = player.GetLevelStarts();
    ASSERT_GE(starts.size(), 2u);
    EXPECT_EQ(starts[1], secondLevel);
    EXPECT_TRUE(std::is_sorted(starts.begin(), starts.end()));
    // Recorded time and frames agree both ways.
    for (const std::size_t frames : {std::size_t{0}, std::size_t{1}, secondLevel, end}) {
        EXPECT_EQ(player.FramesWithin(player.MsAfter(frames)), frames);
        EXPECT_EQ(player.FramesWithin(player.MsAfter(frames) + 1.0), frames) << "a frame is longer than 1 ms";
    }
    EXPECT_DOUBLE_EQ(player.MsAfter(end), player.TotalMs());
}

TEST(ReplayPace, RecordedTimeDueAtEachSpeed)
{
    constexpr double Everything = std::numeric_limits<double>::infinity();
    const struct {
        std::size_t speed;
        double fromMs, wallMs, dueMs;
    } rows[] = {
        {0, 0, 1000, 250},   {1, 0, 1000, 500},    {2, 0, 1000, 1000},     {3, 0, 1000, 2000},
        {4, 0, 1000, 4000},  {5, 0, 1000, 8000},   {5, 500, 16, 628},      {0, 500, 16, 504},
        {6, 0, 0, Everything}, {2, 7, 0, 7},
    };
    for (const auto& row : rows)
        EXPECT_EQ(CReplayClock::DueMs(row.fromMs, row.wallMs, row.speed), row.dueMs) << row.speed << " " << row.wallMs;

    // A change of pace goes on from the picture on show, and a pause holds it.
    CReplayClock clock;
    clock.Restart(1000, 50);
    EXPECT_EQ(clock.DueMs(150u), 1100);
    clock.SetSpeed(5, 1100, 150);
    EXPECT_EQ(clock.DueMs(160u), 1180);
    clock.SetPaused(true, 1180, 160);
    EXPECT_EQ(clock.DueMs(5000u), 1180);
    clock.SetPaused(false, 1180, 5000);
    EXPECT_EQ(clock.DueMs(5001u), 1188);
    EXPECT_EQ(CReplayClock::SpeedName(0), "1/4x");
    EXPECT_TRUE(CReplayClock::Heard(3));
    EXPECT_FALSE(CReplayClock::Heard(4));
}

} // namespace

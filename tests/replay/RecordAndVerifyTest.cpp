// Games played by script are recorded as the player's games are, then played
// again in a fresh game from their replays, which must end exactly as they
// were recorded; a replay changed by one key must go its own way from the
// frame that key came before.
#include "app/ReplayPlayer.h"
#include "replay/Replay.h"
#include "support/TestApp.h"
#include "support/GameDriver.h"
#include "world/World.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
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

} // namespace

// Replays: their files read back exactly or are refused with a reason, and
// games played by script, recorded as the player's games are, play again in
// a fresh game to exactly the same end.
#include "app/ReplayClock.h"
#include "app/ReplayPlayer.h"
#include "display/SpriteInstance.h"
#include "replay/Replay.h"
#include "replay/StateHash.h"
#include "support/GameDriver.h"
#include "support/TestApp.h"
#include "world/World.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

namespace {

CReplay SampleReplay()
{
    CReplay r;
    r.header.gameVersion = "1.2.3";
    r.header.randomState = 0xDEADBEEF;
    r.header.componentSerial = 41;
    r.header.startLevel = -7;
    r.header.musicOn = false;
    r.header.statsOn = false;
    r.header.menuScreen = 3;
    r.header.optionsCursor = 4;
    r.header.highScores[0] = {"ANN", 5200};
    r.header.highScores[9] = {"Z Z ", -3};
    r.header.stars = {{1023, 0, 2, 220, true}, {0, 767, 1, 98, false}};
    r.AddInput(WM_KEYDOWN, 0x26);
    r.AddFrame(16, 0x01020304);
    r.AddFrame(0.5, 7); // a frame no clock makes still comes back exactly
    r.AddInput(WM_KEYUP, 0x26);
    r.AddInput(WM_ACTIVATEAPP, 1);
    r.AddFrame(300000, 9);
    for (double ms : {16.0, 17.0, 16.5}) // paused: one run of idle frames
        r.AddFrame(ms, 5, true);
    r.AddInput(WM_KEYDOWN, 13); // after the last frame
    r.summary = {12, 34567, 6, 0x0123456789ABCDEFull};
    return r;
}

bool Decodes(const std::string& bytes, std::string& error)
{
    CReplay read;
    return CReplay::Decode(bytes, read, error);
}

TEST(ReplayFile, ComesBackAsWrittenWithEveryInputBeforeItsFrame)
{
    const CReplay written = SampleReplay();
    const std::string bytes = written.Encode();
    CReplay read;
    std::string error;
    ASSERT_TRUE(CReplay::Decode(bytes, read, error)) << error;
    EXPECT_TRUE(read.header == written.header);
    EXPECT_EQ(read.inputs, written.inputs);
    EXPECT_EQ(read.summary, written.summary);
    EXPECT_EQ(read.FrameCount(), 6u);
    EXPECT_EQ(read.Encode(), bytes);
    // Each record, and the inputs[first, end) that came before it; the last row is after the last frame.
    const struct {
        double ms;
        std::uint32_t hash, count;
        std::size_t first, end;
    } records[] = {{16, 0x01020304, 1, 0, 1}, {0.5, 7, 1, 1, 1}, {300000, 9, 1, 1, 3}, {49.5, 5, 3, 3, 3}, {0, 0, 0, 3, 4}};
    ASSERT_EQ(read.frames.size() + 1, std::size(records));
    for (std::size_t i = 0; i < std::size(records); ++i) {
        if (i < read.frames.size()) {
            EXPECT_EQ(read.frames[i].elapsedMs, records[i].ms) << i;
            EXPECT_EQ(read.frames[i].stateHash, records[i].hash) << i;
            EXPECT_EQ(read.frames[i].count, records[i].count) << i;
        }
        EXPECT_EQ(read.FirstInputBefore(i), records[i].first) << i;
        EXPECT_EQ(read.EndInputBefore(i), records[i].end) << i;
    }
}

// Every truncation and every changed byte is refused, and so is a foreign or
// damaged file, each with its reason and where in the file it was found.
TEST(ReplayFile, TruncatedChangedForeignAndDamagedFilesAreRefusedWithTheirReason)
{
    const std::string good = SampleReplay().Encode();
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string error;
        EXPECT_FALSE(Decodes(good.substr(0, at), error)) << at;
        EXPECT_FALSE(error.empty());
        for (const char flip : {'\x01', '\x80', '\xFF'}) {
            std::string damaged = good;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            EXPECT_FALSE(Decodes(damaged, error)) << "byte " << at << " changed";
            EXPECT_NE(error.find("at byte"), std::string::npos) << error;
        }
    }

    // The end record (a tag and 18 bytes) and the checksum follow the header at once when nothing was recorded.
    CReplay shortOne;
    shortOne.header = SampleReplay().header;
    const std::size_t versionAt = 8, firstRecordAt = shortOne.Encode().size() - 23;
    auto with = [&good](std::size_t at, char byte) {
        std::string b = good;
        b[at] = byte;
        return b;
    };
    // A replay of one frame whose 16 ms are written as two bytes instead of one.
    shortOne = SampleReplay();
    shortOne.frames.resize(1);
    shortOne.inputs.resize(1);
    shortOne.summary.frameCount = 1;
    std::string overlong = shortOne.Encode();
    overlong.replace(overlong.rfind(std::string("\x01\x10", 2)) + 1, 1, std::string("\x90\x00", 2));
    const struct {
        const char* what;
        std::string bytes;
        const char* reason;
    } cases[] = {
        {"another program's file", "PK\x03\x04 not a replay at all", "not a Quelvarion replay"},
        {"a later format", with(versionAt, 3), "format 3"},
        {"an unknown record", with(firstRecordAt, 0x42), "unknown record"},
        {"a message no replay holds", with(firstRecordAt + 1, 0x10), "message"},
        {"a number longer than it needs", overlong, "longer than it needs"},
        {"a byte after the end", good + '\0', "follow the end"},
    };
    for (const auto& c : cases) {
        std::string error;
        EXPECT_FALSE(Decodes(c.bytes, error)) << c.what;
        EXPECT_NE(error.find(c.reason), std::string::npos) << c.what << ": " << error;
        EXPECT_NE(error.find("at byte"), std::string::npos) << c.what << ": " << error;
    }
}

constexpr UINT FlightKeys[] = {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, 'F', 'D'};

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

// The world's full state, what the rules keep beside it, and every look in
// the order it is drawn.
std::uint64_t Standing(const CGameApp& app)
{
    CStateHash hash;
    hash.Add(app.ReplaySummary(0).worldHash);
    hash.Add(app.random.GetState());
    hash.Add(app.gameState);
    hash.Add(app.componentSerial);
    hash.Add(app.menus.GetScreen());
    for (const CSpriteInstance* look : const_cast<CGameApp&>(app).liveSprites)
        for (const std::int32_t value : {look->GetSpriteIndex(), look->GetX(), look->GetY(), look->GetAngle(), look->GetFrame()})
            hash.Add(value);
    return hash.Get();
}

// A replay played in a fresh game, frame by frame, to its end; with
// `states`, how the game stands at the start and after each frame.
struct Replayed {
    std::int64_t firstDivergence;
    CReplay::Summary summary;
    std::vector<std::uint64_t> states;
};

Replayed PlayBack(const CReplay& replay, bool states = false)
{
    qvtest::TestApp t(1);
    CReplayPlayer player(*t, replay);
    player.Begin();
    Replayed again{};
    auto look = [&] {
        if (states)
            again.states.push_back(Standing(*t));
    };
    for (look(); player.HasNextFrame(); look())
        player.Step();
    player.Finish();
    again.firstDivergence = player.GetFirstDivergence();
    again.summary = player.Summary();
    return again;
}

void ExpectPlaysBack(const CReplay& replay, const std::string& what)
{
    const Replayed again = PlayBack(replay);
    EXPECT_EQ(again.firstDivergence, CReplayPlayer::NoDivergence) << what;
    EXPECT_EQ(again.summary, replay.summary) << what;
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
    ExpectPlaysBack(replay, "lost");

    // The game over is kept in the game's folder too, as it ended, and is
    // checked from there; a file that is no replay, or none, is unreadable.
    t->recorder.WaitForSaves();
    std::ifstream in(CRecorder::LastGameFile, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), replay.Encode());
    std::ofstream("broken.qvr", std::ios::binary) << "QVREPLAY";
    qvtest::TestApp v;
    EXPECT_EQ(v->VerifyReplayFile((t.dir.Path() / CRecorder::LastGameFile).string()), 0);
    for (const char* unreadable : {"broken.qvr", "missing.qvr"})
        EXPECT_EQ(v->VerifyReplayFile((t.dir.Path() / unreadable).string()), CGameApp::ReplayUnreadableStatus);
}

TEST(Replays, OneKeyChangedGoesItsOwnWayFromTheFrameItCameBefore)
{
    CReplay replay = RecordScripted(7, 3, 3000);
    // The first thrust forward in flight after frame 200 turned into a thrust backward.
    const auto thrust = std::find_if(replay.inputs.begin() + static_cast<std::ptrdiff_t>(replay.FirstInputBefore(201)),
                                     replay.inputs.end(), [](const CReplay::Input& in) {
                                         return in.message == WM_KEYDOWN && in.wParam == VK_UP;
                                     });
    ASSERT_NE(thrust, replay.inputs.end());
    thrust->wParam = VK_DOWN;
    std::size_t frame = 201;
    while (replay.EndInputBefore(frame) <= static_cast<std::size_t>(thrust - replay.inputs.begin()))
        ++frame;
    ASSERT_LT(frame, replay.frames.size());
    EXPECT_EQ(PlayBack(replay).firstDivergence, static_cast<std::int64_t>(frame));
    qvtest::TestApp v;
    EXPECT_EQ(v->VerifyReplay(replay, "changed"), CGameApp::ReplayDiffersStatus);
}

// A long pause costs one record; a game left for a new one from the pause
// menu ends before the key that started the new one, which is recorded in turn.
TEST(Replays, ALongPauseCostsOneRecordAndAnAbandonedGameEndsBeforeTheNewOne)
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
    driver.Press(VK_ESCAPE); // paused again: the menu over the game, "New Game" chosen
    driver.Press(VK_RETURN);

    const CReplay replay = t->recorder.GetFinished();
    EXPECT_GT(replay.FrameCount(), 300000u);
    EXPECT_LT(replay.Encode().size(), played + 1000);
    EXPECT_EQ(replay.inputs.back(), (CReplay::Input{WM_KEYUP, VK_ESCAPE}));
    EXPECT_TRUE(t->recorder.IsRecording()) << "the new game is recorded in its turn";
    ExpectPlaysBack(replay, "paused, then abandoned");

    CReplay otherRules = replay;
    otherRules.header.rulesVersion = CReplay::RulesVersion + 1;
    qvtest::TestApp v;
    EXPECT_EQ(v->VerifyReplay(otherRules, "other rules"), CGameApp::ReplayDiffersStatus);
}

TEST(Replays, SeekingLandsWherePlayingStraightThereDoes)
{
    const CReplay replay = RecordScripted(1003, 3, 6000);
    // How the game stands after each number of frames, played straight through.
    const std::vector<std::uint64_t> straight = PlayBack(replay, true).states;
    const std::size_t end = straight.size() - 1;
    for (const bool checkpoints : {false, true}) {
        qvtest::TestApp t(1);
        CReplayPlayer player(*t, replay);
        if (checkpoints)
            player.KeepCheckpoints();
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
            EXPECT_EQ(player.GetFramesMade(), landed) << target << (checkpoints ? " from a checkpoint" : "");
            EXPECT_EQ(Standing(*t), straight[landed]) << target << (checkpoints ? " from a checkpoint" : "");
            EXPECT_EQ(player.GetFirstDivergence(), CReplayPlayer::NoDivergence) << target;
        }
        if (!checkpoints)
            continue;
        EXPECT_GE(player.CheckpointCount(), 5u) << "one every ten seconds of the recording";
        // A game put back goes on exactly as it went the first time, frame by frame to the end.
        player.SeekTo(end / 4);
        for (std::size_t frame = end / 4 + 1; frame <= end; ++frame) {
            player.SeekTo(frame);
            ASSERT_EQ(Standing(*t), straight[frame]) << "frame " << frame << " after a checkpoint";
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
}

TEST(ReplayPace, RecordedTimeDueAtEachSpeed)
{
    constexpr double Everything = std::numeric_limits<double>::infinity();
    const struct {
        std::size_t speed;
        double fromMs, wallMs, dueMs;
    } rows[] = {{5, 500, 16, 628}, {0, 500, 16, 504}, {6, 0, 0, Everything}, {2, 7, 0, 7}};
    for (const auto& row : rows)
        EXPECT_EQ(CReplayClock::DueMs(row.fromMs, row.wallMs, row.speed), row.dueMs) << row.speed << " " << row.wallMs;
    for (std::size_t speed = 0; speed <= 5; ++speed) // a quarter of the pace, doubled at each step
        EXPECT_EQ(CReplayClock::DueMs(0, 1000, speed), 250 << speed) << speed;

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

// Every game kept for good, mines and turrets and all, goes on from a
// checkpoint exactly as recorded: each frame's digest after it is the
// recording's (a seek's frames are not checked by the player itself).
TEST(Replays, GoldenGamesGoOnFromCheckpointsAsRecorded)
{
    int played = 0;
    for (const auto& file : std::filesystem::directory_iterator(QV_SOURCE_DIR "/tests/replay/golden")) {
        CReplay replay;
        std::string error;
        ASSERT_TRUE(CReplay::Load(file.path().string(), replay, error)) << error;
        std::vector<std::uint32_t> digests;
        for (const CReplay::Frame& frame : replay.frames)
            digests.insert(digests.end(), frame.count, frame.stateHash);
        qvtest::TestApp t(1);
        CReplayPlayer player(*t, replay);
        player.KeepCheckpoints();
        player.Begin();
        player.SeekTo(player.FrameCount());
        ASSERT_EQ(player.GetFirstDivergence(), CReplayPlayer::NoDivergence) << file.path();
        if (player.CheckpointCount() == 0)
            continue;
        ++played;
        for (std::size_t frame = digests.size() / 2; frame < digests.size(); ++frame) {
            player.SeekTo(frame + 1);
            ASSERT_EQ(t->FrameHash(replay.DigestCoversRandom()), digests[frame]) << file.path() << " frame " << frame;
        }
    }
    EXPECT_GE(played, 10);
}

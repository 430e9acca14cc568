#include "platform/AudioDevice.h"
#include "platform/Sequencer.h"
#include "platform/WavePlayer.h"
#include "support/AudioFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

constexpr UINT Cut = SND_FILENAME | SND_ASYNC;
constexpr UINT Yield = SND_FILENAME | SND_NOWAIT | SND_NOSTOP | SND_ASYNC;

class WavePlayerTest : public ::testing::Test {
protected:
    ScopedWorkDir dir;
    AudioScope audio;
    CWavePlayer& player = CWavePlayer::Instance();
};

TEST_F(WavePlayerTest, OneVoiceEitherCutsOffOrYields)
{
    WriteWave("long.wav", 3000);
    WriteWave("other.wav", 3000);
    ASSERT_TRUE(Platform::PlaySound("long.wav", Cut));
    EXPECT_EQ(player.PlayingFile(), "long.wav");

    EXPECT_FALSE(Platform::PlaySound("other.wav", Yield));
    EXPECT_EQ(player.PlayingFile(), "long.wav");

    EXPECT_TRUE(Platform::PlaySound("other.wav", Cut));
    EXPECT_EQ(player.PlayingFile(), "other.wav");

    EXPECT_TRUE(Platform::PlaySound(nullptr, 0));
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_TRUE(Platform::PlaySound("long.wav", Yield)); // nothing plays now
    EXPECT_EQ(player.PlayingFile(), "long.wav");
}

TEST_F(WavePlayerTest, WithoutAsyncItReturnsWhenTheSoundHasEnded)
{
    WriteWave("short.wav", 120);
    ASSERT_TRUE(Platform::PlaySound("short.wav", SND_FILENAME | SND_SYNC));
    EXPECT_FALSE(player.IsPlaying());
}

TEST_F(WavePlayerTest, AFileThatCannotBePlayedSoundsTheDefaultTone)
{
    WriteBytes("broken.wav", "RIFF, but not really");
    for (const char* file : {"missing.wav", "broken.wav"}) {
        Platform::PlaySound(nullptr, 0);
        EXPECT_TRUE(Platform::PlaySound(file, Yield)) << file;
        EXPECT_TRUE(player.IsPlayingDefault()) << file;
        EXPECT_EQ(player.PlayingFile(), file);
    }
    Platform::PlaySound(nullptr, 0);
    EXPECT_FALSE(Platform::PlaySound("missing.wav", Cut | SND_NODEFAULT));
    EXPECT_FALSE(player.IsPlaying());
    // The default tone is short: the voice is free again soon.
    EXPECT_TRUE(Platform::PlaySound("missing.wav", Cut));
    EXPECT_TRUE(WaitUntil([&] { return !player.IsPlaying(); }, 3000));
}

TEST_F(WavePlayerTest, WithoutAnAudioDeviceEverythingRefusesQuietly)
{
    ScopedEnv noDriver("SDL_AUDIODRIVER", "no-such-driver");
    Platform::CloseAudio();
    WriteWave("shot.wav", 100);
    WriteTune("tune.mid", 100);

    EXPECT_FALSE(Platform::PlaySound("shot.wav", Cut));
    EXPECT_FALSE(Platform::PlaySound("missing.wav", Cut));
    EXPECT_TRUE(Platform::PlaySound(nullptr, 0));
    EXPECT_FALSE(CAudioDevice::Instance().IsOpen());

    // The file opens, but the device has no output to play it on.
    MCI_OPEN_PARMS open;
    open.lpstrDeviceType = "sequencer";
    open.lpstrElementName = "tune.mid";
    ASSERT_EQ(Platform::MciSendCommand(0, MCI_OPEN, MCI_OPEN_TYPE | MCI_OPEN_ELEMENT, open), 0u);
    MCI_STATUS_PARMS status;
    status.dwItem = MCI_SEQ_STATUS_PORT;
    EXPECT_EQ(Platform::MciSendCommand(open.wDeviceID, MCI_STATUS, MCI_STATUS_ITEM, status), MCIERR_HARDWARE);
    EXPECT_EQ(Platform::MciSendCommand(open.wDeviceID, MCI_PLAY, MCI_NOTIFY, MCI_PLAY_PARMS{}), MCIERR_HARDWARE);
    EXPECT_EQ(Platform::MciSendCommand(open.wDeviceID, MCI_CLOSE, 0, MCI_GENERIC_PARMS{}), 0u);

    Platform::CloseAudio();
    Platform::CloseAudio();
}

} // namespace

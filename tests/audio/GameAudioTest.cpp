#include "app/GameWnd.h"
#include "platform/AudioDevice.h"
#include "platform/Sequencer.h"
#include "platform/WavePlayer.h"
#include "support/AudioFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

class GameAudioTest : public ::testing::Test {
protected:
    GameAudioTest()
    {
        WriteWave("explosion.wav", 3000);
        WriteWave("green.wav", 3000);
        WriteWave("bullet1.wav", 3000);
        WriteWave("bullet2.wav", 3000);
        WriteTune("background.mid", 2000);
    }
    std::string Playing() const { return CWavePlayer::Instance().PlayingFile(); }
    std::uint32_t Mode()
    {
        MCI_STATUS_PARMS status;
        status.dwItem = MCI_STATUS_MODE;
        EXPECT_EQ(Platform::MciSendCommand(t->musicDevice, MCI_STATUS, MCI_STATUS_ITEM, status), 0u);
        return status.dwReturn;
    }
    static std::size_t OpenDevices() { return CSequencer::Instance().OpenDeviceCount(); }
    // A started game: its window receives the music's notices.
    void StartUp()
    {
        Platform::StartSdl();
        ASSERT_TRUE(t->InitInstance());
        Platform::PlaySound(nullptr, 0); // the start-up sound is not what these tests listen for
    }
    void Deliver(WPARAM notice)
    {
        t->mainWnd->PostMessage(MM_MCINOTIFY, notice, static_cast<LPARAM>(t->musicDevice));
        static_cast<CPlatformApp&>(*t).PumpMessages();
    }

    AudioScope audio;
    TestApp t;
};

TEST_F(GameAudioTest, AShotYieldsToAPlayingExplosionButAnExplosionAlwaysCutsIn)
{
    t->PlaySoundEffect(1, "explosion.wav");
    EXPECT_EQ(Playing(), "explosion.wav");
    EXPECT_EQ(t->lastSoundPriority, 1);

    t->PlaySoundEffect(2, "bullet1.wav");
    EXPECT_EQ(Playing(), "explosion.wav");
    EXPECT_EQ(t->lastSoundPriority, 1);

    t->PlaySoundEffect(1, "green.wav");
    EXPECT_EQ(Playing(), "green.wav");
    t->PlaySoundEffect(1, "explosion.wav");
    EXPECT_EQ(Playing(), "explosion.wav");
    EXPECT_EQ(t->lastSoundPriority, 1);
}

TEST_F(GameAudioTest, AShotCutsOffAShotAndPlaysOnceAnExplosionHasEnded)
{
    WriteWave("explosion.wav", 80);
    t->PlaySoundEffect(1, "explosion.wav");
    ASSERT_TRUE(WaitUntil([&] { return Playing().empty(); }));
    t->PlaySoundEffect(2, "bullet1.wav");
    EXPECT_EQ(Playing(), "bullet1.wav");
    EXPECT_EQ(t->lastSoundPriority, 2);

    t->PlaySoundEffect(2, "bullet2.wav");
    EXPECT_EQ(Playing(), "bullet2.wav");
    t->PlaySoundEffect(1, "explosion.wav");
    EXPECT_EQ(Playing(), "explosion.wav");
    EXPECT_EQ(t->lastSoundPriority, 1);
}

TEST_F(GameAudioTest, TheFirstShotOfARunWaitsForTheStartUpSound)
{
    WriteWave("startup.wav", 3000);
    t->PlayStartupSound();
    t->PlaySoundEffect(2, "bullet1.wav");
    EXPECT_EQ(Playing(), "startup.wav");
    EXPECT_EQ(t->lastSoundPriority, 0);
}

TEST_F(GameAudioTest, WithSoundFxOffOnlyTheStartUpSoundPlays)
{
    WriteWave("startup.wav", 3000);
    t->menus.SetSoundOn(false);
    t->lastSoundPriority = 2;
    t->PlaySoundEffect(1, "explosion.wav");
    EXPECT_TRUE(Playing().empty());
    EXPECT_EQ(t->lastSoundPriority, 2);

    StartUp();
    t->PlaySoundEffect(1, "explosion.wav");
    EXPECT_TRUE(Playing().empty());
    t->PlayStartupSound();
    EXPECT_EQ(Playing(), "startup.wav");
}

TEST_F(GameAudioTest, AMissingWaveFileSoundsTheDefaultToneAndStillCounts)
{
    t->PlaySoundEffect(2, "bullet1.wav");
    t->PlaySoundEffect(1, "lost.wav");
    EXPECT_TRUE(CWavePlayer::Instance().IsPlayingDefault());
    EXPECT_EQ(t->lastSoundPriority, 1);
    ASSERT_TRUE(WaitUntil([&] { return Playing().empty(); }));
    t->PlaySoundEffect(2, "lost.wav");
    EXPECT_TRUE(CWavePlayer::Instance().IsPlayingDefault());
    EXPECT_EQ(t->lastSoundPriority, 2);
}

TEST_F(GameAudioTest, TheMusicOptionGatesTheTune)
{
    t->menus.SetMusicOn(false);
    EXPECT_EQ(t->PlayMusic(false), 0u);
    t->ApplyMusicOption();
    t->NewGame();
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(OpenDevices(), 0u);

    t->menus.SetMusicOn(true);
    t->ApplyMusicOption();
    ASSERT_NE(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(Mode(), MCI_MODE_PLAY);

    // Turned off, the tune plays on until the option is next applied.
    t->menus.SetMusicOn(false);
    EXPECT_EQ(Mode(), MCI_MODE_PLAY);
    t->ApplyMusicOption();
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(OpenDevices(), 0u);
}

TEST_F(GameAudioTest, ResumingWithMusicOnChangesNothingAndANewGameRestartsTheTune)
{
    ASSERT_EQ(t->PlayMusic(false), 0u);
    const std::uint32_t first = t->musicDevice;
    t->ApplyMusicOption();
    EXPECT_EQ(t->musicDevice, first);
    EXPECT_EQ(Mode(), MCI_MODE_PLAY);

    t->NewGame();
    EXPECT_NE(t->musicDevice, first);
    EXPECT_NE(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(Mode(), MCI_MODE_PLAY);
    EXPECT_EQ(OpenDevices(), 1u);

    t->Shutdown();
    t->Shutdown();
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(OpenDevices(), 0u);
}

TEST_F(GameAudioTest, AFailedOpenLeavesNoDevice)
{
    std::filesystem::remove("background.mid");
    EXPECT_EQ(t->PlayMusic(false), MCIERR_FILE_NOT_FOUND);
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);

    WriteBytes("background.mid", "not a tune");
    EXPECT_EQ(t->PlayMusic(false), MCIERR_INVALID_FILE);
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);

    // The tune opens, but there is no output: the device is closed again.
    WriteTune("background.mid", 100);
    ScopedEnv noDriver("SDL_AUDIODRIVER", "no-such-driver");
    Platform::CloseAudio();
    EXPECT_EQ(t->PlayMusic(false), MCIERR_HARDWARE);
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(OpenDevices(), 0u);
    Platform::CloseAudio();
}

TEST_F(GameAudioTest, OnlyASuccessfulEndRestartsTheTune)
{
    StartUp();
    ASSERT_EQ(t->PlayMusic(false), 0u);
    const std::uint32_t device = t->musicDevice;
    // As if the tune had played to its end.
    ASSERT_EQ(Platform::MciSendCommand(device, MCI_SEEK, MCI_SEEK_TO_END, MCI_SEEK_PARMS{}), 0u);

    for (WPARAM notice : {MCI_NOTIFY_ABORTED, MCI_NOTIFY_SUPERSEDED, MCI_NOTIFY_FAILURE})
        Deliver(notice);
    EXPECT_EQ(Mode(), MCI_MODE_STOP);

    t->menus.SetMusicOn(false);
    Deliver(MCI_NOTIFY_SUCCESSFUL);
    EXPECT_EQ(Mode(), MCI_MODE_STOP);

    t->menus.SetMusicOn(true);
    Deliver(MCI_NOTIFY_SUCCESSFUL);
    EXPECT_EQ(t->musicDevice, device);
    EXPECT_EQ(Mode(), MCI_MODE_PLAY);
}

TEST_F(GameAudioTest, TheTunePlaysAgainEachTimeItEnds)
{
    WriteTune("background.mid", 60);
    StartUp();
    ASSERT_EQ(t->PlayMusic(false), 0u);
    for (int round = 0; round < 2; ++round) {
        // The end is heard on the audio thread; the notice waits in the queue.
        ASSERT_TRUE(WaitUntil([&] { return Mode() == MCI_MODE_STOP; })) << round;
        static_cast<CPlatformApp&>(*t).PumpMessages();
        EXPECT_EQ(Mode(), MCI_MODE_PLAY) << round;
    }
}

} // namespace

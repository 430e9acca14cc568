#include "app/GameWnd.h"
#include "platform/AudioChecks.h"
#include "platform/AudioDevice.h"
#include "platform/Sequencer.h"
#include "platform/WavePlayer.h"
#include "support/AudioFiles.h"
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

class GameAudioTest : public ::testing::Test {
protected:
    GameAudioTest()
    {
        for (const char* file : {"startup.wav", "explosion.wav", "green.wav", "bullet1.wav", "bullet2.wav"})
            WriteWave(file, 3000);
        WriteTune("background.mid", 2000);
    }
    static std::string Playing() { return CWavePlayer::Instance().PlayingFile(); }
    static std::size_t OpenDevices() { return CSequencer::Instance().OpenDeviceCount(); }
    bool TunePlays() { return qvtest::TunePlays(t->musicDevice); }
    // A started game, whose window receives the tune's notices.
    void StartUp()
    {
        Platform::StartSdl();
        qvtest::WriteBlankArt();
        ASSERT_TRUE(t->InitInstance());
    }
    void Deliver(WPARAM notice)
    {
        t->mainWnd->PostMessage(MM_MCINOTIFY, notice, static_cast<LPARAM>(t->musicDevice));
        static_cast<CPlatformApp&>(*t).PumpMessages();
    }

    AudioScope audio;
    TestApp t;
};

TEST_F(GameAudioTest, AnImportantEffectCutsInALesserOneWaitsItsTurnAndSoundFxOffSilencesBoth)
{
    t->PlayStartupSound();
    t->PlaySoundEffect(1, "explosion.wav"); // every effect waits for the start-up sound
    EXPECT_EQ(Playing(), "startup.wav");
    EXPECT_EQ(t->lastSoundPriority, 0);
    Platform::PlaySound(nullptr, 0);

    t->PlaySoundEffect(1, "explosion.wav");
    t->PlaySoundEffect(2, "bullet1.wav");
    EXPECT_EQ(Playing(), "explosion.wav");
    EXPECT_EQ(t->lastSoundPriority, 1);

    WriteWave("short.wav", 80);
    t->PlaySoundEffect(1, "short.wav");
    ASSERT_TRUE(WaitUntil([] { return Playing().empty(); }));
    t->PlaySoundEffect(2, "bullet1.wav");
    EXPECT_EQ(t->lastSoundPriority, 2);
    t->PlaySoundEffect(2, "bullet2.wav"); // a shot cuts a shot
    EXPECT_EQ(Playing(), "bullet2.wav");
    t->PlaySoundEffect(1, "lost.wav"); // a missing file pings the default tone and still counts
    EXPECT_EQ(t->lastSoundPriority, 1);

    // With "Sound FX" off no effect plays or counts; the start-up sound still plays.
    Platform::PlaySound(nullptr, 0);
    t->menus.SetOptionOn(OptionSound, false);
    t->lastSoundPriority = 2;
    t->PlaySoundEffect(1, "explosion.wav");
    EXPECT_TRUE(Playing().empty());
    EXPECT_EQ(t->lastSoundPriority, 2);
    StartUp();
    EXPECT_EQ(Playing(), "startup.wav");
}

TEST_F(GameAudioTest, TheMusicOptionGatesTheTuneAndANewGameRestartsIt)
{
    t->menus.SetOptionOn(OptionMusic, false);
    t->ApplyMusicOption();
    t->NewGame();
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);

    t->menus.SetOptionOn(OptionMusic, true);
    t->ApplyMusicOption();
    const std::uint32_t first = t->musicDevice;
    EXPECT_TRUE(TunePlays());
    t->ApplyMusicOption(); // resuming while it plays changes nothing
    EXPECT_EQ(t->musicDevice, first);

    t->NewGame();
    EXPECT_NE(t->musicDevice, first);
    EXPECT_EQ(OpenDevices(), 1u);
    t->menus.SetOptionOn(OptionMusic, false);
    t->ApplyMusicOption();
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(OpenDevices(), 0u);
}

TEST_F(GameAudioTest, AFailedOpenLeavesNoDeviceAndTheGameSilent)
{
    WriteFile("background.mid", "not a tune");
    EXPECT_EQ(t->PlayMusic(false), MCIERR_INVALID_FILE);
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);

    // No output: the tune opens but is closed again, and effects are dropped.
    WriteTune("background.mid", 100);
    ScopedEnv noDriver("SDL_AUDIODRIVER", "no-such-driver");
    Platform::CloseAudio();
    EXPECT_EQ(t->PlayMusic(false), MCIERR_HARDWARE);
    EXPECT_EQ(t->musicDevice, CGameApp::NoMusicDevice);
    EXPECT_EQ(OpenDevices(), 0u);
    t->PlaySoundEffect(2, "bullet1.wav");
    EXPECT_EQ(t->lastSoundPriority, 0);
}

TEST_F(GameAudioTest, OnlyASuccessfulEndWithTheMusicOnRestartsTheTune)
{
    WriteTune("background.mid", 250); // 0.75 s: still playing when checked just after a restart
    StartUp();
    ASSERT_EQ(t->PlayMusic(false), 0u);
    const std::uint32_t device = t->musicDevice;
    // Its end is heard on the audio thread; the notice then waits for the message loop.
    ASSERT_TRUE(WaitUntil([&] { return !TunePlays(); }));
    static_cast<CPlatformApp&>(*t).PumpMessages();
    EXPECT_TRUE(TunePlays());

    ASSERT_EQ(Platform::MciSendCommand(device, MCI_SEEK, MCI_SEEK_TO_END, MCI_SEEK_PARMS{}), 0u);
    for (WPARAM notice : {MCI_NOTIFY_ABORTED, MCI_NOTIFY_SUPERSEDED, MCI_NOTIFY_FAILURE})
        Deliver(notice);
    t->menus.SetOptionOn(OptionMusic, false);
    Deliver(MCI_NOTIFY_SUCCESSFUL);
    EXPECT_FALSE(TunePlays());

    t->menus.SetOptionOn(OptionMusic, true);
    Deliver(MCI_NOTIFY_SUCCESSFUL);
    EXPECT_EQ(t->musicDevice, device);
    EXPECT_TRUE(TunePlays());

    t->Shutdown();
    EXPECT_EQ(OpenDevices(), 0u);
}

} // namespace

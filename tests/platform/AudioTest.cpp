#include "platform/AudioDevice.h"
#include "platform/MessageQueue.h"
#include "platform/Sequencer.h"
#include "platform/Volume.h"
#include "platform/WaveFile.h"
#include "platform/WavePlayer.h"
#include "platform/Window.h"
#include "platform/AudioChecks.h"
#include "support/AudioFiles.h"
#include "support/BitmapFiles.h"
#include "support/TestApp.h"

#include <SDL.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

namespace {

using namespace qvtest;

using NoticeList = std::vector<std::pair<WPARAM, LPARAM>>; // code and device of each notice
constexpr std::uintmax_t OutputBytesPerSecond = 44100 * 2 * 2; // 16-bit stereo

class AudioTest : public ::testing::Test {
protected:
    AudioTest() { CMessageQueue::Instance().Clear(); }
    ~AudioTest() override // the volumes a test stepped go back to full
    {
        Platform::SetVolume(VolumeChannel::Music, Platform::VolumeSteps);
        Platform::SetVolume(VolumeChannel::Effects, Platform::VolumeSteps);
    }

    MCIERROR Open(const std::string& file, MCIDEVICEID& id, const std::string& type = "sequencer")
    {
        MCI_OPEN_PARMS open{.lpstrDeviceType = type, .lpstrElementName = file};
        const MCIERROR result = Platform::MciSendCommand(0, MCI_OPEN, MCI_OPEN_TYPE | MCI_OPEN_ELEMENT, open);
        id = open.wDeviceID;
        return result;
    }
    MCIERROR Play(MCIDEVICEID id) { return Platform::MciSendCommand(id, MCI_PLAY, MCI_NOTIFY, MCI_PLAY_PARMS{&window}); }
    MCIERROR Seek(MCIDEVICEID id) { return Platform::MciSendCommand(id, MCI_SEEK, MCI_SEEK_TO_START, MCI_SEEK_PARMS{}); }
    MCIERROR Close(MCIDEVICEID id) { return Platform::MciSendCommand(id, MCI_CLOSE, 0, MCI_GENERIC_PARMS{}); }
    NoticeList Notices()
    {
        NoticeList notices;
        while (auto msg = CMessageQueue::Instance().Take())
            if (msg->window == &window && msg->message == MM_MCINOTIFY)
                notices.emplace_back(msg->wParam, msg->lParam);
        return notices;
    }

    ScopedWorkDir dir;
    AudioScope audio;
    CPlatformWnd window; // all a notice needs is a window to be addressed to
    CWavePlayer& player = CWavePlayer::Instance();
};

// Cutting in and yielding are the game's effect priorities, tested there.
TEST_F(AudioTest, MissingBrokenAndUnreasonableWavesPingTheDefaultTone)
{
    WriteFile("broken.wav", "RIFF, but not really");
    WriteTune("tune.wav", 100); // the mixer would render a tune into memory
    // A few samples a second would be stretched to gigabytes at the output's rate.
    WriteFile("slow.wav", Platform::EncodeWave(std::vector<std::int16_t>(1000, 100), 1));
    WriteFile("long.wav", Platform::EncodeWave(Platform::MakeTone(440.0, 31000, 4000), 4000));
    // A file cut short, whose data chunk claims gigabytes, plays what it holds.
    auto cut = Platform::EncodeWave(Platform::MakeTone(440.0, 100, 22050), 22050);
    std::fill(cut.begin() + 40, cut.begin() + 44, 0xD2);
    WriteFile("cut.wav", cut);
    ASSERT_TRUE(Platform::PlaySound("cut.wav", SND_FILENAME | SND_ASYNC) && !player.IsPlayingDefault());
    // One with no samples at all plays, and is over at once.
    WriteFile("empty.wav", Platform::EncodeWave({}, 22050));
    EXPECT_TRUE(Platform::PlaySound("empty.wav", SND_FILENAME | SND_ASYNC) && !player.IsPlaying());
    for (const char* file : {"missing.wav", "broken.wav", "tune.wav", "slow.wav", "long.wav"}) {
        Platform::PlaySound(nullptr, 0);
        EXPECT_TRUE(Platform::PlaySound(file, SND_FILENAME | SND_NOSTOP | SND_ASYNC) && player.IsPlayingDefault()) << file;
    }
}

TEST_F(AudioTest, OnlyATuneThatPlaysToItsEndIsReportedSuccessful)
{
    // 0.6 s: each play below is cut or checked long before it could end by
    // itself, however late a busy machine runs the test.
    WriteTune("tune.mid", 200);
    MCIDEVICEID id = 0;
    MCIDEVICEID other = 0;
    EXPECT_EQ(Open("missing.mid", id), MCIERR_FILE_NOT_FOUND);
    EXPECT_EQ(Open("tune.mid", id, "waveaudio"), MCIERR_INVALID_DEVICE_NAME);
    EXPECT_EQ(CSequencer::Instance().OpenDeviceCount(), 0u);
    ASSERT_EQ(Open("tune.mid", id), 0u);
    ASSERT_EQ(Open("tune.mid", other), 0u);
    ASSERT_NE(id, other);

    ASSERT_EQ(Play(id), 0u);
    ASSERT_EQ(Play(id), 0u); // a newer play takes the notice over
    ASSERT_EQ(Seek(id), 0u);
    ASSERT_EQ(Play(id), 0u);
    ASSERT_EQ(Play(other), 0u); // one tune at a time
    EXPECT_FALSE(TunePlays(id));
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_SUPERSEDED, id}, {MCI_NOTIFY_ABORTED, id}, {MCI_NOTIFY_ABORTED, id}}));
    EXPECT_EQ(Close(other), 0u);
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_ABORTED, other}}));

    // Played to its end, after the ends the stopped plays would have reached:
    // their notices, had they any left, would come first.
    ASSERT_EQ(Play(id), 0u);
    ASSERT_TRUE(WaitUntil([&] { return !TunePlays(id); }));
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_SUCCESSFUL, id}}));
    // At its end nothing is left to play until it is sought back to its start.
    ASSERT_EQ(Play(id), 0u);
    EXPECT_FALSE(TunePlays(id));
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_SUCCESSFUL, id}}));

    // A window that has gone away hears nothing more.
    ASSERT_EQ(Seek(id), 0u);
    ASSERT_EQ(Play(id), 0u);
    CSequencer::Instance().ForgetWindow(&window);
    EXPECT_EQ(Close(id), 0u);
    EXPECT_TRUE(Notices().empty());
    EXPECT_EQ(Play(id), MCIERR_INVALID_DEVICE_ID);
}

// SDL's disk driver writes the mixed output (16-bit stereo, 44100 Hz) to a
// file; QV_RECORDING_DIR keeps the recording for a closer listen.
std::vector<std::int16_t> Recorded(const std::function<void()>& play)
{
    const char* keep = std::getenv("QV_RECORDING_DIR");
    const std::string file = std::string(keep ? keep : ".") + "/output.raw";
    {
        ScopedEnv driver("SDL_AUDIODRIVER", "disk");
        ScopedEnv output("SDL_DISKAUDIOFILE", file);
        Platform::CloseAudio();
        play();
        // What was played ahead is heard: the output goes on for 0.4 s more.
        const auto heard = std::filesystem::file_size(file) + OutputBytesPerSecond * 2 / 5;
        EXPECT_TRUE(WaitUntil([&] { return std::filesystem::file_size(file) >= heard; }));
        Platform::CloseAudio();
    }
    std::ifstream in(file, std::ios::binary);
    std::vector<std::int16_t> samples;
    for (std::int16_t block[882]; in.read(reinterpret_cast<char*>(block), sizeof block);)
        samples.insert(samples.end(), std::begin(block), std::end(block));
    return samples;
}

// Each channel's step reaches the output on its own, at the step's share of
// full loudness, the other channel at full; the lowest step is silence. At
// full, a tune played again as soon as it has ended, as the game does, joins
// its end with no seam, and nothing goes over the limiter's ceiling.
TEST_F(AudioTest, AWaveAndALoopedTuneReachTheOutputAtEachVolumeStepWithNoSeamAndNoClipping)
{
    WriteWave("shot.wav", 200);
    WriteTune("tune.mid", 100);
    double fullShot = 0.0, fullTune = 0.0;
    const std::pair<int, double> steps[] = {{10, 1.0}, {5, 0.25}, {0, 0.0}}; // step, share of full
    for (const auto& [step, share] : steps) {
        SCOPED_TRACE(step);
        Platform::SetVolume(VolumeChannel::Music, Platform::VolumeSteps);
        Platform::SetVolume(VolumeChannel::Effects, step);
        const auto shot = Recorded([&] { ASSERT_TRUE(Platform::PlaySound("shot.wav", SND_FILENAME | SND_SYNC)); });
        Platform::SetVolume(VolumeChannel::Effects, Platform::VolumeSteps);
        Platform::SetVolume(VolumeChannel::Music, step);
        const auto tune = Recorded([&] {
            MCIDEVICEID id = 0;
            ASSERT_EQ(Open("tune.mid", id), 0u);
            ASSERT_EQ(Play(id), 0u);
            ASSERT_TRUE(WaitUntil([&] { return !Notices().empty(); }));
            ASSERT_EQ(Seek(id), 0u);
            ASSERT_EQ(Play(id), 0u);
            ASSERT_TRUE(WaitUntil([&] { return !Notices().empty(); }));
        });
        const double shotPeak = Peak(shot.begin(), shot.end());
        const double tunePeak = Peak(tune.begin(), tune.end());
        if (step == Platform::VolumeSteps) {
            fullShot = shotPeak;
            fullTune = tunePeak;
            ASSERT_GT(fullShot, 5000);
            ASSERT_GT(fullTune, 1000);
            EXPECT_LE(std::max(shotPeak, tunePeak), CLimiter::Ceiling * 32768 + 1);
            std::vector<int> peaks; // of each hundredth of a second
            for (std::size_t at = 0; at + 882 <= tune.size(); at += 882)
                peaks.push_back(static_cast<int>(Peak(tune.begin() + at, tune.begin() + at + 882)));
            // Two plays of 0.3 s each, one straight after the other.
            const auto start = std::find_if(peaks.begin(), peaks.end(), [](int peak) { return peak > 300; });
            ASSERT_GE(std::distance(start, peaks.end()), 55);
            EXPECT_GT(*std::min_element(start, start + 55), 30) << "a pause in the music";
        }
        EXPECT_NEAR(shotPeak, share * fullShot, 0.02 * fullShot + 1) << "the shot";
        EXPECT_NEAR(tunePeak, share * fullTune, 0.02 * fullTune + 1) << "the tune";
    }
}

} // namespace

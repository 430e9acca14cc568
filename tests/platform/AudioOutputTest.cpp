#include "platform/AudioDevice.h"
#include "platform/MessageQueue.h"
#include "platform/Sequencer.h"
#include "platform/WavePlayer.h"
#include "platform/Window.h"
#include "support/AudioFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace {

using namespace qvtest;

struct Loudness {
    double seconds = 0;
    int peak = 0;
    double rms = 0;
};

// Measures what SDL's disk driver wrote: 16-bit stereo at 44100 Hz.
Loudness Measure(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    Loudness result;
    double sumOfSquares = 0;
    std::size_t count = 0;
    std::int16_t sample = 0;
    while (in.read(reinterpret_cast<char*>(&sample), sizeof sample)) {
        result.peak = std::max(result.peak, std::abs(static_cast<int>(sample)));
        sumOfSquares += static_cast<double>(sample) * sample;
        ++count;
    }
    if (count > 0) {
        result.seconds = static_cast<double>(count) / (2 * 44100);
        result.rms = std::sqrt(sumOfSquares / static_cast<double>(count));
    }
    return result;
}

// Records one stretch of output into a raw file through SDL's disk driver.
// QV_RECORDING_DIR keeps the recordings for a closer listen.
class Recording {
public:
    explicit Recording(const std::string& name)
        : file(Folder() + "/" + name), driver("SDL_AUDIODRIVER", "disk"), output("SDL_DISKAUDIOFILE", file)
    {
        Platform::CloseAudio();
    }
    Loudness Finish()
    {
        Platform::CloseAudio();
        return Measure(file);
    }

private:
    static std::string Folder()
    {
        const char* keep = std::getenv("QV_RECORDING_DIR");
        return keep ? keep : ".";
    }
    std::string file;
    ScopedEnv driver;
    ScopedEnv output;
};

class AudioOutputTest : public ::testing::Test {
protected:
    ScopedWorkDir dir;
    AudioScope audio;
};

TEST_F(AudioOutputTest, AWaveSoundReachesTheOutput)
{
    WriteWave("shot.wav", 400);
    Recording recording("wave.raw");
    ASSERT_TRUE(Platform::PlaySound("shot.wav", SND_FILENAME | SND_SYNC));
    const Loudness heard = recording.Finish();
    EXPECT_GE(heard.seconds, 0.35);
    EXPECT_GT(heard.peak, 4000);
    EXPECT_GT(heard.rms, 200.0);
}

TEST_F(AudioOutputTest, AMidiTuneIsSynthesisedToTheOutput)
{
    WriteTune("tune.mid", 300);
    CMessageQueue::Instance().Clear();
    CPlatformWnd window;
    Recording recording("tune.raw");
    MCI_OPEN_PARMS open;
    open.lpstrDeviceType = "sequencer";
    open.lpstrElementName = "tune.mid";
    ASSERT_EQ(Platform::MciSendCommand(0, MCI_OPEN, MCI_OPEN_TYPE | MCI_OPEN_ELEMENT, open), 0u);
    MCI_PLAY_PARMS play;
    play.dwCallback = &window;
    ASSERT_EQ(Platform::MciSendCommand(open.wDeviceID, MCI_PLAY, MCI_NOTIFY, play), 0u);
    ASSERT_TRUE(WaitUntil([] { return !CMessageQueue::Instance().Empty(); }));
    Platform::MciSendCommand(open.wDeviceID, MCI_CLOSE, 0, MCI_GENERIC_PARMS{});
    const Loudness heard = recording.Finish();
    EXPECT_GE(heard.seconds, 0.9);
    EXPECT_GT(heard.peak, 1000);
    EXPECT_GT(heard.rms, 100.0);
}

} // namespace

#include "platform/MessageQueue.h"
#include "platform/Sequencer.h"
#include "platform/Window.h"
#include "support/AudioFiles.h"
#include "support/TestApp.h"

#include <gtest/gtest.h>

namespace {

using namespace qvtest;

// Notices as they arrived, each its code and device.
using NoticeList = std::vector<std::pair<WPARAM, LPARAM>>;

class SequencerTest : public ::testing::Test {
protected:
    SequencerTest() { CMessageQueue::Instance().Clear(); }

    MCIERROR Open(const std::string& file, MCIDEVICEID& id, const std::string& type = "sequencer")
    {
        MCI_OPEN_PARMS open;
        open.lpstrDeviceType = type;
        open.lpstrElementName = file;
        const MCIERROR result = Platform::MciSendCommand(0, MCI_OPEN, MCI_OPEN_TYPE | MCI_OPEN_ELEMENT, open);
        id = open.wDeviceID;
        return result;
    }
    MCIERROR Play(MCIDEVICEID id, std::uint32_t flags = MCI_NOTIFY)
    {
        MCI_PLAY_PARMS play;
        play.dwCallback = &window;
        return Platform::MciSendCommand(id, MCI_PLAY, flags, play);
    }
    MCIERROR Seek(MCIDEVICEID id, std::uint32_t flags)
    {
        return Platform::MciSendCommand(id, MCI_SEEK, flags, MCI_SEEK_PARMS{});
    }
    MCIERROR Close(MCIDEVICEID id) { return Platform::MciSendCommand(id, MCI_CLOSE, 0, MCI_GENERIC_PARMS{}); }
    std::uint32_t Mode(MCIDEVICEID id)
    {
        MCI_STATUS_PARMS status;
        status.dwItem = MCI_STATUS_MODE;
        EXPECT_EQ(Platform::MciSendCommand(id, MCI_STATUS, MCI_STATUS_ITEM, status), 0u);
        return status.dwReturn;
    }
    NoticeList Notices()
    {
        NoticeList notices;
        while (auto msg = CMessageQueue::Instance().Take()) {
            EXPECT_EQ(msg->window, &window);
            EXPECT_EQ(msg->message, MM_MCINOTIFY);
            notices.emplace_back(msg->wParam, msg->lParam);
        }
        return notices;
    }

    ScopedWorkDir dir;
    AudioScope audio;
    CPlatformWnd window; // a window object is all a notice needs to be addressed
};

TEST_F(SequencerTest, OpeningRefusesWhatIsNotAMidiFileOnTheSequencer)
{
    WriteTune("tune.mid", 100);
    WriteWave("sound.wav", 100);
    MCIDEVICEID id = 0;
    EXPECT_EQ(Open("missing.mid", id), MCIERR_FILE_NOT_FOUND);
    EXPECT_EQ(Open("sound.wav", id), MCIERR_INVALID_FILE);
    EXPECT_EQ(Open("tune.mid", id, "waveaudio"), MCIERR_INVALID_DEVICE_NAME);
    EXPECT_EQ(CSequencer::Instance().OpenDeviceCount(), 0u);

    MCIDEVICEID first = 0;
    MCIDEVICEID second = 0;
    ASSERT_EQ(Open("tune.mid", first, "Sequencer"), 0u);
    ASSERT_EQ(Open("tune.mid", second), 0u);
    EXPECT_NE(first, 0u);
    EXPECT_NE(first, second);
    EXPECT_EQ(Close(first), 0u);
    EXPECT_EQ(Close(first), MCIERR_INVALID_DEVICE_ID);
    EXPECT_EQ(Play(first), MCIERR_INVALID_DEVICE_ID);
    EXPECT_EQ(Seek(first, MCI_SEEK_TO_START), MCIERR_INVALID_DEVICE_ID);
    EXPECT_EQ(Platform::MciSendCommand(second, MCI_PLAY, 0, MCI_GENERIC_PARMS{}), MCIERR_UNRECOGNIZED_COMMAND);
    EXPECT_EQ(CSequencer::Instance().OpenDeviceCount(), 1u);
}

TEST_F(SequencerTest, ATuneThatPlaysToItsEndIsReportedSuccessful)
{
    WriteTune("tune.mid", 60);
    MCIDEVICEID id = 0;
    ASSERT_EQ(Open("tune.mid", id), 0u);
    MCI_STATUS_PARMS port;
    port.dwItem = MCI_SEQ_STATUS_PORT;
    ASSERT_EQ(Platform::MciSendCommand(id, MCI_STATUS, MCI_STATUS_ITEM, port), 0u);
    EXPECT_EQ(port.dwReturn, MCI_SEQ_MAPPER);

    ASSERT_EQ(Play(id), 0u);
    EXPECT_EQ(Mode(id), MCI_MODE_PLAY);
    ASSERT_TRUE(WaitUntil([&] { return !CMessageQueue::Instance().Empty(); }));
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_SUCCESSFUL, id}}));
    EXPECT_EQ(Mode(id), MCI_MODE_STOP);

    // At its end nothing is left to play, until it is sought back to its start.
    ASSERT_EQ(Play(id), 0u);
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_SUCCESSFUL, id}}));
    EXPECT_EQ(Mode(id), MCI_MODE_STOP);
    ASSERT_EQ(Seek(id, MCI_SEEK_TO_START), 0u);
    ASSERT_EQ(Play(id), 0u);
    EXPECT_EQ(Mode(id), MCI_MODE_PLAY);
    EXPECT_TRUE(Notices().empty());
}

TEST_F(SequencerTest, APlayCutShortIsNeverReportedSuccessful)
{
    WriteTune("tune.mid", 2000);
    MCIDEVICEID id = 0;
    MCIDEVICEID other = 0;
    ASSERT_EQ(Open("tune.mid", id), 0u);
    ASSERT_EQ(Open("tune.mid", other), 0u);

    ASSERT_EQ(Play(id), 0u);
    ASSERT_EQ(Play(id), 0u); // a newer play of the same device takes over the notice
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_SUPERSEDED, id}}));
    EXPECT_EQ(Seek(id, MCI_SEEK_TO_START), 0u);
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_ABORTED, id}}));
    EXPECT_EQ(Mode(id), MCI_MODE_STOP);

    ASSERT_EQ(Play(id), 0u);
    ASSERT_EQ(Play(other), 0u); // one tune at a time
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_ABORTED, id}}));
    EXPECT_EQ(Mode(id), MCI_MODE_STOP);
    EXPECT_EQ(Mode(other), MCI_MODE_PLAY);

    EXPECT_EQ(Close(other), 0u);
    EXPECT_EQ(Notices(), (NoticeList{{MCI_NOTIFY_ABORTED, other}}));

    // A play without MCI_NOTIFY, and one whose window has gone, report nothing.
    ASSERT_EQ(Play(id, 0), 0u);
    EXPECT_EQ(Seek(id, MCI_SEEK_TO_START), 0u);
    ASSERT_EQ(Play(id), 0u);
    CSequencer::Instance().ForgetWindow(&window);
    EXPECT_EQ(Close(id), 0u);
    EXPECT_TRUE(Notices().empty());
}

} // namespace

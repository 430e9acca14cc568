#include "platform/Types.h"
#include "replay/Replay.h"

#include <gtest/gtest.h>

#include <string>

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

    ASSERT_EQ(read.frames.size(), 4u);
    EXPECT_EQ(read.FrameCount(), 6u);
    EXPECT_EQ(read.frames[1].elapsedMs, 0.5);
    EXPECT_EQ(read.frames[2].elapsedMs, 300000.0);
    EXPECT_EQ(read.frames[3].count, 3u);
    EXPECT_EQ(read.frames[3].elapsedMs, 49.5);
    EXPECT_EQ(read.frames[0].stateHash, 0x01020304u);
    EXPECT_EQ(read.inputs, written.inputs);
    EXPECT_EQ(read.FirstInputBefore(0), 0u);
    EXPECT_EQ(read.EndInputBefore(0), 1u);
    EXPECT_EQ(read.EndInputBefore(1), 1u); // nothing came between the first two frames
    EXPECT_EQ(read.EndInputBefore(2), 3u);
    EXPECT_EQ(read.FirstInputBefore(4), 3u);
    EXPECT_EQ(read.EndInputBefore(4), 4u);
    EXPECT_EQ(read.summary, written.summary);
    EXPECT_EQ(read.Encode(), bytes);
}

TEST(ReplayFile, EveryTruncationAndEveryChangedByteIsRefusedWithAReason)
{
    const std::string bytes = SampleReplay().Encode();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        std::string error;
        EXPECT_FALSE(Decodes(bytes.substr(0, at), error)) << at;
        EXPECT_FALSE(error.empty());
        for (const char flip : {'\x01', '\x80', '\xFF'}) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            EXPECT_FALSE(Decodes(damaged, error)) << "byte " << at << " changed";
            EXPECT_NE(error.find("at byte"), std::string::npos) << error;
        }
    }
    std::string error;
    EXPECT_FALSE(Decodes(bytes + '\0', error));
    EXPECT_NE(error.find("follow the end"), std::string::npos) << error;
}

TEST(ReplayFile, ForeignAndDamagedFilesAreRefused)
{
    const std::string good = SampleReplay().Encode();
    const std::size_t versionAt = 8;
    // The end record (a tag and 18 bytes) and the checksum follow the header at once when nothing was recorded.
    CReplay headerOnly;
    headerOnly.header = SampleReplay().header;
    const std::size_t firstRecordAt = headerOnly.Encode().size() - 23;
    struct Damage {
        const char* what;
        std::string bytes;
        const char* reason;
    };
    auto with = [&good](std::size_t at, char byte) {
        std::string b = good;
        b[at] = byte;
        return b;
    };
    const Damage cases[] = {
        {"another program's file", "PK\x03\x04 not a replay at all", "not a Quelvarion replay"},
        {"a later format", with(versionAt, 3), "format 3"},
        {"an unknown record", with(firstRecordAt, 0x42), "unknown record"},
        {"a message no replay holds", with(firstRecordAt + 1, 0x10), "message"},
    };
    for (const Damage& c : cases) {
        std::string error;
        EXPECT_FALSE(Decodes(c.bytes, error)) << c.what;
        EXPECT_NE(error.find(c.reason), std::string::npos) << c.what << ": " << error;
        EXPECT_NE(error.find("at byte"), std::string::npos) << error;
    }
}

TEST(ReplayFile, NumbersHaveOneFormOnly)
{
    CReplay r = SampleReplay();
    r.frames.resize(1);
    r.inputs.resize(1);
    r.summary.frameCount = 1;
    std::string bytes = r.Encode();
    // The one frame's 16 ms, written as two bytes instead of one.
    const std::size_t frameAt = bytes.rfind(std::string("\x01\x10", 2));
    ASSERT_NE(frameAt, std::string::npos);
    bytes.replace(frameAt + 1, 1, std::string("\x90\x00", 2));
    std::string error;
    EXPECT_FALSE(Decodes(bytes, error));
    EXPECT_NE(error.find("longer than it needs"), std::string::npos) << error;
}

} // namespace

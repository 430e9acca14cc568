// The sequencer's reading of MIDI files: what it plays, when, and where a
// tune ends; and the files it refuses.
#include "platform/MidiTune.h"
#include "support/MidiBytes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace qvtest::midi;

std::optional<CMidiTune> Parse(const Bytes& bytes)
{
    return CMidiTune::Parse(bytes.data(), bytes.size());
}

// Each message as "time in microseconds: status data1 data2".
std::vector<std::string> Listing(const CMidiTune& tune)
{
    std::vector<std::string> lines;
    for (const MidiMessage& m : tune.Messages())
        lines.push_back(std::to_string(m.micros) + ": " + std::to_string(m.status) + " " + std::to_string(m.data1) +
                        " " + std::to_string(m.data2));
    return lines;
}

TEST(MidiTune, TracksPlayTogetherThroughOneTempoMapAndEndWithTheLastEvent)
{
    // 480 ticks a beat. The conductor halves the beat to 250 ms at tick 960
    // (1 s in) and ends at tick 1920 (1.5 s): later than the part's last note.
    const Bytes conductor = Join({{0x00, 0xFF, 0x51, 3, 0x07, 0xA1, 0x20}, // 500000 us a beat
                                  {0x87, 0x40, 0xFF, 0x51, 3, 0x03, 0xD0, 0x90}, // +960: 250000
                                  EndOfTrack(960)});
    // A program; a note at tick 480; a system-exclusive message, passed over;
    // and at tick 1440 two releases as zero velocities, the second in running status.
    const Bytes part = Join({{0x00, 0xC0, 0x05},
                             {0x83, 0x60, 0x90, 0x3C, 0x64},
                             {0x00, 0xF0, 0x02, 0x7E, 0xF7}, // system exclusive, passed over
                             {0x87, 0x40, 0x90, 0x3C, 0x00},
                             {0x00, 0x3C, 0x00}, // running status again after a channel message
                             EndOfTrack()});
    const auto tune = Parse(Join({Header(1, 2, 480), Chunk("MTrk", conductor), Chunk("MTrk", part)}));
    ASSERT_TRUE(tune);
    EXPECT_EQ(Listing(*tune), (std::vector<std::string>{"0: 192 5 0", "500000: 144 60 100", "1250000: 144 60 0",
                                                         "1250000: 144 60 0"}));
    EXPECT_EQ(tune->EndMicros(), 1500000u);
}

TEST(MidiTune, SmpteDivisionCountsFramesAndOtherChunksArePassedOver)
{
    // 25 frames of 40 ticks: a thousand ticks a second, whatever the tempo says.
    const Bytes track = Join({{0x00, 0xFF, 0x51, 3, 0x0F, 0x42, 0x40}, {0x83, 0x74, 0xB2, 0x07, 0x64},
                              EndOfTrack(500)});
    const auto tune = Parse(Join({Header(0, 1, 0xE728), Chunk("XFIH", {1, 2, 3}), Chunk("MTrk", track)}));
    ASSERT_TRUE(tune);
    EXPECT_EQ(Listing(*tune), (std::vector<std::string>{"500000: 178 7 100"}));
    EXPECT_EQ(tune->EndMicros(), 1000000u);
    // 29.97 frames a second (drop-frame), 10 ticks a frame: 500 ticks are 1001/600 s.
    const auto dropFrame = Parse(Join({Header(0, 1, 0xE30A), Chunk("MTrk", EndOfTrack(500))}));
    ASSERT_TRUE(dropFrame);
    EXPECT_EQ(dropFrame->EndMicros(), 1668333u);
}

TEST(MidiTune, RefusesWhatNoSequencerCanPlay)
{
    const Bytes second = Join({{0x83, 0x60, 0x90, 0x3C, 0x64}, EndOfTrack()}); // a note half a second in
    const auto file = [](std::uint16_t format, const Bytes& track) {
        return Join({Header(format, 1, 480), Chunk("MTrk", track)});
    };
    const Bytes plain = file(0, second);
    ASSERT_TRUE(Parse(plain));
    // Padded with a chunk of another kind up to the size limit, it is still read; a byte more is not.
    Bytes atLimit = Join({plain, Chunk("Pad ", Bytes(CMidiTune::MaxFileBytes - plain.size() - 8, 0))});
    ASSERT_TRUE(Parse(atLimit));
    atLimit.push_back(0);
    const std::vector<std::pair<const char*, Bytes>> refused{
        {"no header", Bytes{'R', 'I', 'F', 'F', 0, 0, 0, 6, 0, 0, 0, 1, 1, 0xE0}},
        {"header cut short", Bytes{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0}},
        {"format 2", file(2, second)},
        {"no tracks", Header(0, 0, 480)},
        {"a division of 0", Join({Header(0, 1, 0), Chunk("MTrk", second)})},
        {"an unknown frame rate", Join({Header(0, 1, 0xE40A), Chunk("MTrk", second)})},
        {"a track longer than the file", Join({Header(0, 1, 480), Bytes{'M', 'T', 'r', 'k', 0, 0, 1, 0}, second})},
        {"a data byte with no status", file(0, Join({{0x00, 0x3C, 0x64}, EndOfTrack()}))},
        {"running status after a system-exclusive message",
         file(0, Join({{0x00, 0x90, 0x3C, 0x64, 0x00, 0xF0, 0x01, 0xF7, 0x10, 0x3C, 0x00}, EndOfTrack()}))},
        {"a status where data belongs", file(0, Join({{0x00, 0x90, 0x3C, 0x90}, EndOfTrack()}))},
        {"a system message", file(0, Join({{0x00, 0xF2, 0x00, 0x00}, EndOfTrack()}))},
        {"an event cut short", file(0, {0x00, 0x90, 0x3C})},
        {"a five-byte delta", file(0, Join({{0x81, 0x81, 0x81, 0x81, 0x01, 0x90, 0x3C, 0x64}, EndOfTrack()}))},
        {"a meta event longer than its track", file(0, {0x00, 0xFF, 0x01, 0x10, 'a'})},
        {"a tune of no length", file(0, Join({{0x00, 0x90, 0x3C, 0x64}, EndOfTrack()}))},
        {"a tune longer than an hour", file(0, EndOfTrack(0x0FFFFFFF))},
        {"a file a byte over the size limit", atLimit},
    };
    for (const auto& [why, bytes] : refused)
        EXPECT_FALSE(Parse(bytes)) << why;
    EXPECT_FALSE(CMidiTune::Parse(nullptr, 0));
}

} // namespace

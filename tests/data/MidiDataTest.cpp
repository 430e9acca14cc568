// The MIDI writer, and the background tune as a sequencer will play it:
// at least a minute long, General MIDI with drums on channel 10, and built
// to loop: it sounds from its first tick and every note ends by its last.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "GameDataFiles.h"
#include "MidiFile.h"
#include "MidiWriter.h"

namespace {

constexpr uint8_t kDrumChannel = 9;

std::vector<uint8_t> Encoded(uint32_t value) {
    std::vector<uint8_t> out;
    assetgen::MidiWriter::AppendVariableLength(out, value);
    return out;
}

qvdata::MidiFile Tune() { return qvdata::MidiFile::Parse(qvdata::ReadBytes(qvdata::GameDir() / "background.mid")); }

}  // namespace

TEST(MidiWriter, EncodesVariableLengthQuantities) {
    EXPECT_EQ(Encoded(0), (std::vector<uint8_t>{0x00}));
    EXPECT_EQ(Encoded(0x7F), (std::vector<uint8_t>{0x7F}));
    EXPECT_EQ(Encoded(0x80), (std::vector<uint8_t>{0x81, 0x00}));
    EXPECT_EQ(Encoded(0x3FFF), (std::vector<uint8_t>{0xFF, 0x7F}));
    EXPECT_EQ(Encoded(0x4000), (std::vector<uint8_t>{0x81, 0x80, 0x00}));
    EXPECT_EQ(Encoded(0x0FFFFFFF), (std::vector<uint8_t>{0xFF, 0xFF, 0xFF, 0x7F}));
}

TEST(MidiWriter, SortsEventsReleasesBeforeRestrikingAndEndsTracksTogether) {
    assetgen::MidiWriter midi(96);
    const int conductor = midi.AddTrack("tempo");
    midi.Tempo(conductor, 0, 400000);
    const int part = midi.AddTrack("part");
    midi.Note(part, 96, 96, 3, 60, 100);  // given out of order on purpose
    midi.Note(part, 0, 96, 3, 60, 90);
    midi.Note(part, 0, 0, 3, 61, 90);  // zero length: dropped
    midi.SetEnd(384);
    const auto m = qvdata::MidiFile::Parse(midi.Encode());
    ASSERT_EQ(m.error, "");
    EXPECT_EQ(m.format, 1);
    EXPECT_EQ(m.trackCount, 2);
    EXPECT_EQ(m.division, 96);
    std::vector<std::pair<uint32_t, bool>> notes;  // tick, on
    for (const auto& e : m.tracks[1])
        if (e.IsNoteOn() || e.IsNoteOff()) notes.emplace_back(e.tick, e.IsNoteOn());
    const std::vector<std::pair<uint32_t, bool>> expected{{0, true}, {96, false}, {96, true}, {192, false}};
    EXPECT_EQ(notes, expected);
    EXPECT_EQ(m.tracks[0].back().tick, 384u);
    EXPECT_EQ(m.tracks[1].back().tick, 384u);
    EXPECT_DOUBLE_EQ(m.SecondsAt(384), 1.6);
}

TEST(BackgroundTune, IsAGeneralMidiTuneOfAtLeastAMinute) {
    const auto m = Tune();
    ASSERT_EQ(m.error, "");
    EXPECT_TRUE(m.format == 0 || m.format == 1);
    EXPECT_EQ(m.division & 0x8000, 0) << "timed in beats, not in SMPTE frames";
    bool tempo = false;
    std::set<uint8_t> melodicChannels;
    int drumHits = 0;
    for (const auto& track : m.tracks)
        for (const auto& e : track) {
            tempo |= e.status == 0xFF && e.metaType == 0x51;
            if (!e.IsNoteOn()) continue;
            if (e.Channel() == kDrumChannel) ++drumHits;
            else melodicChannels.insert(e.Channel());
        }
    EXPECT_TRUE(tempo);
    EXPECT_GE(m.SecondsAt(m.EndTick()), 60.0);
    EXPECT_GE(melodicChannels.size(), 3u);  // pad, arpeggio, bass at least
    EXPECT_GT(drumHits, 100);
}

TEST(BackgroundTune, LoopsCleanlyFromItsLastTickToItsFirst) {
    const auto m = Tune();
    ASSERT_EQ(m.error, "");
    const uint32_t end = m.EndTick();
    uint32_t firstNote = end, lastRelease = 0;
    std::map<std::pair<uint8_t, uint8_t>, int> sounding;
    for (const auto& track : m.tracks) {
        for (const auto& e : track) {
            if (e.IsNoteOn()) {
                firstNote = std::min(firstNote, e.tick);
                ++sounding[{e.Channel(), e.data[0]}];
            } else if (e.IsNoteOff()) {
                lastRelease = std::max(lastRelease, e.tick);
                --sounding[{e.Channel(), e.data[0]}];
            }
        }
        EXPECT_EQ(track.back().tick, end) << "every part runs to the same last tick";
    }
    for (const auto& [note, count] : sounding) EXPECT_EQ(count, 0) << "note " << int(note.second) << " hangs";
    EXPECT_EQ(firstNote, 0u) << "no silence before the first note";
    const uint32_t bar = 4u * m.division;
    EXPECT_EQ(end % bar, 0u) << "ends on a bar line";
    EXPECT_GE(lastRelease, end - bar / 4) << "no silent gap before the loop";
}

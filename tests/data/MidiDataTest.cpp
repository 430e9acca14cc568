// The MIDI writer, and the background tune as a sequencer will play it: at
// least a minute long and built to loop: it sounds from its first tick and
// every note ends by its last.
#include <gtest/gtest.h>

#include <map>

#include "GameDataFiles.h"
#include "MidiFile.h"
#include "MidiWriter.h"
#include "Tune.h"
#include "platform/MidiTune.h"

TEST(MidiWriter, EncodesVariableLengthQuantities) {
    const std::vector<std::pair<uint32_t, std::vector<uint8_t>>> cases{
        {0, {0x00}},         {0x7F, {0x7F}},           {0x80, {0x81, 0x00}},
        {0x3FFF, {0xFF, 0x7F}}, {0x4000, {0x81, 0x80, 0x00}}, {0x0FFFFFFF, {0xFF, 0xFF, 0xFF, 0x7F}}};
    for (const auto& [value, bytes] : cases) {
        std::vector<uint8_t> out;
        assetgen::MidiWriter::AppendVariableLength(out, value);
        EXPECT_EQ(out, bytes) << value;
    }
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
    std::vector<std::pair<uint32_t, bool>> notes;  // tick, on
    for (const auto& e : m.tracks[1])
        if (e.IsNoteOn() || e.IsNoteOff()) notes.emplace_back(e.tick, e.IsNoteOn());
    const std::vector<std::pair<uint32_t, bool>> expected{{0, true}, {96, false}, {96, true}, {192, false}};
    EXPECT_EQ(notes, expected);
    EXPECT_EQ(m.tracks[0].back().tick, 384u);
    EXPECT_EQ(m.tracks[1].back().tick, 384u);
    EXPECT_DOUBLE_EQ(m.SecondsAt(384), 1.6);
}

TEST(BackgroundTune, IsATuneOfAtLeastAMinuteThatLoopsCleanly) {
    const auto bytes = qvdata::ReadBytes(qvdata::GameDir() / "background.mid");
    const auto m = qvdata::MidiFile::Parse(bytes);
    ASSERT_EQ(m.error, "");
    // The game's sequencer reads it to its last bar line, and it is small.
    const auto tune = CMidiTune::Parse(bytes.data(), bytes.size());
    ASSERT_TRUE(tune);
    EXPECT_EQ(tune->EndMicros(), 76'800'000u) << "32 bars of 2.4 s";
    EXPECT_LT(bytes.size(), CMidiTune::MaxFileBytes / 10);
    EXPECT_TRUE(m.format == 0 || m.format == 1);
    EXPECT_EQ(m.division & 0x8000, 0) << "timed in beats, not in SMPTE frames";
    const uint32_t end = m.EndTick();
    uint32_t firstNote = end, lastRelease = 0;
    std::map<std::pair<uint8_t, uint8_t>, int> sounding;  // channel and key
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
    EXPECT_GE(m.SecondsAt(end), 60.0);
    for (const auto& [note, count] : sounding) EXPECT_EQ(count, 0) << "note " << int(note.second) << " hangs";
    EXPECT_EQ(firstNote, 0u) << "no silence before the first note";
    const uint32_t bar = 4u * m.division;
    EXPECT_EQ(end % bar, 0u) << "ends on a bar line";
    EXPECT_GE(lastRelease, end - bar / 4) << "no silent gap before the loop";
}

TEST(BackgroundTune, AnExcerptIsItsBarsAsATuneOfTheirOwn) {
    const auto whole = qvdata::MidiFile::Parse(assetgen::Tune::Compose());
    const auto part = qvdata::MidiFile::Parse(assetgen::Tune::Excerpt(20, 4));
    ASSERT_EQ(part.error, "");
    const uint32_t bar = 4u * whole.division, from = 20 * bar, to = 24 * bar;
    ASSERT_EQ(part.tracks.size(), whole.tracks.size());
    for (size_t t = 0; t < whole.tracks.size(); ++t) {
        // Each part's notes in the window, and its set-up, in the same order.
        std::vector<std::pair<uint32_t, std::vector<uint8_t>>> expected, actual;
        for (const auto& e : whole.tracks[t]) {
            const bool setup = e.status == 0xFF ? e.metaType != 0x2F : (e.status & 0xF0) >= 0xB0;
            const bool sounds = (e.IsNoteOn() && e.tick >= from && e.tick < to) || (e.IsNoteOff() && e.tick > from && e.tick <= to);
            if (setup || sounds) expected.emplace_back(setup ? 0 : e.tick - from, e.data);
        }
        for (const auto& e : part.tracks[t])
            if (e.status != 0xFF || e.metaType != 0x2F) actual.emplace_back(e.tick, e.data);
        EXPECT_EQ(actual, expected) << "track " << t;
        EXPECT_EQ(part.tracks[t].back().tick, to - from) << "every part ends on the excerpt's last bar line";
    }
}

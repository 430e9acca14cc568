// The MIDI writer, and the background tune as the game's sequencer reads it:
// at least a minute long and built to loop: it sounds from its first instant
// and every note ends by its last.
#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "GameDataFiles.h"
#include "MidiWriter.h"
#include "Tune.h"
#include "platform/MidiTune.h"

namespace {

CMidiTune Read(const std::vector<uint8_t>& bytes) {
    const auto tune = CMidiTune::Parse(bytes.data(), bytes.size());
    EXPECT_TRUE(tune) << "the game's sequencer refuses it";
    return tune ? *tune : CMidiTune{};
}

bool IsNoteOn(const MidiMessage& m) { return (m.status & 0xF0) == 0x90 && m.data2 > 0; }
bool IsNoteOff(const MidiMessage& m) { return (m.status & 0xF0) == 0x80 || ((m.status & 0xF0) == 0x90 && m.data2 == 0); }

constexpr uint64_t kBarMicros = 2'400'000;  // the tune's bar: four beats of 0.6 s

}  // namespace

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

TEST(MidiWriter, SortsEventsReleasesBeforeRestrikingAndEndsWhereItIsTold) {
    assetgen::MidiWriter midi(96);
    const int conductor = midi.AddTrack("tempo");
    midi.Tempo(conductor, 0, 400000);  // 96 ticks are 0.4 s
    const int part = midi.AddTrack("part");
    midi.Note(part, 96, 96, 3, 60, 100);  // given out of order on purpose
    midi.Note(part, 0, 96, 3, 60, 90);
    midi.Note(part, 0, 0, 3, 61, 90);  // zero length: dropped
    midi.SetEnd(384);
    const CMidiTune tune = Read(midi.Encode());
    std::vector<std::pair<uint64_t, bool>> notes;  // micros, on
    for (const MidiMessage& m : tune.Messages())
        if (IsNoteOn(m) || IsNoteOff(m)) notes.emplace_back(m.micros, IsNoteOn(m));
    const std::vector<std::pair<uint64_t, bool>> expected{{0, true}, {400000, false}, {400000, true}, {800000, false}};
    EXPECT_EQ(notes, expected);
    EXPECT_EQ(tune.EndMicros(), 1'600'000u);
}

TEST(BackgroundTune, IsATuneOfAtLeastAMinuteThatLoopsCleanly) {
    const auto bytes = qvdata::ReadBytes(qvdata::GameDir() / "background.mid");
    EXPECT_LT(bytes.size(), CMidiTune::MaxFileBytes / 10);
    const CMidiTune tune = Read(bytes);
    EXPECT_EQ(tune.EndMicros(), 32 * kBarMicros) << "32 bars, so the loop joins on a bar line";
    uint64_t firstNote = tune.EndMicros(), lastRelease = 0;
    std::map<std::pair<uint8_t, uint8_t>, int> sounding;  // channel and key
    for (const MidiMessage& m : tune.Messages()) {
        if (IsNoteOn(m)) {
            firstNote = std::min(firstNote, m.micros);
            ++sounding[{m.status & 0x0F, m.data1}];
        } else if (IsNoteOff(m)) {
            lastRelease = std::max(lastRelease, m.micros);
            --sounding[{m.status & 0x0F, m.data1}];
        }
    }
    for (const auto& [note, count] : sounding) EXPECT_EQ(count, 0) << "note " << int(note.second) << " hangs";
    EXPECT_EQ(firstNote, 0u) << "no silence before the first note";
    EXPECT_GE(lastRelease, tune.EndMicros() - kBarMicros / 4) << "no silent gap before the loop";
}

TEST(BackgroundTune, AnExcerptIsItsBarsAsATuneOfTheirOwn) {
    const CMidiTune whole = Read(assetgen::Tune::Compose()), part = Read(assetgen::Tune::Excerpt(20, 4));
    const uint64_t from = 20 * kBarMicros, to = 24 * kBarMicros;
    // Each channel's set-up, and its notes in the window, in the same order.
    using Message = std::tuple<uint64_t, uint8_t, uint8_t, uint8_t>;
    std::map<int, std::vector<Message>> expected, actual;
    for (const MidiMessage& m : whole.Messages()) {
        const bool setup = (m.status & 0xF0) >= 0xB0;
        const bool sounds = (IsNoteOn(m) && m.micros >= from && m.micros < to) || (IsNoteOff(m) && m.micros > from && m.micros <= to);
        if (setup || sounds) expected[m.status & 0x0F].emplace_back(setup ? 0 : m.micros - from, m.status, m.data1, m.data2);
    }
    for (const MidiMessage& m : part.Messages()) actual[m.status & 0x0F].emplace_back(m.micros, m.status, m.data1, m.data2);
    EXPECT_EQ(actual, expected);
    EXPECT_EQ(part.EndMicros(), to - from) << "it ends on the excerpt's last bar line";
}

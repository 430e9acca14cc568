#include "MidiWriter.h"

#include <algorithm>

namespace assetgen {

namespace {

constexpr uint16_t kFormatMultiTrack = 1;
constexpr uint8_t kMeta = 0xFF;
constexpr uint8_t kMetaTrackName = 0x03;
constexpr uint8_t kMetaEndOfTrack = 0x2F;
constexpr uint8_t kMetaTempo = 0x51;
constexpr uint8_t kMetaTimeSignature = 0x58;
constexpr uint8_t kNoteOff = 0x80;
constexpr uint8_t kNoteOn = 0x90;
constexpr uint8_t kControlChange = 0xB0;
constexpr uint8_t kProgramChange = 0xC0;
constexpr uint8_t kClocksPerClick = 24;
constexpr uint8_t kThirtySecondsPerQuarter = 8;

void Put16(std::vector<uint8_t>& out, uint16_t v) {
    out.push_back(static_cast<uint8_t>(v >> 8));
    out.push_back(static_cast<uint8_t>(v));
}

void Put32(std::vector<uint8_t>& out, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<uint8_t>(v >> shift));
}

void PutTag(std::vector<uint8_t>& out, const char* tag) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<uint8_t>(tag[i]));
}

uint8_t Data7(uint8_t v) { return v & 0x7F; }

}  // namespace

MidiWriter::MidiWriter(uint16_t ticks) : ticksPerQuarter(ticks) {}

int MidiWriter::AddTrack(const std::string& name) {
    tracks.emplace_back();
    const int index = static_cast<int>(tracks.size()) - 1;
    std::vector<uint8_t> bytes{kMeta, kMetaTrackName};
    AppendVariableLength(bytes, static_cast<uint32_t>(name.size()));
    bytes.insert(bytes.end(), name.begin(), name.end());
    Add(index, 0, Order::Meta, std::move(bytes));
    return index;
}

void MidiWriter::Tempo(int track, uint32_t tick, uint32_t micros) {
    if (!PlaceSetup(tick)) return;
    Add(track, tick, Order::Meta,
        {kMeta, kMetaTempo, 3, static_cast<uint8_t>(micros >> 16), static_cast<uint8_t>(micros >> 8),
         static_cast<uint8_t>(micros)});
}

void MidiWriter::TimeSignature(int track, uint32_t tick, uint8_t numerator, uint8_t denominatorPower) {
    if (!PlaceSetup(tick)) return;
    Add(track, tick, Order::Meta,
        {kMeta, kMetaTimeSignature, 4, numerator, denominatorPower, kClocksPerClick, kThirtySecondsPerQuarter});
}

void MidiWriter::ProgramChange(int track, uint32_t tick, uint8_t channel, uint8_t program) {
    if (!PlaceSetup(tick)) return;
    Add(track, tick, Order::Setup, {static_cast<uint8_t>(kProgramChange | (channel & 0x0F)), Data7(program)});
}

void MidiWriter::ControlChange(int track, uint32_t tick, uint8_t channel, uint8_t controller, uint8_t value) {
    if (!PlaceSetup(tick)) return;
    Add(track, tick, Order::Setup,
        {static_cast<uint8_t>(kControlChange | (channel & 0x0F)), Data7(controller), Data7(value)});
}

void MidiWriter::Note(int track, uint32_t tick, uint32_t length, uint8_t channel, uint8_t key, uint8_t velocity) {
    if (length == 0 || velocity == 0 || tick < windowFrom || tick >= windowTo) return;
    length = std::min(length, windowTo - tick);
    tick -= windowFrom;
    const uint8_t ch = channel & 0x0F;
    Add(track, tick, Order::NoteOn, {static_cast<uint8_t>(kNoteOn | ch), Data7(key), Data7(velocity)});
    Add(track, tick + length, Order::NoteOff, {static_cast<uint8_t>(kNoteOff | ch), Data7(key), 0});
}

void MidiWriter::SetEnd(uint32_t tick) { endTick = std::clamp(tick, windowFrom, windowTo) - windowFrom; }

void MidiWriter::SetWindow(uint32_t fromTick, uint32_t toTick) {
    windowFrom = fromTick;
    windowTo = toTick;
}

bool MidiWriter::PlaceSetup(uint32_t& tick) const {
    if (tick >= windowTo) return false;
    tick = tick < windowFrom ? 0 : tick - windowFrom;
    return true;
}

void MidiWriter::Add(int track, uint32_t tick, Order order, std::vector<uint8_t> bytes) {
    tracks.at(static_cast<size_t>(track)).events.push_back(Event{tick, order, nextSequence++, std::move(bytes)});
}

void MidiWriter::AppendVariableLength(std::vector<uint8_t>& out, uint32_t value) {
    // Seven bits a byte, most significant first; every byte but the last
    // has its top bit set. The format allows at most four bytes.
    value &= 0x0FFFFFFF;
    uint8_t groups[4];
    int count = 0;
    do {
        groups[count++] = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
    } while (value != 0);
    while (count > 1) out.push_back(static_cast<uint8_t>(groups[--count] | 0x80));
    out.push_back(groups[0]);
}

std::vector<uint8_t> MidiWriter::EncodeTrack(const Track& track) const {
    std::vector<const Event*> sorted;
    for (const Event& e : track.events) sorted.push_back(&e);
    std::sort(sorted.begin(), sorted.end(), [](const Event* a, const Event* b) {
        if (a->tick != b->tick) return a->tick < b->tick;
        if (a->order != b->order) return a->order < b->order;
        return a->sequence < b->sequence;
    });
    std::vector<uint8_t> body;
    uint32_t now = 0;
    for (const Event* e : sorted) {
        AppendVariableLength(body, e->tick - now);
        body.insert(body.end(), e->bytes.begin(), e->bytes.end());
        now = e->tick;
    }
    AppendVariableLength(body, std::max(endTick, now) - now);
    body.insert(body.end(), {kMeta, kMetaEndOfTrack, 0});
    return body;
}

std::vector<uint8_t> MidiWriter::Encode() const {
    std::vector<uint8_t> out;
    PutTag(out, "MThd");
    Put32(out, 6);
    Put16(out, kFormatMultiTrack);
    Put16(out, static_cast<uint16_t>(tracks.size()));
    Put16(out, ticksPerQuarter);
    for (const Track& track : tracks) {
        const std::vector<uint8_t> body = EncodeTrack(track);
        PutTag(out, "MTrk");
        Put32(out, static_cast<uint32_t>(body.size()));
        out.insert(out.end(), body.begin(), body.end());
    }
    return out;
}

}  // namespace assetgen

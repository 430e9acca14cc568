#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace assetgen {

// Builds a Standard MIDI File (format 1: one track per part, the first
// carrying tempo and metre). Events are given at absolute tick times in any
// order; Encode sorts them and writes delta times.
class MidiWriter {
public:
    explicit MidiWriter(uint16_t ticksPerQuarter);

    int AddTrack(const std::string& name);
    void Tempo(int track, uint32_t tick, uint32_t microsPerQuarter);
    void TimeSignature(int track, uint32_t tick, uint8_t numerator, uint8_t denominatorPower);
    void ProgramChange(int track, uint32_t tick, uint8_t channel, uint8_t program);
    void ControlChange(int track, uint32_t tick, uint8_t channel, uint8_t controller, uint8_t value);
    // A note from tick to tick + length. Zero-length notes are dropped.
    void Note(int track, uint32_t tick, uint32_t length, uint8_t channel, uint8_t key, uint8_t velocity);
    // Every track ends here (at least after its last event), so all parts
    // stop together and a looping player restarts on the beat.
    void SetEnd(uint32_t tick);
    // Keeps only what falls in [fromTick, toTick), timed from fromTick: notes
    // are cut at toTick, and set-up events from before the window sound at
    // its start. Set it before adding anything.
    void SetWindow(uint32_t fromTick, uint32_t toTick);

    uint16_t TicksPerQuarter() const { return ticksPerQuarter; }
    std::vector<uint8_t> Encode() const;

    static void AppendVariableLength(std::vector<uint8_t>& out, uint32_t value);

private:
    // At one tick, meta events come first, then note-offs (so a repeated
    // note is released before it sounds again), then set-up, then note-ons.
    enum class Order { Meta = 0, NoteOff = 1, Setup = 2, NoteOn = 3 };

    struct Event {
        uint32_t tick;
        Order order;
        uint32_t sequence;
        std::vector<uint8_t> bytes;
    };

    struct Track {
        std::vector<Event> events;
    };

    void Add(int track, uint32_t tick, Order order, std::vector<uint8_t> bytes);
    // Moves a set-up or meta event's tick into the window; false when it falls after it.
    bool PlaceSetup(uint32_t& tick) const;
    std::vector<uint8_t> EncodeTrack(const Track& track) const;

    uint16_t ticksPerQuarter;
    uint32_t endTick = 0;
    uint32_t windowFrom = 0;
    uint32_t windowTo = UINT32_MAX;
    uint32_t nextSequence = 0;
    std::vector<Track> tracks;
};

}  // namespace assetgen

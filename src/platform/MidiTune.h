#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

// One channel message of a tune (note on and off, controllers, programs,
// pressure, pitch bend) at its time from the start of the tune.
struct MidiMessage {
    std::uint64_t micros = 0;
    std::uint8_t status = 0; // 0x80 to 0xEF
    std::uint8_t data1 = 0;
    std::uint8_t data2 = 0; // 0 for the one-byte messages
};

// A Standard MIDI File of format 0 or 1, read into one list of channel
// messages in the order they sound, with every tick turned into time through
// the tempo map. The tune ends with its last event, whatever kind: the end of
// the longest track is where a loop joins its start.
class CMidiTune {
public:
    // A tune file larger than this is refused unread: the game's tune takes
    // about ten kilobytes.
    static constexpr std::size_t MaxFileBytes = 1 << 20;
    // And a tune that would play longer than an hour is refused as broken.
    static constexpr std::uint64_t MaxMicros = 3'600'000'000ull;

    // The tune in these bytes, or nothing when they are not a tune the
    // sequencer can play (not MIDI, format 2, malformed, silent and empty, too
    // large or too long).
    static std::optional<CMidiTune> Parse(const std::uint8_t* bytes, std::size_t size);

    const std::vector<MidiMessage>& Messages() const { return messages; }
    // The time of the tune's last event, where it ends.
    std::uint64_t EndMicros() const { return endMicros; }

private:
    std::vector<MidiMessage> messages;
    std::uint64_t endMicros = 0;
};

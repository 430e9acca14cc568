#pragma once
// Standard MIDI Files byte by byte, for tests that need a tune of a given shape.
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace qvtest::midi {

using Bytes = std::vector<std::uint8_t>;

inline Bytes Join(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

inline Bytes Chunk(const char* tag, const Bytes& body)
{
    const auto size = static_cast<std::uint32_t>(body.size());
    Bytes chunk(tag, tag + 4);
    for (int shift : {24, 16, 8, 0})
        chunk.push_back(static_cast<std::uint8_t>(size >> shift));
    chunk.insert(chunk.end(), body.begin(), body.end());
    return chunk;
}

inline Bytes Header(std::uint16_t format, std::uint16_t tracks, std::uint16_t division)
{
    return Chunk("MThd", {0, static_cast<std::uint8_t>(format), 0, static_cast<std::uint8_t>(tracks),
                          static_cast<std::uint8_t>(division >> 8), static_cast<std::uint8_t>(division)});
}

// A delta time in the file's variable-length form.
inline Bytes Delta(std::uint32_t ticks)
{
    Bytes out{static_cast<std::uint8_t>(ticks & 0x7F)};
    while (ticks >>= 7)
        out.insert(out.begin(), static_cast<std::uint8_t>(0x80 | (ticks & 0x7F)));
    return out;
}

// The end of a track, the given ticks after its last event.
inline Bytes EndOfTrack(std::uint32_t afterTicks = 0)
{
    return Join({Delta(afterTicks), {0xFF, 0x2F, 0x00}});
}

// A one-track file at the default tempo, 500 ticks a beat: a tick is a
// millisecond. The track ends endMs after its last event.
inline Bytes OneTrackTune(const Bytes& events, std::uint32_t endMs = 0)
{
    return Join({Header(0, 1, 500), Chunk("MTrk", Join({events, EndOfTrack(endMs)}))});
}

} // namespace qvtest::midi

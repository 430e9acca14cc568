#include "platform/MidiTune.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t DefaultMicrosPerQuarter = 500000; // 120 beats a minute until a tempo says otherwise
constexpr std::uint64_t MicrosPerSecond = 1'000'000;
constexpr std::uint64_t MaxTicks = 1ull << 40; // far beyond any tune, and safe to multiply by a tempo
constexpr std::uint8_t MetaEvent = 0xFF;
constexpr std::uint8_t MetaTempo = 0x51;
constexpr std::uint8_t MetaEndOfTrack = 0x2F;
constexpr std::uint8_t SysEx = 0xF0;
constexpr std::uint8_t SysExContinued = 0xF7;
constexpr std::uint8_t ProgramChange = 0xC0;
constexpr std::uint8_t ChannelPressure = 0xD0;

// Reads big-endian numbers and variable-length quantities, refusing to step
// past the end of its bytes.
class CByteReader {
public:
    CByteReader(const std::uint8_t* from, std::size_t size) : at(from), end(from + size) {}

    std::size_t Left() const { return static_cast<std::size_t>(end - at); }
    bool Byte(std::uint8_t& out)
    {
        if (at == end)
            return false;
        out = *at++;
        return true;
    }
    bool Skip(std::size_t count)
    {
        if (count > Left())
            return false;
        at += count;
        return true;
    }
    bool BigEndian(int bytes, std::uint32_t& out)
    {
        out = 0;
        for (std::uint8_t byte = 0; bytes-- > 0; out = (out << 8) | byte)
            if (!Byte(byte))
                return false;
        return true;
    }
    bool Tag(const char (&expected)[5])
    {
        if (Left() < 4 || std::memcmp(at, expected, 4) != 0)
            return false;
        at += 4;
        return true;
    }
    // Seven bits a byte, most significant first, at most four bytes.
    bool VariableLength(std::uint32_t& out)
    {
        out = 0;
        for (int i = 0; i < 4; ++i) {
            std::uint8_t byte = 0;
            if (!Byte(byte))
                return false;
            out = (out << 7) | (byte & 0x7F);
            if (!(byte & 0x80))
                return true;
        }
        return false;
    }
    CByteReader Take(std::size_t count)
    {
        CByteReader part(at, count);
        at += count;
        return part;
    }

private:
    const std::uint8_t* at;
    const std::uint8_t* end;
};

// An event of one track at its tick, before the tempo map gives it a time.
struct TrackEvent {
    enum class Kind { Channel, Tempo, Other };
    std::uint64_t tick = 0;
    Kind kind = Kind::Other;
    MidiMessage message;
    std::uint32_t microsPerQuarter = 0;
};

bool DataByte(CByteReader& in, std::uint8_t& out)
{
    return in.Byte(out) && out < 0x80;
}

std::size_t DataBytes(std::uint8_t status)
{
    const std::uint8_t kind = status & 0xF0;
    return kind == ProgramChange || kind == ChannelPressure ? 1 : 2;
}

// A meta event: a tempo change counts, the end of the track ends it, and
// every other kind only marks a time.
bool ReadMeta(CByteReader& in, TrackEvent& event, bool& trackEnds)
{
    std::uint8_t type = 0;
    std::uint32_t length = 0;
    if (!in.Byte(type) || !in.VariableLength(length))
        return false;
    trackEnds = type == MetaEndOfTrack;
    if (type == MetaTempo && length == 3) {
        event.kind = TrackEvent::Kind::Tempo;
        return in.BigEndian(3, event.microsPerQuarter);
    }
    return in.Skip(length);
}

// The events of one track, with running status; system-exclusive and meta
// events end a running status. Common and real-time system messages have no
// place in a file.
bool ReadTrack(CByteReader in, std::vector<TrackEvent>& out)
{
    std::uint64_t tick = 0;
    std::uint8_t running = 0;
    while (in.Left() > 0) {
        std::uint32_t delta = 0;
        std::uint8_t first = 0;
        if (!in.VariableLength(delta) || !in.Byte(first))
            return false;
        tick += delta;
        if (tick > MaxTicks)
            return false;
        TrackEvent event;
        event.tick = tick;
        if (first == MetaEvent) {
            bool trackEnds = false;
            if (!ReadMeta(in, event, trackEnds))
                return false;
            out.push_back(event);
            if (trackEnds)
                return true;
            running = 0;
            continue;
        }
        if (first == SysEx || first == SysExContinued) {
            std::uint32_t length = 0;
            if (!in.VariableLength(length) || !in.Skip(length))
                return false;
            out.push_back(event);
            running = 0;
            continue;
        }
        const bool runningOn = first < 0x80;
        const std::uint8_t status = runningOn ? running : first;
        if (status < 0x80 || status >= 0xF0)
            return false;
        running = status;
        MidiMessage& message = event.message;
        message.status = status;
        if (runningOn)
            message.data1 = first;
        else if (!DataByte(in, message.data1))
            return false;
        if (DataBytes(status) == 2 && !DataByte(in, message.data2))
            return false;
        event.kind = TrackEvent::Kind::Channel;
        out.push_back(event);
    }
    return true;
}

// Turns ticks into microseconds: by the tempo map when the division counts
// ticks a quarter note, or by the clock when it counts SMPTE frames.
class CTempoMap {
public:
    explicit CTempoMap(std::uint16_t division) : division(division) {}

    bool IsValid() const
    {
        if (!(division & 0x8000))
            return division != 0;
        return TicksPerSecondTimes1001() != 0;
    }
    void SetTempo(std::uint64_t tick, std::uint32_t microsPerQuarter)
    {
        baseMicros = MicrosAt(tick);
        baseTick = tick;
        tempo = microsPerQuarter;
    }
    // Past the longest tune allowed, any time will do: the tune is refused.
    std::uint64_t MicrosAt(std::uint64_t tick) const
    {
        using Wide = unsigned __int128;
        const Wide micros = (division & 0x8000) ? Wide(tick) * MicrosPerSecond * 1001 / TicksPerSecondTimes1001()
                                                : baseMicros + Wide(tick - baseTick) * tempo / division;
        return micros > CMidiTune::MaxMicros ? CMidiTune::MaxMicros + 1 : static_cast<std::uint64_t>(micros);
    }

private:
    // Frames a second (29 stands for 29.97) times ticks a frame, times 1001
    // so that the drop-frame rate is a whole number; 0 for an unknown rate.
    std::uint64_t TicksPerSecondTimes1001() const
    {
        const int framesPerSecond = -static_cast<std::int8_t>(division >> 8);
        const std::uint64_t ticksPerFrame = division & 0xFF;
        switch (framesPerSecond) {
        case 24:
        case 25:
        case 30: return 1001 * ticksPerFrame * static_cast<std::uint64_t>(framesPerSecond);
        case 29: return 30000 * ticksPerFrame;
        default: return 0;
        }
    }

    std::uint16_t division;
    std::uint64_t baseTick = 0;
    std::uint64_t baseMicros = 0;
    std::uint32_t tempo = DefaultMicrosPerQuarter;
};

} // namespace

std::optional<CMidiTune> CMidiTune::Parse(const std::uint8_t* bytes, std::size_t size)
{
    if (!bytes || size > MaxFileBytes)
        return std::nullopt;
    CByteReader in(bytes, size);
    std::uint32_t headerLength = 0, format = 0, trackCount = 0, division = 0;
    if (!in.Tag("MThd") || !in.BigEndian(4, headerLength) || headerLength < 6 || !in.BigEndian(2, format) ||
        !in.BigEndian(2, trackCount) || !in.BigEndian(2, division) || !in.Skip(headerLength - 6))
        return std::nullopt;
    CTempoMap tempoMap(static_cast<std::uint16_t>(division));
    if (format > 1 || trackCount == 0 || !tempoMap.IsValid())
        return std::nullopt;

    // Tracks in file order; chunks of other kinds are passed over.
    std::vector<TrackEvent> events;
    std::uint32_t tracksRead = 0;
    while (tracksRead < trackCount && in.Left() > 0) {
        const bool isTrack = in.Tag("MTrk");
        if (!isTrack && !in.Skip(4))
            return std::nullopt;
        std::uint32_t length = 0;
        if (!in.BigEndian(4, length) || length > in.Left())
            return std::nullopt;
        CByteReader chunk = in.Take(length);
        if (!isTrack)
            continue;
        if (!ReadTrack(chunk, events))
            return std::nullopt;
        ++tracksRead;
    }
    if (tracksRead == 0)
        return std::nullopt;

    // All tracks merged by tick; at one tick, earlier tracks and earlier
    // events go first, so a conductor track's tempo applies from its tick on.
    std::stable_sort(events.begin(), events.end(),
                     [](const TrackEvent& a, const TrackEvent& b) { return a.tick < b.tick; });
    CMidiTune tune;
    for (const TrackEvent& event : events) {
        const std::uint64_t micros = tempoMap.MicrosAt(event.tick);
        if (micros > MaxMicros)
            return std::nullopt;
        tune.endMicros = std::max(tune.endMicros, micros);
        if (event.kind == TrackEvent::Kind::Tempo)
            tempoMap.SetTempo(event.tick, event.microsPerQuarter);
        else if (event.kind == TrackEvent::Kind::Channel) {
            tune.messages.push_back(event.message);
            tune.messages.back().micros = micros;
        }
    }
    if (tune.endMicros == 0)
        return std::nullopt;
    return tune;
}

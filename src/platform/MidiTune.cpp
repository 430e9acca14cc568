#include "platform/MidiTune.h"

#include "core/ByteStream.h"

#include <algorithm>

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

struct TrackEvent {
    enum class Kind { Channel, Tempo, Other };
    std::uint64_t tick = 0;
    Kind kind = Kind::Other;
    MidiMessage message;
    std::uint32_t microsPerQuarter = 0;
};

bool DataByte(CByteReader& in, std::uint8_t& out)
{
    out = in.U8();
    return !in.Failed() && out < 0x80;
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
    const std::uint8_t type = in.U8();
    const std::uint32_t length = in.VariableLength();
    if (in.Failed())
        return false;
    trackEnds = type == MetaEndOfTrack;
    if (type == MetaTempo && length == 3) {
        event.kind = TrackEvent::Kind::Tempo;
        event.microsPerQuarter = static_cast<std::uint32_t>(in.Big(3));
        return !in.Failed();
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
        const std::uint32_t delta = in.VariableLength();
        const std::uint8_t first = in.U8();
        if (in.Failed())
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
            if (!in.Skip(in.VariableLength()))
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
    if (!in.Tag("MThd"))
        return std::nullopt;
    const std::uint64_t headerLength = in.Big(4);
    const std::uint64_t format = in.Big(2);
    const std::uint64_t trackCount = in.Big(2);
    const std::uint64_t division = in.Big(2);
    if (headerLength < 6 || !in.Skip(headerLength - 6))
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
        const std::uint64_t length = in.Big(4);
        if (in.Failed() || length > in.Left())
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

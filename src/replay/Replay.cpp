#include "replay/Replay.h"

#include "platform/FileBytes.h"
#include "platform/FileStore.h"
#include "platform/Types.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>

namespace {

constexpr char Magic[8] = {'Q', 'V', 'R', 'E', 'P', 'L', 'A', 'Y'};

// What follows the header: records, each led by one of these.
enum RecordTag : std::uint8_t {
    TagWholeFrame = 0x01, // a frame of a whole number of milliseconds, as the clock gives
    TagExactFrame = 0x02, // a frame of any other length, its double's bits
    TagInput = 0x10,
    TagEnd = 0xFF,
};

constexpr std::uint8_t OptionMusic = 1;
constexpr std::uint8_t OptionSound = 2;
constexpr std::uint8_t OptionStars = 4;
constexpr std::uint8_t OptionStats = 8;
constexpr std::uint8_t OptionBits = OptionMusic | OptionSound | OptionStars | OptionStats;

constexpr std::int32_t LastMenuScreen = 4;

// The messages a replay carries: keys and activation, nothing else.
bool IsRecordedMessage(std::uint32_t message)
{
    return message == WM_KEYDOWN || message == WM_KEYUP || message == WM_ACTIVATEAPP;
}

// A frame the clock measured lasts a whole number of milliseconds below 2^32.
bool IsWholeClockTime(double ms)
{
    return ms >= 0.0 && ms < 4294967296.0 && std::trunc(ms) == ms;
}

class CByteWriter {
public:
    void Bytes(const void* data, std::size_t size) { out.append(static_cast<const char*>(data), size); }
    void U8(std::uint8_t v) { out.push_back(static_cast<char>(v)); }
    void U16(std::uint16_t v) { Little(v, 2); }
    void U32(std::uint32_t v) { Little(v, 4); }
    void U64(std::uint64_t v) { Little(v, 8); }
    void Varint(std::uint32_t v)
    {
        while (v >= 0x80) {
            U8(static_cast<std::uint8_t>(v | 0x80));
            v >>= 7;
        }
        U8(static_cast<std::uint8_t>(v));
    }
    void Text(const std::string& text)
    {
        const std::size_t size = std::min(text.size(), CReplay::MaxTextBytes);
        U8(static_cast<std::uint8_t>(size));
        Bytes(text.data(), size);
    }
    std::string Take() { return std::move(out); }

private:
    void Little(std::uint64_t v, int bytes)
    {
        for (int i = 0; i < bytes; ++i)
            U8(static_cast<std::uint8_t>(v >> (8 * i)));
    }
    std::string out;
};

// Reads the file front to back; the first thing amiss stops it with a reason
// naming the byte where it was found.
class CByteReader {
public:
    explicit CByteReader(const std::string& bytes) : in(bytes) {}

    bool Failed() const { return !error.empty(); }
    const std::string& Error() const { return error; }
    bool AtEnd() const { return at == in.size(); }
    std::size_t Offset() const { return at; }

    void Fail(const std::string& reason)
    {
        if (error.empty())
            error = reason + " at byte " + std::to_string(at);
    }

    bool Bytes(void* data, std::size_t size)
    {
        if (Failed())
            return false;
        if (in.size() - at < size) {
            Fail("the file ends early");
            return false;
        }
        std::memcpy(data, in.data() + at, size);
        at += size;
        return true;
    }
    std::uint8_t U8() { return static_cast<std::uint8_t>(Little(1)); }
    std::uint16_t U16() { return static_cast<std::uint16_t>(Little(2)); }
    std::uint32_t U32() { return static_cast<std::uint32_t>(Little(4)); }
    std::uint64_t U64() { return Little(8); }
    std::uint32_t Varint()
    {
        std::uint64_t value = 0;
        for (int shift = 0; shift < 35; shift += 7) {
            const std::uint8_t byte = U8();
            if (Failed())
                return 0;
            value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
            if ((byte & 0x80) == 0) {
                if (value > 0xFFFFFFFFu)
                    break;
                // One way to write each number: a longer form is not the game's.
                if (byte == 0 && shift > 0) {
                    Fail("a number written longer than it needs");
                    return 0;
                }
                return static_cast<std::uint32_t>(value);
            }
        }
        Fail("a number does not fit in 32 bits");
        return 0;
    }
    std::string Text()
    {
        const std::size_t size = U8();
        std::string text(size, '\0');
        Bytes(text.data(), size);
        return text;
    }

private:
    std::uint64_t Little(int bytes)
    {
        std::uint8_t raw[8] = {};
        if (!Bytes(raw, static_cast<std::size_t>(bytes)))
            return 0;
        std::uint64_t v = 0;
        for (int i = 0; i < bytes; ++i)
            v |= static_cast<std::uint64_t>(raw[i]) << (8 * i);
        return v;
    }

    const std::string& in;
    std::size_t at = 0;
    std::string error;
};

std::uint8_t OptionFlags(const CReplay::Header& h)
{
    return static_cast<std::uint8_t>((h.musicOn ? OptionMusic : 0) | (h.soundOn ? OptionSound : 0) |
                                     (h.starsOn ? OptionStars : 0) | (h.statsOn ? OptionStats : 0));
}

void WriteHeader(CByteWriter& w, const CReplay::Header& h)
{
    w.Bytes(Magic, sizeof Magic);
    w.U16(CReplay::FormatVersion);
    w.Text(h.gameVersion);
    w.U32(h.randomState);
    w.U32(static_cast<std::uint32_t>(h.componentSerial));
    w.U32(static_cast<std::uint32_t>(h.startLevel));
    w.U8(OptionFlags(h));
    w.U8(static_cast<std::uint8_t>(h.menuScreen));
    w.U16(static_cast<std::uint16_t>(h.optionsCursor));
    for (std::size_t i = 0; i < CReplay::ScoreEntries; ++i) {
        const CReplay::HighScore entry = i < h.highScores.size() ? h.highScores[i] : CReplay::HighScore{};
        w.Text(entry.name);
        w.U32(static_cast<std::uint32_t>(entry.score));
    }
    w.Varint(static_cast<std::uint32_t>(std::min(h.stars.size(), CReplay::MaxStars)));
    for (std::size_t i = 0; i < h.stars.size() && i < CReplay::MaxStars; ++i) {
        const CReplay::Star& star = h.stars[i];
        w.U32(static_cast<std::uint32_t>(star.x));
        w.U32(static_cast<std::uint32_t>(star.y));
        w.U8(static_cast<std::uint8_t>(star.size));
        w.U32(static_cast<std::uint32_t>(star.brightness));
        w.U8(star.rising ? 1 : 0);
    }
}

bool ReadHeader(CByteReader& r, CReplay::Header& h)
{
    char magic[sizeof Magic] = {};
    if (!r.Bytes(magic, sizeof magic) || std::memcmp(magic, Magic, sizeof Magic) != 0) {
        r.Fail("not a Quelvarion replay");
        return false;
    }
    const std::uint16_t version = r.U16();
    if (!r.Failed() && version != CReplay::FormatVersion) {
        r.Fail("replay format " + std::to_string(version) + " is not one this game reads (it reads " +
               std::to_string(CReplay::FormatVersion) + ")");
        return false;
    }
    h.gameVersion = r.Text();
    h.randomState = r.U32();
    h.componentSerial = static_cast<std::int32_t>(r.U32());
    h.startLevel = static_cast<std::int32_t>(r.U32());
    const std::uint8_t options = r.U8();
    if (!r.Failed() && (options & ~OptionBits) != 0)
        r.Fail("unknown option flags");
    h.musicOn = options & OptionMusic;
    h.soundOn = options & OptionSound;
    h.starsOn = options & OptionStars;
    h.statsOn = options & OptionStats;
    h.menuScreen = r.U8();
    if (!r.Failed() && h.menuScreen > LastMenuScreen)
        r.Fail("no such menu screen");
    h.optionsCursor = static_cast<std::int16_t>(r.U16());
    if (!r.Failed() && h.optionsCursor < 0)
        r.Fail("no such option");
    h.highScores.assign(CReplay::ScoreEntries, {});
    for (CReplay::HighScore& entry : h.highScores) {
        entry.name = r.Text();
        entry.score = static_cast<std::int32_t>(r.U32());
    }
    const std::uint32_t stars = r.Varint();
    if (!r.Failed() && stars > CReplay::MaxStars)
        r.Fail("more stars than any sky");
    for (std::uint32_t i = 0; i < stars && !r.Failed(); ++i) {
        CReplay::Star star;
        star.x = static_cast<std::int32_t>(r.U32());
        star.y = static_cast<std::int32_t>(r.U32());
        star.size = r.U8();
        star.brightness = static_cast<std::int32_t>(r.U32());
        const std::uint8_t rising = r.U8();
        if (!r.Failed() && (rising > 1 || (star.size != 1 && star.size != 2)))
            r.Fail("a star no game makes");
        star.rising = rising == 1;
        h.stars.push_back(star);
    }
    return !r.Failed();
}

bool ReadFrame(CByteReader& r, std::uint8_t tag, CReplay& replay)
{
    double ms = 0.0;
    if (tag == TagWholeFrame) {
        ms = r.Varint();
    } else {
        ms = std::bit_cast<double>(r.U64());
        if (!r.Failed() && !(std::isfinite(ms) && ms >= 0.0))
            r.Fail("a frame's length is not a time");
        else if (!r.Failed() && IsWholeClockTime(ms))
            r.Fail("a whole-millisecond frame written in the long form");
    }
    const std::uint32_t hash = r.U32();
    if (r.Failed())
        return false;
    replay.AddFrame(ms, hash);
    return true;
}

bool ReadInput(CByteReader& r, CReplay& replay)
{
    const std::uint32_t message = r.Varint();
    const std::uint32_t wParam = r.Varint();
    if (!r.Failed() && !IsRecordedMessage(message))
        r.Fail("a message no replay carries");
    if (r.Failed())
        return false;
    replay.AddInput(message, wParam);
    return true;
}

bool ReadSummary(CByteReader& r, CReplay& replay)
{
    CReplay::Summary& s = replay.summary;
    s.level = static_cast<std::int16_t>(r.U16());
    s.score = static_cast<std::int32_t>(r.U32());
    s.frameCount = r.U32();
    s.worldHash = r.U64();
    if (r.Failed())
        return false;
    if (s.frameCount != replay.frames.size())
        r.Fail("the summary counts " + std::to_string(s.frameCount) + " frames but the file holds " +
               std::to_string(replay.frames.size()));
    else if (!r.AtEnd())
        r.Fail("bytes follow the end of the replay");
    return !r.Failed();
}

} // namespace

void CReplay::AddInput(std::uint32_t message, std::uint32_t wParam)
{
    inputs.push_back({message, wParam});
}

void CReplay::AddFrame(double elapsedMs, std::uint32_t stateHash)
{
    frames.push_back({elapsedMs, stateHash, static_cast<std::uint32_t>(inputs.size())});
}

std::size_t CReplay::FirstInputBefore(std::size_t frame) const
{
    return frame == 0 || frames.empty() ? 0 : frames[std::min(frame, frames.size()) - 1].inputEnd;
}

std::size_t CReplay::EndInputBefore(std::size_t frame) const
{
    return frame < frames.size() ? frames[frame].inputEnd : inputs.size();
}

std::string CReplay::Encode() const
{
    CByteWriter w;
    WriteHeader(w, header);
    for (std::size_t i = 0; i <= frames.size(); ++i) {
        for (std::size_t k = FirstInputBefore(i); k < EndInputBefore(i); ++k) {
            w.U8(TagInput);
            w.Varint(inputs[k].message);
            w.Varint(inputs[k].wParam);
        }
        if (i == frames.size())
            break;
        const Frame& f = frames[i];
        if (IsWholeClockTime(f.elapsedMs)) {
            w.U8(TagWholeFrame);
            w.Varint(static_cast<std::uint32_t>(f.elapsedMs));
        } else {
            w.U8(TagExactFrame);
            w.U64(std::bit_cast<std::uint64_t>(f.elapsedMs));
        }
        w.U32(f.stateHash);
    }
    w.U8(TagEnd);
    w.U16(static_cast<std::uint16_t>(summary.level));
    w.U32(static_cast<std::uint32_t>(summary.score));
    w.U32(static_cast<std::uint32_t>(frames.size()));
    w.U64(summary.worldHash);
    return w.Take();
}

bool CReplay::Decode(const std::string& bytes, CReplay& replay, std::string& error)
{
    replay = CReplay();
    if (bytes.size() > MaxFileBytes) {
        error = "the file is larger than any replay (" + std::to_string(bytes.size()) + " bytes)";
        return false;
    }
    CByteReader r(bytes);
    bool ended = false;
    if (ReadHeader(r, replay.header)) {
        while (!r.Failed() && !ended) {
            const std::uint8_t tag = r.U8();
            if (r.Failed())
                break;
            switch (tag) {
            case TagWholeFrame:
            case TagExactFrame: ReadFrame(r, tag, replay); break;
            case TagInput: ReadInput(r, replay); break;
            case TagEnd: ended = ReadSummary(r, replay); break;
            default: r.Fail("an unknown record"); break;
            }
        }
    }
    if (r.Failed()) {
        error = r.Error();
        replay = CReplay();
        return false;
    }
    return true;
}

bool CReplay::Load(const std::string& path, CReplay& replay, std::string& error)
{
    Result why = S_OK;
    const auto bytes = Platform::ReadFileAtMost(path, MaxFileBytes, &why);
    if (!bytes) {
        error = why == ERROR_FILE_NOT_FOUND || why == ERROR_READ_FAULT ? "cannot be opened" : Platform::FileProblemText(why);
        return false;
    }
    return Decode(std::string(bytes->begin(), bytes->end()), replay, error);
}

#include "replay/Replay.h"

#include "core/ByteStream.h"
#include "platform/FileBytes.h"
#include "platform/FileStore.h"
#include "platform/Types.h"

#include <algorithm>
#include <array>
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
    TagIdleRun = 0x03,    // idle frames in a row: how many, their whole length
    TagInput = 0x10,
    TagEnd = 0xFF,
};

constexpr std::uint8_t OptionMusic = 1;
constexpr std::uint8_t OptionSound = 2;
constexpr std::uint8_t OptionStars = 4;
constexpr std::uint8_t OptionStats = 8;
constexpr std::uint8_t OptionBits = OptionMusic | OptionSound | OptionStars | OptionStats;

constexpr std::int32_t LastMenuScreen = 4;
constexpr std::size_t VersionAt = sizeof Magic;
constexpr std::size_t ChecksumBytes = 4;

// CRC-32 (the polynomial of zip and PNG) over the file before its last four bytes.
std::uint32_t Crc32(const char* data, std::size_t size)
{
    static const auto table = [] {
        std::array<std::uint32_t, 256> t{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t c = i;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    std::uint32_t crc = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < size; ++i)
        crc = table[(crc ^ static_cast<std::uint8_t>(data[i])) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

std::uint32_t LittleU32At(const std::string& bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(LittleAt(reinterpret_cast<const std::uint8_t*>(bytes.data()) + at, 4));
}

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

// Texts are short: a byte of length, then the bytes.
void WriteText(CByteWriter& w, const std::string& text)
{
    const std::size_t size = std::min(text.size(), CReplay::MaxTextBytes);
    w.U8(static_cast<std::uint8_t>(size));
    w.Bytes(text.data(), size);
}

std::string ReadText(CByteReader& r)
{
    std::string text(r.U8(), '\0');
    r.Bytes(text.data(), text.size());
    return text;
}

std::uint8_t OptionFlags(const CReplay::Header& h)
{
    return static_cast<std::uint8_t>((h.musicOn ? OptionMusic : 0) | (h.soundOn ? OptionSound : 0) |
                                     (h.starsOn ? OptionStars : 0) | (h.statsOn ? OptionStats : 0));
}

void WriteHeader(CByteWriter& w, const CReplay::Header& h)
{
    w.Bytes(Magic, sizeof Magic);
    w.U16(CReplay::FormatVersion);
    WriteText(w, h.gameVersion);
    w.U16(h.rulesVersion);
    w.U32(h.randomState);
    w.U32(static_cast<std::uint32_t>(h.componentSerial));
    w.U32(static_cast<std::uint32_t>(h.startLevel));
    w.U8(OptionFlags(h));
    w.U8(static_cast<std::uint8_t>(h.menuScreen));
    w.U16(static_cast<std::uint16_t>(h.optionsCursor));
    for (std::size_t i = 0; i < CReplay::ScoreEntries; ++i) {
        const CReplay::HighScore entry = i < h.highScores.size() ? h.highScores[i] : CReplay::HighScore{};
        WriteText(w, entry.name);
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
    h.format = r.U16();
    if (!r.Failed() && (h.format < CReplay::FirstFormatVersion || h.format > CReplay::FormatVersion)) {
        r.Fail("replay format " + std::to_string(h.format) + " is not one this game reads (it reads " +
               std::to_string(CReplay::FirstFormatVersion) + " to " + std::to_string(CReplay::FormatVersion) + ")");
        return false;
    }
    h.gameVersion = ReadText(r);
    // Format 1 knew one set of rules only.
    h.rulesVersion = h.format >= 2 ? r.U16() : 1;
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
        entry.name = ReadText(r);
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

double ReadTime(CByteReader& r)
{
    const double ms = std::bit_cast<double>(r.U64());
    if (!r.Failed() && !(std::isfinite(ms) && ms >= 0.0))
        r.Fail("a frame's length is not a time");
    return ms;
}

bool ReadFrame(CByteReader& r, std::uint8_t tag, CReplay& replay)
{
    double ms = 0.0;
    if (tag == TagWholeFrame) {
        ms = r.Varint();
    } else {
        ms = ReadTime(r);
        if (!r.Failed() && IsWholeClockTime(ms))
            r.Fail("a whole-millisecond frame written in the long form");
    }
    const std::uint32_t hash = r.U32();
    if (r.Failed())
        return false;
    replay.AddFrame(ms, hash);
    return true;
}

bool ReadIdleRun(CByteReader& r, CReplay& replay)
{
    const std::uint32_t count = r.Varint();
    if (!r.Failed() && count < 2)
        r.Fail("a run of fewer than two frames");
    if (!r.Failed() && replay.FrameCount() > UINT32_MAX - count)
        r.Fail("more frames than a replay counts");
    const double ms = ReadTime(r);
    const std::uint32_t hash = r.U32();
    if (r.Failed())
        return false;
    replay.frames.push_back({ms, hash, static_cast<std::uint32_t>(replay.inputs.size()), count, true});
    replay.AddRunFrames(count);
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
    if (s.frameCount != replay.FrameCount())
        r.Fail("the summary counts " + std::to_string(s.frameCount) + " frames but the file holds " +
               std::to_string(replay.FrameCount()));
    else if (!r.AtEnd())
        r.Fail("bytes follow the end of the replay");
    return !r.Failed();
}

} // namespace

void CReplay::AddInput(std::uint32_t message, std::uint32_t wParam)
{
    inputs.push_back({message, wParam});
}

void CReplay::AddFrame(double elapsedMs, std::uint32_t stateHash, bool idle)
{
    ++frameCount;
    const auto inputEnd = static_cast<std::uint32_t>(inputs.size());
    if (idle && !frames.empty()) {
        Frame& last = frames.back();
        if (last.idle && last.stateHash == stateHash && last.inputEnd == inputEnd && last.count < UINT32_MAX) {
            last.elapsedMs += elapsedMs;
            ++last.count;
            return;
        }
    }
    frames.push_back({elapsedMs, stateHash, inputEnd, 1, idle});
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
        if (f.count > 1) {
            w.U8(TagIdleRun);
            w.Varint(f.count);
            w.U64(std::bit_cast<std::uint64_t>(f.elapsedMs));
        } else if (IsWholeClockTime(f.elapsedMs)) {
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
    std::uint32_t count = 0;
    for (const Frame& f : frames)
        count += f.count;
    w.U32(count);
    w.U64(summary.worldHash);
    std::string bytes = w.Take();
    const std::uint32_t crc = Crc32(bytes.data(), bytes.size());
    for (int i = 0; i < 4; ++i)
        bytes.push_back(static_cast<char>(crc >> (8 * i)));
    return bytes;
}

bool CReplay::Decode(const std::string& bytes, CReplay& replay, std::string& error)
{
    replay = CReplay();
    if (bytes.size() > MaxFileBytes) {
        error = "the file is larger than any replay (" + std::to_string(bytes.size()) + " bytes)";
        return false;
    }
    // From format 2 on the last four bytes are a checksum of all before them.
    const bool checked = bytes.size() >= VersionAt + 2 + ChecksumBytes &&
                         std::memcmp(bytes.data(), Magic, sizeof Magic) == 0 &&
                         LittleU32At(bytes, VersionAt) % 0x10000 >= 2;
    const std::size_t end = checked ? bytes.size() - ChecksumBytes : bytes.size();
    const bool intact = !checked || Crc32(bytes.data(), end) == LittleU32At(bytes, end);
    CByteReader r(bytes.data(), end); // the checksum that follows is read apart
    bool ended = false;
    if (ReadHeader(r, replay.header)) {
        while (!r.Failed() && !ended) {
            const std::uint8_t tag = r.U8();
            if (r.Failed())
                break;
            switch (tag) {
            case TagWholeFrame:
            case TagExactFrame: ReadFrame(r, tag, replay); break;
            case TagIdleRun:
                if (replay.header.format >= 2)
                    ReadIdleRun(r, replay);
                else
                    r.Fail("an unknown record");
                break;
            case TagInput: ReadInput(r, replay); break;
            case TagEnd: ended = ReadSummary(r, replay); break;
            default: r.Fail("an unknown record"); break;
            }
        }
    }
    if (r.Failed() || !intact) {
        // Where the reading stopped is the best guess of where the damage is.
        error = intact ? r.Error()
                       : "the file is damaged: " +
                             (r.Failed() ? r.Error() : "its checksum does not match at byte " + std::to_string(end));
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

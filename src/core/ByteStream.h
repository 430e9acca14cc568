#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

// Numbers in the game's files, byte by byte: little-endian in the replay, the
// wave and the bitmap files, big-endian in MIDI; counts of seven bits a byte,
// least significant first in the replay (varints), most significant first in
// MIDI (variable-length quantities).
class CByteWriter {
public:
    void Bytes(const void* data, std::size_t size) { out.append(static_cast<const char*>(data), size); }
    void U8(std::uint8_t v) { out.push_back(static_cast<char>(v)); }
    void Little(std::uint64_t v, int bytes);
    void U16(std::uint16_t v) { Little(v, 2); }
    void U32(std::uint32_t v) { Little(v, 4); }
    void U64(std::uint64_t v) { Little(v, 8); }
    void Varint(std::uint32_t v);
    const std::string& Data() const { return out; }
    std::string Take() { return std::move(out); }

private:
    std::string out;
};

// Reads front to back and never past the end. The first thing amiss stops it:
// every later read gives 0 and fails, and Error() names the byte where it was
// found.
class CByteReader {
public:
    CByteReader(const void* data, std::size_t size) : in(static_cast<const std::uint8_t*>(data)), size(size) {}

    bool Failed() const { return !error.empty(); }
    const std::string& Error() const { return error; }
    std::size_t Offset() const { return at; }
    std::size_t Left() const { return size - at; }
    bool AtEnd() const { return at == size; }
    void Fail(const std::string& reason);

    bool Bytes(void* data, std::size_t count);
    bool Skip(std::size_t count);
    // The next four bytes, taken only when they are the tag.
    bool Tag(const char (&expected)[5]);
    // The next count bytes, as a reader of their own; this one goes past them.
    CByteReader Take(std::size_t count);

    std::uint64_t Little(int bytes);
    std::uint64_t Big(int bytes);
    std::uint8_t U8() { return static_cast<std::uint8_t>(Little(1)); }
    std::uint16_t U16() { return static_cast<std::uint16_t>(Little(2)); }
    std::uint32_t U32() { return static_cast<std::uint32_t>(Little(4)); }
    std::uint64_t U64() { return Little(8); }
    // A replay's count: written the one shortest way, and below 2^32.
    std::uint32_t Varint();
    // A MIDI count: at most four bytes.
    std::uint32_t VariableLength();

private:
    const std::uint8_t* in;
    std::size_t size;
    std::size_t at = 0;
    std::string error;
};

// A little-endian number inside bytes already known to hold it, read or
// written in place.
std::uint64_t LittleAt(const std::uint8_t* bytes, int count);
void PutLittleAt(std::uint8_t* bytes, std::uint64_t v, int count);

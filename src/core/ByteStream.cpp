#include "core/ByteStream.h"

#include <cstring>

void CByteWriter::Little(std::uint64_t v, int bytes)
{
    std::uint8_t raw[8];
    PutLittleAt(raw, v, bytes);
    Bytes(raw, static_cast<std::size_t>(bytes));
}

void CByteWriter::Varint(std::uint32_t v)
{
    while (v >= 0x80) {
        U8(static_cast<std::uint8_t>(v | 0x80));
        v >>= 7;
    }
    U8(static_cast<std::uint8_t>(v));
}

void CByteReader::Fail(const std::string& reason)
{
    if (error.empty())
        error = reason + " at byte " + std::to_string(at);
}

bool CByteReader::Bytes(void* data, std::size_t count)
{
    if (Failed())
        return false;
    if (Left() < count) {
        Fail("the file ends early");
        return false;
    }
    if (count != 0)
        std::memcpy(data, in + at, count);
    at += count;
    return true;
}

bool CByteReader::Skip(std::size_t count)
{
    if (Failed() || Left() < count) {
        Fail("the file ends early");
        return false;
    }
    at += count;
    return true;
}

bool CByteReader::Tag(const char (&expected)[5])
{
    if (Failed() || Left() < 4 || std::memcmp(in + at, expected, 4) != 0)
        return false;
    at += 4;
    return true;
}

CByteReader CByteReader::Take(std::size_t count)
{
    const std::size_t from = at;
    if (!Skip(count))
        return CByteReader(in + at, 0);
    return CByteReader(in + from, count);
}

std::uint64_t CByteReader::Little(int bytes)
{
    std::uint8_t raw[8] = {};
    if (!Bytes(raw, static_cast<std::size_t>(bytes)))
        return 0;
    return LittleAt(raw, bytes);
}

std::uint64_t CByteReader::Big(int bytes)
{
    std::uint8_t raw[8] = {};
    if (!Bytes(raw, static_cast<std::size_t>(bytes)))
        return 0;
    std::uint64_t v = 0;
    for (int i = 0; i < bytes; ++i)
        v = (v << 8) | raw[i];
    return v;
}

std::uint32_t CByteReader::Varint()
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

std::uint32_t CByteReader::VariableLength()
{
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        const std::uint8_t byte = U8();
        if (Failed())
            return 0;
        value = (value << 7) | (byte & 0x7F);
        if (!(byte & 0x80))
            return value;
    }
    Fail("a number longer than four bytes");
    return 0;
}

std::uint64_t LittleAt(const std::uint8_t* bytes, int count)
{
    std::uint64_t v = 0;
    for (int i = 0; i < count; ++i)
        v |= static_cast<std::uint64_t>(bytes[i]) << (8 * i);
    return v;
}

void PutLittleAt(std::uint8_t* bytes, std::uint64_t v, int count)
{
    for (int i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(v >> (8 * i));
}

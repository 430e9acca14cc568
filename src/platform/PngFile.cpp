#include "platform/PngFile.h"

#include <zlib.h>

namespace {

constexpr char Signature[] = "\x89PNG\r\n\x1a\n";
constexpr std::uint8_t BitDepth = 8;
constexpr std::uint8_t TrueColour = 2;
constexpr std::uint8_t NoFilter = 0;
constexpr int BytesPerPixel = 3;

void PutBig(std::string& out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<char>(value >> shift));
}

void PutChunk(std::string& out, const char* type, const std::string& data)
{
    PutBig(out, static_cast<std::uint32_t>(data.size()));
    const std::string typed = type + data;
    out += typed;
    PutBig(out, static_cast<std::uint32_t>(
                    crc32(0, reinterpret_cast<const Bytef*>(typed.data()), static_cast<uInt>(typed.size()))));
}

} // namespace

namespace Platform {

std::string PngBytes(const std::vector<std::uint8_t>& rgb, int width, int height)
{
    if (width <= 0 || height <= 0 || rgb.size() != static_cast<std::size_t>(width) * height * BytesPerPixel)
        return "";
    // Each row starts with its filter; unfiltered rows packed at the fastest
    // setting cost the least time, and a picture of few colours still
    // comes out small.
    const std::size_t rowBytes = static_cast<std::size_t>(width) * BytesPerPixel;
    std::string raw;
    raw.reserve((rowBytes + 1) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        raw.push_back(static_cast<char>(NoFilter));
        raw.append(reinterpret_cast<const char*>(rgb.data()) + y * rowBytes, rowBytes);
    }
    uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
    std::string packed(packedSize, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &packedSize, reinterpret_cast<const Bytef*>(raw.data()),
                  static_cast<uLong>(raw.size()), Z_BEST_SPEED) != Z_OK)
        return "";
    packed.resize(packedSize);

    std::string header;
    PutBig(header, static_cast<std::uint32_t>(width));
    PutBig(header, static_cast<std::uint32_t>(height));
    header += {static_cast<char>(BitDepth), static_cast<char>(TrueColour), 0, 0, 0}; // deflate, filters, no interlace
    std::string file(Signature, sizeof Signature - 1);
    PutChunk(file, "IHDR", header);
    PutChunk(file, "IDAT", packed);
    PutChunk(file, "IEND", "");
    return file;
}

} // namespace Platform

#include "BmpWriter.h"

namespace assetgen {

namespace {

constexpr uint32_t kFileHeaderSize = 14;
constexpr uint32_t kInfoHeaderSize = 40;
constexpr int32_t kPixelsPerMetre = 2835;  // 72 dots per inch

void Put16(std::vector<uint8_t>& out, uint16_t v) {
    out.push_back(static_cast<uint8_t>(v));
    out.push_back(static_cast<uint8_t>(v >> 8));
}

void Put32(std::vector<uint8_t>& out, uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<uint8_t>(v >> shift));
}

uint32_t RowBytes(int width, int bitsPerPixel) {
    return ((static_cast<uint32_t>(width) * bitsPerPixel + 31) / 32) * 4;
}

void PutHeaders(std::vector<uint8_t>& out, int width, int height, int bitsPerPixel, uint32_t colours) {
    const uint32_t pixelOffset = kFileHeaderSize + kInfoHeaderSize + colours * 4;
    const uint32_t imageSize = RowBytes(width, bitsPerPixel) * height;
    out.push_back('B');
    out.push_back('M');
    Put32(out, pixelOffset + imageSize);
    Put32(out, 0);
    Put32(out, pixelOffset);
    Put32(out, kInfoHeaderSize);
    Put32(out, static_cast<uint32_t>(width));
    Put32(out, static_cast<uint32_t>(height));  // positive: bottom-up rows
    Put16(out, 1);
    Put16(out, static_cast<uint16_t>(bitsPerPixel));
    Put32(out, 0);  // BI_RGB, no compression
    Put32(out, imageSize);
    Put32(out, kPixelsPerMetre);
    Put32(out, kPixelsPerMetre);
    Put32(out, colours);
    Put32(out, 0);
}

void PadRow(std::vector<uint8_t>& out, size_t rowStart, uint32_t rowBytes) {
    while (out.size() - rowStart < rowBytes) out.push_back(0);
}

}  // namespace

std::vector<uint8_t> BmpWriter::Encode24(const Image& image) {
    std::vector<uint8_t> out;
    const uint32_t rowBytes = RowBytes(image.Width(), 24);
    out.reserve(kFileHeaderSize + kInfoHeaderSize + rowBytes * image.Height());
    PutHeaders(out, image.Width(), image.Height(), 24, 0);
    for (int y = image.Height() - 1; y >= 0; --y) {
        const size_t rowStart = out.size();
        for (int x = 0; x < image.Width(); ++x) {
            const Rgb c = image.At(x, y);
            out.push_back(c.b);
            out.push_back(c.g);
            out.push_back(c.r);
        }
        PadRow(out, rowStart, rowBytes);
    }
    return out;
}

std::vector<uint8_t> BmpWriter::Encode8(int width, int height, const std::vector<uint8_t>& indices,
                                        const Palette& palette) {
    std::vector<uint8_t> out;
    PutHeaders(out, width, height, 8, static_cast<uint32_t>(palette.size()));
    for (const Rgb& c : palette) {
        out.push_back(c.b);
        out.push_back(c.g);
        out.push_back(c.r);
        out.push_back(0);
    }
    const uint32_t rowBytes = RowBytes(width, 8);
    for (int y = height - 1; y >= 0; --y) {
        const size_t rowStart = out.size();
        for (int x = 0; x < width; ++x) out.push_back(indices[static_cast<size_t>(y) * width + x]);
        PadRow(out, rowStart, rowBytes);
    }
    return out;
}

}  // namespace assetgen

#include "platform/PictureScaler.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace {

constexpr std::uint32_t FullWeight = 256;
constexpr std::uint32_t RedBlue = 0x00FF00FF;
constexpr std::uint32_t GreenAlpha = 0xFF00FF00;
constexpr int SmallGap = 96; // output pixels

// p weighted by (256 - w) and q by w, each 8-bit channel apart.
inline std::uint32_t Blend(std::uint32_t p, std::uint32_t q, std::uint32_t w)
{
    if (p == q)
        return p; // the most common case by far: black beside black
    const std::uint32_t v = FullWeight - w;
    const std::uint32_t rb = (((p & RedBlue) * v + (q & RedBlue) * w) >> 8) & RedBlue;
    const std::uint32_t ga = ((((p & GreenAlpha) >> 8) * v + ((q & GreenAlpha) >> 8) * w)) & GreenAlpha;
    return rb | ga;
}

const std::uint16_t* Row(const std::uint16_t* picture, int pitch, int y)
{
    return reinterpret_cast<const std::uint16_t*>(reinterpret_cast<const std::uint8_t*>(picture) +
                                                  static_cast<std::ptrdiff_t>(y) * pitch);
}

std::uint32_t* Row(std::uint32_t* output, int pitch, int y)
{
    return reinterpret_cast<std::uint32_t*>(reinterpret_cast<std::uint8_t*>(output) +
                                            static_cast<std::ptrdiff_t>(y) * pitch);
}

// Whether a tile's stretch of two rows is the same: a whole tile compared in
// two 8-byte words, with no call for every tile of a row that changed.
bool SameStretch(const std::uint16_t* a, const std::uint16_t* b, int count)
{
    if (count != CPictureScaler::TileWidth)
        return std::memcmp(a, b, sizeof(std::uint16_t) * static_cast<std::size_t>(count)) == 0;
    std::uint64_t x[2], y[2];
    static_assert(sizeof x == sizeof(std::uint16_t) * CPictureScaler::TileWidth);
    std::memcpy(x, a, sizeof x);
    std::memcpy(y, b, sizeof y);
    return ((x[0] ^ y[0]) | (x[1] ^ y[1])) == 0;
}

using TileMask = CPictureScaler::TileMask;
constexpr int MaskBits = CPictureScaler::MaskBits;

int TrailingZeros(TileMask mask)
{
    const auto low = static_cast<std::uint64_t>(mask);
    return low ? std::countr_zero(low) : 64 + std::countr_zero(static_cast<std::uint64_t>(mask >> 64));
}

} // namespace

std::vector<CPictureScaler::Tap> CPictureScaler::Taps(int pictureSize, int outputSize, int prescale)
{
    // Positions are taken in the picture enlarged `prescale` times pixel for
    // pixel; a blend between two enlarged pixels of one picture pixel is no
    // blend at all, which is what keeps the sharp mode sharp.
    const int enlarged = pictureSize * prescale;
    std::vector<Tap> taps(static_cast<std::size_t>(outputSize));
    for (int i = 0; i < outputSize; ++i) {
        const double at = std::clamp((i + 0.5) * enlarged / outputSize - 0.5, 0.0, enlarged - 1.0);
        const int low = static_cast<int>(at);
        const int high = std::min(low + 1, enlarged - 1);
        Tap& tap = taps[static_cast<std::size_t>(i)];
        tap.first = low / prescale;
        tap.second = high / prescale;
        tap.weight = tap.first == tap.second ? 0 : static_cast<std::uint32_t>(std::lround((at - low) * FullWeight));
        if (tap.weight == FullWeight)
            tap = {tap.second, tap.second, 0};
        else if (tap.weight == 0)
            tap.second = tap.first;
    }
    return taps;
}

void CPictureScaler::Configure(const PictureFit& newFit, int newPictureWidth, int newPictureHeight,
                               int newOutputWidth, int newOutputHeight, std::vector<std::uint32_t> newColours)
{
    fit = newFit;
    pictureWidth = std::min(newPictureWidth, MaxPictureWidth);
    pictureHeight = newPictureHeight;
    outputWidth = newOutputWidth;
    outputHeight = newOutputHeight;
    colours = std::move(newColours);
    colours.resize(1u << 16);
    across = Taps(pictureWidth, fit.width, fit.prescale);
    down = Taps(pictureHeight, fit.height, fit.prescale);
    const int tilesAcross = (pictureWidth + TileWidth - 1) / TileWidth;
    tileFirstColumn.assign(static_cast<std::size_t>(tilesAcross), fit.width);
    tileLastColumn.assign(static_cast<std::size_t>(tilesAcross), -1);
    for (int i = 0; i < fit.width; ++i)
        for (int source : {across[i].first, across[i].second}) {
            const auto tile = static_cast<std::size_t>(source / TileWidth);
            tileFirstColumn[tile] = std::min(tileFirstColumn[tile], i);
            tileLastColumn[tile] = std::max(tileLastColumn[tile], i);
        }
    previous.assign(static_cast<std::size_t>(pictureWidth) * pictureHeight, 0);
    changed.assign(static_cast<std::size_t>((pictureHeight + TileHeight - 1) / TileHeight), 0);
    whole = true;
}

void CPictureScaler::FindChangedTiles(const std::uint16_t* picture, int picturePitch)
{
    // A row is compared in stretches of a few tiles, each at the speed of
    // memcmp, and only a stretch that differs is looked at tile by tile and
    // kept: a changed row mostly holds a star or two.
    constexpr int StretchWidth = 16 * TileWidth;
    std::fill(changed.begin(), changed.end(), 0);
    for (int y = 0; y < pictureHeight; ++y) {
        const std::uint16_t* now = Row(picture, picturePitch, y);
        std::uint16_t* before = previous.data() + static_cast<std::ptrdiff_t>(y) * pictureWidth;
        TileMask& mask = changed[static_cast<std::size_t>(y / TileHeight)];
        for (int start = 0; start < pictureWidth; start += StretchWidth) {
            const auto bytes = sizeof(std::uint16_t) * static_cast<std::size_t>(std::min(StretchWidth, pictureWidth - start));
            if (std::memcmp(now + start, before + start, bytes) == 0)
                continue;
            const int end = std::min(start + StretchWidth, pictureWidth);
            for (int x = start; x < end; x += TileWidth)
                if (!SameStretch(now + x, before + x, std::min(TileWidth, end - x)))
                    mask |= TileMask{1} << (x / TileWidth);
            std::memcpy(before + start, now + start, bytes);
        }
    }
}

void CPictureScaler::DrawAll(std::uint32_t* output, int outputPitch)
{
    for (int y = 0; y < outputHeight; ++y)
        std::fill_n(Row(output, outputPitch, y), outputWidth, 0u);
    const auto tiles = tileFirstColumn.size();
    std::fill(changed.begin(), changed.end(), tiles >= MaskBits ? ~TileMask{0} : (TileMask{1} << tiles) - 1);
}

TileMask CPictureScaler::RowMask(int row) const
{
    const Tap& tap = down[static_cast<std::size_t>(row)];
    return changed[static_cast<std::size_t>(tap.first / TileHeight)] |
           changed[static_cast<std::size_t>(tap.second / TileHeight)];
}

std::pair<int, int> CPictureScaler::Columns(int firstTile, int lastTile) const
{
    int first = fit.width, last = -1;
    for (int t = firstTile; t <= lastTile; ++t) {
        first = std::min(first, tileFirstColumn[static_cast<std::size_t>(t)]);
        last = std::max(last, tileLastColumn[static_cast<std::size_t>(t)]);
    }
    return {first, last + 1};
}

// Calls use(first, last) for each run of set bits in mask.
template <typename Use>
void ForEachRun(TileMask mask, Use use)
{
    while (mask) {
        const int first = TrailingZeros(mask);
        const int end = first + TrailingZeros(~(mask >> first)); // one past the run
        use(first, end - 1);
        mask = end >= MaskBits ? 0 : mask & ~(~TileMask{0} >> (MaskBits - end));
    }
}

void CPictureScaler::Widen(WideRow& row, TileMask tiles, const std::uint16_t* pictureRow) const
{
    const std::uint32_t* colour = colours.data();
    ForEachRun(tiles, [&](int firstTile, int lastTile) {
        const auto [from, to] = Columns(firstTile, lastTile);
        for (int i = from; i < to; ++i) {
            const Tap& h = across[static_cast<std::size_t>(i)];
            const std::uint32_t left = colour[pictureRow[h.first]];
            row.pixels[static_cast<std::size_t>(i)] = h.weight ? Blend(left, colour[pictureRow[h.second]], h.weight) : left;
        }
    });
    row.done |= tiles;
}

const std::uint32_t* CPictureScaler::Widened(int source, int other, TileMask mask, const std::uint16_t* picture,
                                             int picturePitch)
{
    WideRow* row = wide[0].source == source ? &wide[0] : wide[1].source == source ? &wide[1] : nullptr;
    if (!row) {
        row = wide[0].source == other ? &wide[1] : &wide[0]; // keep the row the other tap needs
        row->source = source;
        row->done = 0;
        row->pixels.resize(static_cast<std::size_t>(fit.width));
    }
    if (const TileMask missing = mask & ~row->done)
        Widen(*row, missing, Row(picture, picturePitch, source));
    return row->pixels.data();
}

namespace {

// Each byte of top weighted by (256 - w) and of bottom by w, sixteen bytes
// at a time in the vector registers any of our processors has.
void BlendRows(const std::uint32_t* top, const std::uint32_t* bottom, std::uint32_t w, std::uint32_t* out, int count)
{
    using Bytes = std::uint8_t __attribute__((vector_size(16)));
    using Words = std::uint16_t __attribute__((vector_size(32)));
    const auto* t = reinterpret_cast<const std::uint8_t*>(top);
    const auto* b = reinterpret_cast<const std::uint8_t*>(bottom);
    auto* o = reinterpret_cast<std::uint8_t*>(out);
    const auto down = static_cast<std::uint16_t>(w), up = static_cast<std::uint16_t>(FullWeight - w);
    const int bytes = 4 * count;
    int k = 0;
    for (; k + 16 <= bytes; k += 16) {
        Bytes upper, lower;
        std::memcpy(&upper, t + k, sizeof upper);
        std::memcpy(&lower, b + k, sizeof lower);
        const Words mixed = (__builtin_convertvector(upper, Words) * up + __builtin_convertvector(lower, Words) * down) >> 8;
        const Bytes result = __builtin_convertvector(mixed, Bytes);
        std::memcpy(o + k, &result, sizeof result);
    }
    for (; k < bytes; ++k)
        o[k] = static_cast<std::uint8_t>(static_cast<std::uint16_t>(t[k] * up + b[k] * down) >> 8);
}

} // namespace

const std::vector<CPictureScaler::Rect>& CPictureScaler::Scale(const std::uint16_t* picture, int picturePitch,
                                                                std::uint32_t* output, int outputPitch)
{
    drawn.clear();
    if (fit.width <= 0 || fit.height <= 0 || !picture || !output)
        return drawn;
    FindChangedTiles(picture, picturePitch);
    const bool everything = whole;
    if (whole)
        DrawAll(output, outputPitch);
    whole = false;
    wide[0].source = wide[1].source = -1;

    // Rows drawn alike make one rectangle for each stretch of columns; a
    // short gap between stretches is sent along rather than split on, as
    // every rectangle costs the display server a request of its own.
    std::vector<Rect> open, spans;
    auto close = [&] {
        for (const Rect& r : open)
            drawn.push_back({fit.x + r.x, fit.y + r.y, r.width, r.height});
        open.clear();
    };
    for (int row = 0; row < fit.height; ++row) {
        const TileMask mask = RowMask(row);
        spans.clear();
        if (mask) {
            const Tap& v = down[static_cast<std::size_t>(row)];
            const std::uint32_t* top = Widened(v.first, v.second, mask, picture, picturePitch);
            const std::uint32_t* bottom = v.weight ? Widened(v.second, v.first, mask, picture, picturePitch) : top;
            std::uint32_t* out = Row(output, outputPitch, fit.y + row) + fit.x;
            ForEachRun(mask, [&](int firstTile, int lastTile) {
                const auto [from, to] = Columns(firstTile, lastTile);
                if (v.weight)
                    BlendRows(top + from, bottom + from, v.weight, out + from, to - from);
                else
                    std::memcpy(out + from, top + from, sizeof(std::uint32_t) * static_cast<std::size_t>(to - from));
                if (!spans.empty() && from - (spans.back().x + spans.back().width) < SmallGap)
                    spans.back().width = to - spans.back().x;
                else
                    spans.push_back({from, row, to - from, 1});
            });
        }
        const bool alike = spans.size() == open.size() &&
                           std::equal(spans.begin(), spans.end(), open.begin(), [](const Rect& a, const Rect& b) {
                               return a.x == b.x && a.width == b.width;
                           });
        if (alike) {
            for (Rect& r : open)
                ++r.height;
        } else {
            close();
            open = spans;
        }
    }
    close();
    if (everything)
        drawn.assign(1, {0, 0, outputWidth, outputHeight});
    return drawn;
}

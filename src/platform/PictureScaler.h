#pragma once
#include "platform/Scaling.h"

#include <cstdint>
#include <utility>
#include <vector>

// Scales the game's 16-bit picture into a 32-bit output, such as a window's
// own memory, without a GPU. Only what changed since the last picture is
// scaled again: the picture is compared with the last one in tiles, and the
// output rectangles that depend on a changed tile are redrawn and reported,
// so that only they need to reach the screen. Most of a frame in flight is
// unchanged black space, which makes a large screen cost little more than a
// small one.
class CPictureScaler {
public:
    struct Rect {
        int x, y, width, height;
        bool operator==(const Rect&) const = default;
    };
    // Small tiles: a twinkling star changes little more than its own pixels'
    // worth. A tile is a stretch of a single row, so a change is scaled again
    // only in the output rows that row reaches: at 3840x2160, smooth, tiles 8
    // rows high cost a quarter of a core, 1 row high an eighth. Tiles 8 pixels
    // wide rather than 16 scale a star's row again over half the width.
    static constexpr int TileWidth = 8;
    static constexpr int TileHeight = 1;
    using TileMask = unsigned __int128; // one bit a tile across
    static constexpr int MaskBits = 8 * sizeof(TileMask);
    static constexpr int MaxPictureWidth = MaskBits * TileWidth;

    // A picture of pictureWidth x pictureHeight, fitted into an output of
    // outputWidth x outputHeight as fit says; colours maps each 16-bit
    // pixel value to the output's. The next Scale draws everything.
    void Configure(const PictureFit& fit, int pictureWidth, int pictureHeight, int outputWidth, int outputHeight,
                   std::vector<std::uint32_t> colours);
    // The next Scale draws the whole output, black bars too.
    void Invalidate() { whole = true; }

    // Draws what changed into output (pitches in bytes) and returns the
    // output rectangles drawn.
    const std::vector<Rect>& Scale(const std::uint16_t* picture, int picturePitch, std::uint32_t* output,
                                   int outputPitch);

private:
    // One output pixel's two nearest picture pixels along an axis, and the
    // second's weight out of 256.
    struct Tap {
        int first;
        int second;
        std::uint32_t weight;
        bool operator==(const Tap&) const = default;
    };
    static std::vector<Tap> Taps(int pictureSize, int outputSize, int prescale);

    void FindChangedTiles(const std::uint16_t* picture, int picturePitch);
    void DrawAll(std::uint32_t* output, int outputPitch);
    // A picture row scaled across, kept while the output rows below need it.
    struct WideRow {
        int source = -1;
        TileMask done = 0; // the tiles scaled across so far this picture
        std::vector<std::uint32_t> pixels;
    };
    const std::uint32_t* Widened(int source, int other, TileMask mask, const std::uint16_t* picture,
                                 int picturePitch);
    void Widen(WideRow& row, TileMask tiles, const std::uint16_t* pictureRow) const;
    TileMask RowMask(int row) const;
    // The output columns of a run of tiles, first and one past the last.
    std::pair<int, int> Columns(int firstTile, int lastTile) const;

    PictureFit fit;
    int pictureWidth = 0;
    int pictureHeight = 0;
    int outputWidth = 0;
    int outputHeight = 0;
    std::vector<std::uint32_t> colours;
    std::vector<Tap> across;
    std::vector<Tap> down;
    std::vector<int> tileFirstColumn; // per tile across: the first and last output column it reaches
    std::vector<int> tileLastColumn;
    std::vector<std::uint16_t> previous;
    std::vector<TileMask> changed; // per row of tiles: a bit for each tile that changed
    WideRow wide[2];
    std::vector<Rect> drawn;
    bool whole = true;
};

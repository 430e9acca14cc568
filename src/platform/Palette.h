#pragma once
#include "platform/DrawTypes.h"

#include <array>
#include <memory>

// A 256-entry palette. The game makes one and attaches it to the screen; in a
// 16-bit mode it changes no colour, but it is kept for whoever asks.
class CPalette {
public:
    static constexpr int Size = 256;
    using Entries = std::array<PALETTEENTRY, Size>;

    explicit CPalette(const Entries& initial) : entries(initial) {}
    const Entries& GetEntries() const { return entries; }

private:
    Entries entries;
};

using PalettePtr = std::shared_ptr<CPalette>;

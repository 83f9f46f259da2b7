#include "image/BaseImage.h"

#include "spool/Guarded.h"

#include <algorithm>

namespace nadrel {

int32_t BaseImage::BuildPalette(bool fromColourTable) {
    return Guarded([=, this] { return MakePalette(fromColourTable); });
}

int32_t BaseImage::MakePalette(bool fromColourTable) {
    NewPalette();
    if (!fromColourTable)
        return BuildColourCube();
    for (size_t i = 0; i < colourCount; ++i) {
        const RGBQUAD &entry = colourTable[i];
        SetEntry(i, entry.rgbRed, entry.rgbGreen, entry.rgbBlue);
    }
    return palette->CreatePalette(*logicalPalette) ? 1 : 0;
}

void BaseImage::NewPalette() {
    palette.reset();
    logicalPalette.reset();
    logicalPalette = std::make_unique<LOGPALETTE>(colourCount);
    palette = std::make_unique<CPalette>();
}

// Writes the palette's entry and the colour table's; the latter keeps its reserved byte.
void BaseImage::SetEntry(size_t index, uint8_t red, uint8_t green, uint8_t blue) {
    platform::PaletteEntry &entry = logicalPalette->palPalEntry[index];
    entry.red = red;
    entry.green = green;
    entry.blue = blue;
    RGBQUAD &colour = colourTable[index];
    colour.rgbRed = red;
    colour.rgbGreen = green;
    colour.rgbBlue = blue;
}

// Six steps of each channel. An image of fewer colours gets one entry more than it has, and no palette of the
// system.
int32_t BaseImage::BuildColourCube() {
    constexpr int steps = 6;
    constexpr int levelStep = 51;
    for (int i = 0; i < steps * steps * steps; ++i) {
        const auto level = [](int step) { return static_cast<uint8_t>(step % steps * levelStep); };
        SetEntry(static_cast<size_t>(i), level(i / (steps * steps)), level(i / steps), level(i));
        if (static_cast<uint32_t>(i) >= colourCount)
            return 1;
    }
    return palette->CreatePalette(*logicalPalette) ? 1 : 0;
}

int32_t BaseImage::FindColourIndex(COLORREF colour) const {
    if (logicalPalette == nullptr)
        return -1;
    const auto entries = logicalPalette->Counted();
    const auto found = std::find_if(entries.begin(), entries.end(), [=](const platform::PaletteEntry &entry) {
        return (entry.red | uint32_t{entry.green} << 8 | uint32_t{entry.blue} << 16) == (colour & 0xFFFFFF);
    });
    return found == entries.end() ? -1 : static_cast<int32_t>(found - entries.begin());
}

} // namespace nadrel

#pragma once

#include "platform/Display.h"

#include <string>
#include <vector>

// A display of tests: it records what is asked of it, and may be one with a palette of its own. Palettes,
// contexts and bitmaps are named by the order they are made in: palette 1, context 1.
namespace scripted {

struct Display {
    std::vector<std::string> calls;
    std::vector<platform::PaletteEntry> systemPalette; // of a palette device; empty: one without colours
    bool isPaletteDevice = false;
    bool refusesPalettes = false;
    int palettes = 0; // not given back
    int contexts = 0;
    int bitmaps = 0;
    int made = 0; // palettes so far

    void Reset() { *this = Display(); }
};

Display &TheDisplay();

// The entries that the palette was created with.
const std::vector<platform::PaletteEntry> &EntriesOf(const platform::Palette *palette);

} // namespace scripted

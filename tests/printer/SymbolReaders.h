#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Barcode readers that know nothing of this project, behind one function.
namespace printer {

struct ReadSymbol {
    std::string format; // as the reader names it
    std::string text;   // the bytes the symbol carries
    std::string reader; // "zbar", "ZXing" or "libdmtx"

    bool operator==(const ReadSymbol &) const = default;
};

// Everything the readers find in a grey picture (0 = black, 255 = white, row by row), each finding once. The
// picture may be a whole sheet: the readers see it as it is, and each part of it that white surrounds once
// more on its own, because libdmtx and ZXing's MaxiCode reader need that. Parts closer than 16 pixels to each
// other are one part.
std::vector<ReadSymbol> ReadAll(const uint8_t *grey, int width, int height);

} // namespace printer

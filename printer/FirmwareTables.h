#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// What the commands leave to this printer's firmware. The barcode symbologies have a table of their own,
// SymbologyTable.h.
namespace printer {

// ESC 't' n.
struct CodeTable {
    uint8_t number;
    std::string_view encoding; // as the system's converter calls it
    std::string_view name;
};

// At reset text is read as Windows-1252, which is what hosts send unless told otherwise; 255 goes back to it.
constexpr uint8_t DefaultCodeTable = 255;

// The default table for a number that is not in the table.
const CodeTable &FindCodeTable(uint8_t number);

// ESC '!' n; sizes in dots. A number beyond the table is size 0.
struct FontSize {
    int width, height;
};
constexpr std::array<FontSize, 3> FontSizes = {{{12, 24}, {9, 17}, {16, 32}}};
constexpr FontSize HumanReadableSize = FontSizes[1]; // under barcodes

constexpr int NormalLineSpacing = 30; // dots from line to line
constexpr int TabWidth = 8;           // characters

// ESC 'g' 'U' p1 p2: width and height of TrueType text. 0 is the default; 1 to 7 are multiples of it; more is
// dots.
constexpr int DefaultTrueTypeSize = 24; // dots
constexpr int TrueTypeSize(uint8_t parameter) {
    if (parameter == 0)
        return DefaultTrueTypeSize;
    return parameter < 8 ? parameter * DefaultTrueTypeSize : parameter;
}

// Marks and cuts as they are drawn; dots.
constexpr int MarkWidth = 96, MarkHeight = 32;
constexpr int CutMargin = 14; // blank rows on both sides of a cut

// Blank rows above and below a barcode in standard mode.
constexpr int BarcodeMargin = 16; // dots

// ESC 'f' n: no logo is stored; a frame of this size stands for it.
constexpr int LogoWidth = 160, LogoHeight = 64; // dots

// A page is at most this long, and as long as this until ESC 'W' sets an area; a figure in standard mode too.
constexpr int LongestPage = 4096; // rows

// The status byte. Bit 6 is always 1 and bits 7, 5 and 4 are 0, so that it never looks like the beginning of
// another kind of reply.
constexpr uint8_t StatusNormal = 0x40;
constexpr uint8_t StatusPaperOut = 0x01; // added while there is no paper

// A print-out report: '0', then how the printing ended.
constexpr uint8_t ReportLead = '0', ReportPrinted = '0', ReportPaperOut = '1';

// ESC 'M' x: which tracks are read in this mode, bit 0 for the first. 0 when x is no reader mode. STX 'C' and
// STX 'D' read the tracks of the same letters.
constexpr uint8_t TracksOfReaderMode(uint8_t mode) {
    constexpr std::array<uint8_t, 5> Tracks = {0b011, 0b110, 0b001, 0b010, 0b111}; // 'C' .. 'G'
    return mode >= 'C' && mode <= 'G' ? Tracks[mode - size_t{'C'}] : uint8_t{0};
}

// The card that is swiped. Card data is ESC, or STX when STX asked for it, the number of tracks (1..3), then
// for each the track number, the length low byte first and the characters, then a 00.
constexpr std::array<std::string_view, 3> CardTracks = {
    "%B5000000000000009^CARDHOLDER/TEST^30121010000000000?",
    ";5000000000000009=30121010000000000?",
    ";015000000000000009=7247240000000000000030300099010=?",
};

} // namespace printer

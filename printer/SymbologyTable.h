#pragma once

#include <cstdint>

// What the barcode commands leave to this printer's firmware: the meaning of their numbers, and the defaults.
namespace printer {

// The m of GS 'k' m n. The older numbers 0..6 mean the first seven.
enum class LinearKind : uint8_t {
    UpcA = 65,
    UpcE = 66,
    Ean13 = 67,
    Ean8 = 68,
    Code39 = 69,
    Itf = 70,
    Codabar = 71,
    Code93 = 72,
    Code128 = 73,
};

// The k of GS 'Z' k, and what a1 a2 a3 of the ESC 'Z' after it mean. 00 or a value out of range leaves the
// choice to the printer, but level 00 of a PDF417 whose a1 is not 00 is security level 0.
enum class MatrixKind : uint8_t {
    Pdf417 = 0,          // columns 1..30,     security level 0..8,    height of a row in modules 2..5
    DataMatrix = 1,      // rows,              columns,                dots of a module 1..8
    QrCode = 2,          // version 1..40,     level 'L' 'M' 'Q' 'H',  dots of a module 1..8
    TruncatedPdf417 = 3, // columns 1..30,     rows 3..90,             height of a row in modules 2..5
    MicroPdf417 = 4,     // columns 1..4,      not used,               height of a row in modules 2..5
    MaxiCode = 5,        // mode 2..6,         not used,               not used: its size is fixed
};
// A host reaches TruncatedPdf417 with a1 1..4 and a2 4..44, and MicroPdf417 with a1 1..4 and a2 0..8. The
// rows of a MicroPDF417 follow from its data and columns and it has no security level, so a2 says nothing
// about it.

// The t of GS '1' t n. GS 'h' is the height of Omnidirectional, Limited and Expanded; the others have the
// least height that the symbology allows.
enum class DatabarKind : uint8_t {
    Omnidirectional = 0,
    Truncated = 1,
    Stacked = 2,
    StackedOmnidirectional = 3,
    Limited = 4,
    Expanded = 5,
    ExpandedStacked = 6, // n = segments in a row, even, 2..20
};

// The printer's defaults.
constexpr int DefaultModuleWidth = 3;  // dots
constexpr int DefaultBarHeight = 162;  // dots
constexpr int DefaultPdfRowHeight = 3; // modules
constexpr char DefaultQrLevel = 'M';
constexpr int DefaultMaxiCodeMode = 4;

struct Symbology {
    uint8_t number;    // as the command carries it
    int zintSymbology; // BARCODE_... of zint.h
    const char *name;
};

// Null when the number means nothing to the printer.
const Symbology *FindLinearSymbology(uint8_t number);
const Symbology *FindMatrixSymbology(uint8_t selector);
const Symbology *FindDatabarSymbology(uint8_t type);

} // namespace printer

#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Barcodes as the printer draws them. Every function takes any bytes and never throws: what cannot be encoded
// comes back as a problem, never as a symbol of another size or content than asked for. A picture has no
// quiet zone; whoever places it leaves one. Data bytes are encoded as they are, whatever the code page, and
// no ECI is added.
namespace printer {

struct Symbol {
    int width = 0, height = 0; // dots
    std::vector<uint8_t> dots; // width * height, 1 = black, row by row
    std::string text;          // human-readable text (UTF-8), empty when the symbology has none
    std::string problem;       // a sentence that says why there is no picture; width and height are then 0
};

// GS 'k' with the settings of GS 'w' and GS 'h'.
struct LinearBarcode {
    uint8_t symbology; // the m of GS 'k', see SymbologyTable.h
    int moduleWidth;   // dots of the narrowest bar, 1..8; anything else is the printer's default
    int height;        // dots, 1..255; anything else is the printer's default
    std::string data;  // at most 255 bytes
};

// GS 'Z' k with the bytes of ESC 'Z' a1 a2 a3. SymbologyTable.h says what they mean for each selector.
struct MatrixBarcode {
    uint8_t selector;
    uint8_t a1, a2, a3;
    int moduleWidth; // dots, from GS 'w': used by the PDF417 family, whose a3 is the height of a row
    std::string data;
};

// GS '1' t n with the settings of GS 'w' and GS 'h'.
struct DatabarBarcode {
    uint8_t type;     // see SymbologyTable.h
    uint8_t segments; // of type 6: segments in a row, even, 2..20; anything else is the printer's default
    int moduleWidth;  // as in LinearBarcode
    int height;       // dots, of the types that are one row of bars whose height is free
    std::string data;
};

// UPC and EAN take their digits with or without the check digit; a wrong one is a problem. UPC-E takes 6
// digits, 7 or 8 with the number system in front, or the 11 or 12 digits of a UPC-A number that has a short
// form. ITF takes an even number of digits. Code 39 adds its start and stop '*' itself and takes data that
// carries them. Codabar data carries its start and stop letters. Code 128 data is encoded in the shortest
// way, unless it begins with a function of this command family; then it is encoded as commanded:
//   {A {B {C  go to that code set            {S  the next character is from the other of code sets A and B
//   {1 .. {4  FNC1 .. FNC4                   {{  the character '{'
// In code set C, the bytes up to the next '{' are digits taken in pairs when all are digits and their number
// is even; else each byte is one value 0..99.
Symbol EncodeLinear(const LinearBarcode &barcode);

// The data of a MaxiCode in mode 2 or 3 begins with postcode, country (3 digits) and service (3 digits), each
// ended by GS (0x1D), or without GS and with a postcode of 9 digits (mode 2) or 6 characters (mode 3). The
// header "[)>" RS "01" GS and a year of two digits may stand before them. A message must follow.
Symbol EncodeMatrix(const MatrixBarcode &barcode);

// Types 0 to 4 take the 13 or 14 digits of an item number, with or without "(01)" in front. Types 5 and 6
// take element strings, either "(01)98898765432106(3202)012345" or without parentheses; then GS (0x1D) or
// "{1" ends an element of variable length that is not the last.
Symbol EncodeDatabar(const DatabarBarcode &barcode);

} // namespace printer

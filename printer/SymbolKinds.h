#pragma once

#include "printer/SymbologyTable.h"
#include "printer/Symbols.h"

// The families of barcodes, one source file each. They may throw std::bad_alloc; Symbols.cpp keeps it from
// the caller.
namespace printer {

Symbol DrawLinear(const Symbology &symbology, const LinearBarcode &barcode);
Symbol DrawMatrix(const Symbology &symbology, const MatrixBarcode &barcode);
Symbol DrawMaxiCode(const Symbology &symbology, const MatrixBarcode &barcode);
Symbol DrawDatabar(const Symbology &symbology, const DatabarBarcode &barcode);

// True when Code 128 data begins with a function, '{' and its letter, and so says itself how it is encoded.
bool HasCode128Functions(const std::string &data);

// Draws such data. Sizes in dots.
Symbol DrawCode128(const std::string &data, int moduleWidth, int height);

} // namespace printer

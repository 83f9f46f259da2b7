#include "printer/SymbologyTable.h"

#include <algorithm>
#include <iterator>
#include <zint.h>

namespace printer {
namespace {

template <typename Kind>
constexpr Symbology Entry(Kind kind, int zintSymbology, const char *name) {
    return {static_cast<uint8_t>(kind), zintSymbology, name};
}

constexpr Symbology Linear[] = {
    Entry(LinearKind::UpcA, BARCODE_UPCA, "UPC-A"),
    Entry(LinearKind::UpcE, BARCODE_UPCE, "UPC-E"),
    Entry(LinearKind::Ean13, BARCODE_EANX, "EAN-13"),
    Entry(LinearKind::Ean8, BARCODE_EANX, "EAN-8"),
    Entry(LinearKind::Code39, BARCODE_CODE39, "Code 39"),
    Entry(LinearKind::Itf, BARCODE_C25INTER, "ITF"),
    Entry(LinearKind::Codabar, BARCODE_CODABAR, "Codabar"),
    Entry(LinearKind::Code93, BARCODE_CODE93, "Code 93"),
    Entry(LinearKind::Code128, BARCODE_CODE128, "Code 128"),
};
constexpr uint8_t OlderNumbers = 7;

constexpr Symbology Matrix[] = {
    Entry(MatrixKind::Pdf417, BARCODE_PDF417, "PDF417"),
    Entry(MatrixKind::DataMatrix, BARCODE_DATAMATRIX, "DataMatrix"),
    Entry(MatrixKind::QrCode, BARCODE_QRCODE, "QR Code"),
    Entry(MatrixKind::TruncatedPdf417, BARCODE_PDF417COMP, "Truncated PDF417"),
    Entry(MatrixKind::MicroPdf417, BARCODE_MICROPDF417, "MicroPDF417"),
    Entry(MatrixKind::MaxiCode, BARCODE_MAXICODE, "MaxiCode"),
};

// To libzint a truncated symbol is an omnidirectional one of less height.
constexpr Symbology Databar[] = {
    Entry(DatabarKind::Omnidirectional, BARCODE_DBAR_OMN, "GS1 DataBar Omnidirectional"),
    Entry(DatabarKind::Truncated, BARCODE_DBAR_OMN, "GS1 DataBar Truncated"),
    Entry(DatabarKind::Stacked, BARCODE_DBAR_STK, "GS1 DataBar Stacked"),
    Entry(DatabarKind::StackedOmnidirectional, BARCODE_DBAR_OMNSTK, "GS1 DataBar Stacked Omnidirectional"),
    Entry(DatabarKind::Limited, BARCODE_DBAR_LTD, "GS1 DataBar Limited"),
    Entry(DatabarKind::Expanded, BARCODE_DBAR_EXP, "GS1 DataBar Expanded"),
    Entry(DatabarKind::ExpandedStacked, BARCODE_DBAR_EXPSTK, "GS1 DataBar Expanded Stacked"),
};

template <typename Table>
const Symbology *Find(const Table &table, int number) {
    const auto found = std::find_if(std::begin(table), std::end(table),
                                    [number](const Symbology &entry) { return entry.number == number; });
    return found == std::end(table) ? nullptr : &*found;
}

} // namespace

const Symbology *FindLinearSymbology(uint8_t number) {
    return Find(Linear, number < OlderNumbers ? Linear[number].number : number);
}

const Symbology *FindMatrixSymbology(uint8_t selector) {
    return Find(Matrix, selector);
}

const Symbology *FindDatabarSymbology(uint8_t type) {
    return Find(Databar, type);
}

} // namespace printer

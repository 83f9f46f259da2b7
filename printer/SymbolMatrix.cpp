#include "printer/SymbolKinds.h"
#include "printer/SymbolZint.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace printer {
namespace {

struct DataMatrixSize {
    int rows, columns;
};

// libzint's sizes 1..30 in its order: the squares, then the rectangles.
constexpr DataMatrixSize DataMatrixSizes[] = {
    {10, 10}, {12, 12}, {14, 14}, {16, 16}, {18, 18},   {20, 20},   {22, 22},   {24, 24},
    {26, 26}, {32, 32}, {36, 36}, {40, 40}, {44, 44},   {48, 48},   {52, 52},   {64, 64},
    {72, 72}, {80, 80}, {88, 88}, {96, 96}, {104, 104}, {120, 120}, {132, 132}, {144, 144},
    {8, 18},  {8, 32},  {12, 26}, {12, 36}, {16, 36},   {16, 48},
};

// libzint's number of the size, 0 (automatic) when there is none such.
int DataMatrixSizeNumber(int rows, int columns) {
    const auto found =
        std::find_if(std::begin(DataMatrixSizes), std::end(DataMatrixSizes), [=](const DataMatrixSize &size) {
            return size.rows == rows && size.columns == columns;
        });
    return found == std::end(DataMatrixSizes) ? 0 : static_cast<int>(found - std::begin(DataMatrixSizes)) + 1;
}

int InRangeOr(int fallback, int value, int lowest, int highest) {
    return value >= lowest && value <= highest ? value : fallback;
}

void SetPdf417Options(zint_symbol &symbol, const MatrixBarcode &barcode) {
    constexpr int automaticLevel = -1;
    const bool leftToPrinter = barcode.a1 == 0 && barcode.a2 == 0;
    symbol.option_1 = leftToPrinter ? automaticLevel : InRangeOr(automaticLevel, barcode.a2, 0, 8);
    symbol.option_2 = InRangeOr(0, barcode.a1, 1, 30);
}

void SetTruncatedPdf417Options(zint_symbol &symbol, const MatrixBarcode &barcode) {
    symbol.option_2 = InRangeOr(0, barcode.a1, 1, 30);
    symbol.option_3 = InRangeOr(0, barcode.a2, 3, 90);
}

void SetDataMatrixOptions(zint_symbol &symbol, const MatrixBarcode &barcode) {
    symbol.option_2 = DataMatrixSizeNumber(barcode.a1, barcode.a2);
    symbol.option_3 = DM_SQUARE;
}

void SetQrOptions(zint_symbol &symbol, const MatrixBarcode &barcode) {
    constexpr char levels[] = "LMQH";
    const auto *given = static_cast<const char *>(std::memchr(levels, barcode.a2, 4));
    symbol.option_1 = static_cast<int>((given ? given : std::strchr(levels, DefaultQrLevel)) - levels) + 1;
    symbol.option_2 = InRangeOr(0, barcode.a1, 1, 40);
}

void SetOptions(zint_symbol &symbol, MatrixKind kind, const MatrixBarcode &barcode) {
    switch (kind) {
    case MatrixKind::Pdf417:
        return SetPdf417Options(symbol, barcode);
    case MatrixKind::TruncatedPdf417:
        return SetTruncatedPdf417Options(symbol, barcode);
    case MatrixKind::MicroPdf417:
        symbol.option_2 = InRangeOr(0, barcode.a1, 1, 4);
        return;
    case MatrixKind::DataMatrix:
        return SetDataMatrixOptions(symbol, barcode);
    default:
        return SetQrOptions(symbol, barcode);
    }
}

// The longest data that libzint 2.11 encodes without writing past the end of its own buffers: it keeps up to
// three values for a character of a PDF417 in 2710 places.
size_t LongestData(MatrixKind kind) {
    const bool isPdf417 = kind == MatrixKind::Pdf417 || kind == MatrixKind::TruncatedPdf417;
    return isPdf417 ? 900 : ZINT_MAX_DATA_LEN;
}

bool IsSquareModuled(MatrixKind kind) {
    return kind == MatrixKind::DataMatrix || kind == MatrixKind::QrCode;
}

} // namespace

Symbol DrawMatrix(const Symbology &symbology, const MatrixBarcode &barcode) {
    const auto kind = static_cast<MatrixKind>(symbology.number);
    if (kind == MatrixKind::MaxiCode)
        return DrawMaxiCode(symbology, barcode);
    if (barcode.data.size() > LongestData(kind))
        return RefuseSymbol(symbology.name,
                            "the data is longer than " + std::to_string(LongestData(kind)) + " bytes");
    ZintSymbol symbol(symbology.zintSymbology);
    SetOptions(*symbol, kind, barcode);
    const std::string reason = symbol.Encode(barcode.data);
    if (!reason.empty())
        return RefuseSymbol(symbology.name, reason);
    const int moduleWidth = ModuleWidthOrDefault(IsSquareModuled(kind) ? barcode.a3 : barcode.moduleWidth);
    return symbol.Draw(moduleWidth, moduleWidth * InRangeOr(DefaultPdfRowHeight, barcode.a3, 2, 5));
}

} // namespace printer

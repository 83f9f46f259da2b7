#include "fuzz/Roundtrip.h"

// Barcodes and TrueType.

namespace fuzz {

namespace {

Operands Counted(const Bytes &data) {
    return Operands().W(static_cast<int>(data.size())).Data(data);
}

// What is shorter than a byte counts, or longer.
Bytes SymbolData(Roundtrip &trip) {
    return trip.Data(trip.Flag() ? kShortText : kLongText);
}

void ExpectBars(Roundtrip &trip, int32_t symbology, int width, int height, bool hri, const Bytes &data) {
    const Bytes sent = CountedInAByte(data);
    trip.Expect(Kind::ModuleWidth, Operands().B(width));
    trip.Expect(Kind::BarHeight, Operands().B(height));
    trip.Expect(Kind::HumanReadable, Operands().B(hri));
    trip.Expect(Kind::Barcode, Operands().B(symbology).B(static_cast<int>(sent.size())).Data(sent));
}

void Barcode(Roundtrip &trip) {
    const int32_t symbology = trip.Near(0, 255), width = trip.Near(1, 8), height = trip.Near(1, 255);
    const int32_t hri = trip.Near(0, 1);
    const Bytes data = SymbolData(trip);
    trip.Stored(OneDimensionBarcodeSaveSpool(static_cast<uint32_t>(symbology), width, height, hri,
                                             Wide(data).c_str()));
    ExpectBars(trip, symbology, OrZero(1, width, 8), OrZero(1, height, 255), hri != 0, data);
}

// It takes the printer, but not the library, out of page mode.
void BarcodeOnItsPage(Roundtrip &trip) {
    const int symbology = trip.Byte(), width = trip.Number(0, 8), height = trip.Byte();
    const int32_t areaWidth = trip.Any(), areaHeight = trip.Any(), x = trip.Any(), hri = trip.Near(0, 1);
    const Bytes data = SymbolData(trip);
    const int32_t result =
        BarcodeSaveSpool(static_cast<uint8_t>(symbology), static_cast<uint8_t>(width),
                         static_cast<uint8_t>(height), hri, Wide(data).c_str(), areaWidth, areaHeight, x);
    Require(result == 1, "a barcode on its page is refused");
    trip.Expect(Kind::PageMode);
    trip.Expect(Kind::PageArea, Operands().W(0).W(0).W(areaWidth).W(areaHeight));
    trip.Expect(Kind::ClearPage);
    trip.Expect(Kind::Position, Operands().W(x).W(0));
    ExpectBars(trip, symbology, width >= 2 && width <= 6 ? width : 2, height, hri != 0, data);
    trip.Expect(Kind::FormFeed);
    trip.PrinterLeavesPageMode();
}

void ExpectMatrix(Roundtrip &trip, int kind, const Operands &parameters, const Bytes &data) {
    trip.Expect(Kind::MatrixKind, Operands().B(kind));
    trip.Expect(Kind::MatrixBarcode, Operands(parameters).Data(Counted(CountedInAByte(data)).bytes));
}

using Pdf417 = void (*)(int32_t, int32_t, int32_t, int32_t, const NadrelChar *, int32_t);

struct Pdf417Parameters {
    int kind;
    int32_t first, second;
};

// Both parameters as they are called with, and those that are to be sent.
void AnyPdf417(Roundtrip &trip, Pdf417 function, int32_t p1, int32_t p2, const Pdf417Parameters &sent) {
    const int32_t width = trip.Near(1, 8), p3 = trip.Near(2, 5), hri = trip.Near(0, 2);
    const Bytes data = SymbolData(trip);
    function(width, p1, p2, p3, Wide(data).c_str(), hri);
    trip.Expect(Kind::MatrixKind, Operands().B(sent.kind));
    trip.Expect(Kind::ModuleWidth, Operands().B(OrZero(1, width, 8)));
    trip.Expect(Kind::MatrixBarcode, Operands()
                                         .B(sent.first)
                                         .B(sent.second)
                                         .B(OrZero(2, p3, 5))
                                         .Data(Counted(CountedInAByte(data)).bytes));
    trip.Expect(Kind::HumanReadable, Operands().B(hri == 1));
}

void StandardPdf417(Roundtrip &trip) {
    const int32_t p1 = trip.Near(1, 30), p2 = trip.Near(0, 8);
    const bool fit = p1 >= 1 && p1 <= 30 && p2 >= 0 && p2 <= 8;
    AnyPdf417(trip, PDF417SaveSpool, p1, p2, {0, fit ? p1 : 0, fit ? p2 : 0});
}

void TruncatedPdf417(Roundtrip &trip) {
    const int32_t p1 = trip.Near(1, 4), p2 = trip.Near(4, 44);
    const bool fits = p1 >= 1 && p1 <= 4;
    AnyPdf417(trip, TruncatedPDF417SaveSpool, p1, p2,
              {fits ? 3 : 0, fits ? p1 : 0, fits ? OrZero(4, p2, 44) : 0});
}

void MicroPdf417(Roundtrip &trip) {
    const int32_t p1 = trip.Near(1, 4), p2 = trip.Near(0, 8);
    const bool fit = p1 >= 1 && p1 <= 4 && p2 >= 0 && p2 <= 8;
    AnyPdf417(trip, MicroPDF417SaveSpool, p1, p2, {fit ? 4 : 0, fit ? p1 : 0, fit ? p2 : 0});
}

void QrCode(Roundtrip &trip) {
    static constexpr uint32_t kLevels[] = {'L', 'M', 'Q', 'H', 'l', 0, 0x10000 + 'L', 0x100 + 'L'};
    const int32_t version = trip.Near(1, 40), size = trip.Near(1, 8);
    const uint32_t level = kLevels[trip.Number(0, 7)];
    const Bytes data = SymbolData(trip);
    QRCodeSaveSpool(version, level, size, Wide(data).c_str());
    const bool isLevel = std::string("LMQH").find(static_cast<char>(level)) != std::string::npos;
    const bool isWhole = level % 0x10000 < 0x100 && level % 0x100 != 0;
    ExpectMatrix(trip, 2,
                 Operands().B(OrZero(1, version, 40)).B(isLevel && isWhole ? level : 0).B(OrZero(1, size, 8)),
                 data);
}

void DataMatrix(Roundtrip &trip) {
    const int32_t p1 = trip.Any(), p2 = trip.Any(), size = trip.Near(1, 8);
    const Bytes data = SymbolData(trip);
    DataMatrixSaveSpool(static_cast<uint32_t>(p1), static_cast<uint32_t>(p2), size, Wide(data).c_str());
    ExpectMatrix(trip, 1, Operands().B(p1).B(p2).B(OrZero(1, size, 8)), data);
}

void MaxiCode(Roundtrip &trip) {
    const int32_t mode = trip.Near(2, 6);
    const Bytes data = SymbolData(trip);
    MaxicodeSaveSpool(mode, Wide(data).c_str());
    ExpectMatrix(trip, 5, Operands().B(OrZero(2, mode, 6)).B(0).B(0), data);
}

void Databar(Roundtrip &trip) {
    const int32_t type = trip.Near(0, 6), segments = trip.Near(0, 66);
    const Bytes data = SymbolData(trip);
    GS1DatabarSaveSpool(type, segments, Wide(data).c_str());
    const bool sends = type == 6 && segments >= 0 && segments % 2 == 0 && segments % 21 >= 2;
    trip.Expect(Kind::Databar,
                Operands().B(OrZero(0, type, 6)).B(sends ? segments : 0).Data(CountedInAByte(data)).B(0));
}

void SelectTrueTypeFont(Roundtrip &trip) {
    const Bytes name = SymbolData(trip);
    trip.Stored(SelectForTTF(Wide(name).c_str()));
    trip.Expect(Kind::TrueTypeFont, Operands().Data(CountedInAByte(name)).B(0));
}

void SetTrueTypeFont(Roundtrip &trip) {
    const Bytes name = SymbolData(trip);
    SetFontForTTF(Wide(name).c_str());
    trip.Expect(Kind::TrueTypeFont, Operands().Data(CountedInAByte(name)).B(0));
}

// Any units but 0, over and over.
std::u16string Units(Roundtrip &trip) {
    std::u16string part;
    for (int left = trip.Number(1, 40); left > 0; --left)
        part += static_cast<char16_t>(trip.Number(1, 65535));
    std::u16string text;
    for (int times = trip.Number(0, 1) * trip.Byte() + trip.Number(0, 1); times > 0; --times)
        text += part;
    return text;
}

void TrueTypeText(Roundtrip &trip) {
    const std::u16string text = Units(trip);
    const int p1 = trip.Byte(), p2 = trip.Byte();
    trip.Stored(PrintSpoolForTTF(text.c_str(), static_cast<uint8_t>(p1), static_cast<uint8_t>(p2)));
    Operands operands;
    operands.B(p1).B(p2);
    for (const char16_t unit : text)
        operands.B(unit >> 8).B(unit);
    trip.Expect(Kind::TrueTypeText, operands.W(0));
    trip.Expect(Kind::LineFeed);
}

constexpr RoundtripCall kCalls[] = {
    Barcode,    BarcodeOnItsPage, StandardPdf417, TruncatedPdf417,    MicroPdf417,     QrCode,
    DataMatrix, MaxiCode,         Databar,        SelectTrueTypeFont, SetTrueTypeFont, TrueTypeText,
};

} // namespace

std::span<const RoundtripCall> SymbolCalls() {
    return kCalls;
}

} // namespace fuzz

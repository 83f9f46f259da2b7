#include "fuzz/Roundtrip.h"

// Barcodes, macros and TrueType.

namespace fuzz {

namespace {

Operands Counted(const Bytes &data) {
    return Operands().W(static_cast<int>(data.size())).Data(data);
}

void ExpectBars(Roundtrip &trip, int symbology, int width, int height, bool hri, const Bytes &data) {
    trip.Expect(Kind::ModuleWidth, Operands().B(width));
    trip.Expect(Kind::BarHeight, Operands().B(height));
    trip.Expect(Kind::HumanReadable, Operands().B(hri));
    trip.Expect(Kind::Barcode, Operands().B(symbology).B(static_cast<int>(data.size())).Data(data));
}

void Barcode(Roundtrip &trip) {
    const int symbology = trip.Byte(), width = trip.Number(1, 8), height = trip.Number(1, 255);
    const bool hri = trip.Flag();
    const Bytes data = trip.Text(255);
    OneDimensionBarcodeSaveSpool(static_cast<uint32_t>(symbology), width, height, hri, Wide(data).c_str());
    ExpectBars(trip, symbology, width, height, hri, data);
}

// It takes the printer, but not the library, out of page mode.
void BarcodeOnItsPage(Roundtrip &trip) {
    if (trip.pageMode)
        return;
    const int symbology = trip.Byte(), width = trip.Number(2, 6), height = trip.Byte();
    const int areaWidth = trip.Word(), areaHeight = trip.Word(), x = trip.Word();
    const bool hri = trip.Flag();
    const Bytes data = trip.Text(kShortText);
    BarcodeSaveSpool(static_cast<uint8_t>(symbology), static_cast<uint8_t>(width),
                     static_cast<uint8_t>(height), hri, Wide(data).c_str(), areaWidth, areaHeight, x);
    trip.Expect(Kind::PageMode);
    trip.Expect(Kind::PageArea, Operands().W(0).W(0).W(areaWidth).W(areaHeight));
    trip.Expect(Kind::ClearPage);
    trip.Expect(Kind::Position, Operands().W(x).W(0));
    ExpectBars(trip, symbology, width, height, hri, data);
    trip.Expect(Kind::FormFeed);
}

using Pdf417 = void (*)(int32_t, int32_t, int32_t, int32_t, const NadrelChar *, int32_t);

void AnyPdf417(Roundtrip &trip, Pdf417 function, int kind, int p1, int p2) {
    const int width = trip.Number(1, 8), p3 = trip.Number(2, 5);
    const bool hri = trip.Flag();
    const Bytes data = trip.Text(kShortText);
    function(width, p1, p2, p3, Wide(data).c_str(), hri);
    trip.Expect(Kind::MatrixKind, Operands().B(kind));
    trip.Expect(Kind::ModuleWidth, Operands().B(width));
    trip.Expect(Kind::MatrixBarcode, Operands().B(p1).B(p2).B(p3).Data(Counted(data).bytes));
    trip.Expect(Kind::HumanReadable, Operands().B(hri));
}

void StandardPdf417(Roundtrip &trip) {
    const int p1 = trip.Number(1, 30);
    AnyPdf417(trip, PDF417SaveSpool, 0, p1, trip.Number(0, 8));
}

void TruncatedPdf417(Roundtrip &trip) {
    const int p1 = trip.Number(1, 4);
    AnyPdf417(trip, TruncatedPDF417SaveSpool, 3, p1, trip.Number(4, 44));
}

void MicroPdf417(Roundtrip &trip) {
    const int p1 = trip.Number(1, 4);
    AnyPdf417(trip, MicroPDF417SaveSpool, 4, p1, trip.Number(0, 8));
}

void ExpectMatrix(Roundtrip &trip, int kind, const Operands &parameters, const Bytes &data) {
    trip.Expect(Kind::MatrixKind, Operands().B(kind));
    trip.Expect(Kind::MatrixBarcode, Operands(parameters).Data(Counted(data).bytes));
}

void QrCode(Roundtrip &trip) {
    const int version = trip.Number(1, 40), level = "LMQH"[trip.Number(0, 3)], size = trip.Number(1, 8);
    const Bytes data = trip.Text(255);
    QRCodeSaveSpool(version, static_cast<uint32_t>(level), size, Wide(data).c_str());
    ExpectMatrix(trip, 2, Operands().B(version).B(level).B(size), data);
}

void DataMatrix(Roundtrip &trip) {
    const int p1 = trip.Byte(), p2 = trip.Byte(), size = trip.Number(1, 8);
    const Bytes data = trip.Text(kShortText);
    DataMatrixSaveSpool(static_cast<uint32_t>(p1), static_cast<uint32_t>(p2), size, Wide(data).c_str());
    ExpectMatrix(trip, 1, Operands().B(p1).B(p2).B(size), data);
}

void MaxiCode(Roundtrip &trip) {
    const int mode = trip.Number(2, 6);
    const Bytes data = trip.Text(kShortText);
    MaxicodeSaveSpool(mode, Wide(data).c_str());
    ExpectMatrix(trip, 5, Operands().B(mode).B(0).B(0), data);
}

void Databar(Roundtrip &trip) {
    const int type = trip.Number(0, 6), segments = 2 * trip.Number(1, 10);
    const Bytes data = trip.Text(kShortText);
    GS1DatabarSaveSpool(type, segments, Wide(data).c_str());
    trip.Expect(Kind::Databar, Operands().B(type).B(type == 6 ? segments : 0).Data(data).B(0));
}

void Macro(Roundtrip &trip) {
    const Bytes body = trip.Text(kShortText);
    SetMarco_Start();
    ControlCommand(body.data(), static_cast<int32_t>(body.size()));
    SetMacro_End();
    if (!body.empty())
        trip.Expect(Kind::Padding, Operands().Data(Bytes(body.size(), 0)));
    trip.Expect(Kind::Macro, Counted(body));
}

void FontMacro(Roundtrip &trip) {
    const int size = trip.Number(0, 3), table = trip.Number(0, 50);
    SetMacro_FontSize_FontTable(size, table);
    trip.Expect(Kind::Macro, Operands().W(6).B(0x1B).B('!').B(size).B(0x1B).B('t').B(table));
}

void NoMacro(Roundtrip &trip) {
    Initialize_Macro();
    trip.Expect(Kind::Macro, Operands().W(0));
}

template <auto Function>
void TrueTypeFont(Roundtrip &trip) {
    const Bytes name = trip.Text(kShortText);
    Function(Wide(name).c_str());
    trip.Expect(Kind::TrueTypeFont, Operands().Data(name).B(0));
}

void TrueTypeText(Roundtrip &trip) {
    std::u16string text;
    Operands operands;
    const int p1 = trip.Byte(), p2 = trip.Byte();
    operands.B(p1).B(p2);
    for (int left = trip.Number(0, 40); left > 0; --left) {
        const int unit = trip.Number(1, 65535);
        text += static_cast<char16_t>(unit);
        operands.B(unit >> 8).B(unit);
    }
    PrintSpoolForTTF(text.c_str(), static_cast<uint8_t>(p1), static_cast<uint8_t>(p2));
    trip.Expect(Kind::TrueTypeText, operands.W(0));
    trip.Expect(Kind::LineFeed);
}

constexpr RoundtripCall kCalls[] = {
    Barcode,
    BarcodeOnItsPage,
    StandardPdf417,
    TruncatedPdf417,
    MicroPdf417,
    QrCode,
    DataMatrix,
    MaxiCode,
    Databar,
    Macro,
    FontMacro,
    NoMacro,
    TrueTypeFont<SelectForTTF>,
    TrueTypeFont<SetFontForTTF>,
    TrueTypeText,
};

} // namespace

std::span<const RoundtripCall> SymbolCalls() {
    return kCalls;
}

} // namespace fuzz

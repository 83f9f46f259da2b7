#include "fuzz/Roundtrip.h"

// A call each, with operands within the range of the command, and what the printer is to understand.

namespace fuzz {

namespace {

// Most of a printer's data fields.
constexpr size_t kShortText = 60;

void Text(Roundtrip &trip) {
    const Bytes text = trip.Text(200);
    TextSaveSpool(Wide(text).c_str());
    trip.ExpectText(text);
}

void TextWithStyle(Roundtrip &trip) {
    static constexpr int kSizes[] = {0x00, 0x10, 0x01, 0x11};
    const Bytes text = trip.Text(kShortText);
    const int font = trip.Number(0, 3);
    const bool bold = trip.Flag();
    if (nadrel::SpoolLength > 9000)
        return;
    SaveSpool(Wide(text).c_str(), font, bold);
    trip.Expect(Kind::Magnification, Operands().B(kSizes[font]));
    trip.Expect(Kind::Bold, Operands().B(bold));
    trip.ExpectText(text);
}

void RawText(Roundtrip &trip) {
    const Bytes text = trip.Text(kShortText);
    ControlCommand(text.data(), static_cast<int32_t>(text.size()));
    trip.ExpectText(text);
}

template <void (*Function)(int32_t), Kind kKind, int kHighest>
void OneNumber(Roundtrip &trip) {
    const int n = trip.Number(0, kHighest);
    Function(n);
    trip.Expect(kKind, Operands().B(n));
}

template <void (*Function)(int32_t), Kind kKind>
void OneWord(Roundtrip &trip) {
    const int n = trip.Word();
    Function(n);
    trip.Expect(kKind, Operands().W(n));
}

template <void (*Function)(), Kind kKind>
void NoOperand(Roundtrip &trip) {
    Function();
    trip.Expect(kKind);
}

void Initialise(Roundtrip &trip) {
    InitPrinterStatus();
    trip.pageMode = false;
    trip.Expect(Kind::Initialize);
}

void CodeTable(Roundtrip &trip) {
    const int table = trip.Byte();
    SetCharCodeTableEX(static_cast<uint32_t>(table));
    trip.Expect(Kind::CodeTable, Operands().B(table));
}

void Style(Roundtrip &trip) {
    const int underline = trip.Number(0, 2), width = trip.Number(0, 7), height = trip.Number(0, 7);
    const bool bold = trip.Flag(), reverse = trip.Flag();
    SetTextStyle(static_cast<uint32_t>(underline), bold, width, height, reverse);
    trip.Expect(Kind::Underline, Operands().B(underline));
    trip.Expect(Kind::Bold, Operands().B(bold));
    trip.Expect(Kind::Magnification, Operands().B(width * 16 + height));
    trip.Expect(Kind::Reverse, Operands().B(reverse));
}

void UpsideDown(Roundtrip &trip) {
    const bool on = trip.Flag();
    SetUpsideDown(on);
    trip.Expect(Kind::UpsideDown, trip.pageMode ? Operands() : Operands().B(on));
}

void Position(Roundtrip &trip) {
    const int x = trip.Word(), y = trip.Word();
    SetPrintPosition(x, y);
    trip.Expect(Kind::Position, Operands().W(x).W(y));
}

void Cut(Roundtrip &trip) {
    const bool partly = trip.Flag();
    CutPaper(partly);
    trip.Expect(Kind::Cut, Operands().B(partly));
}

void Mark(Roundtrip &trip) {
    FeedToMark();
    trip.Expect(Kind::FeedToMark);
    trip.Expect(Kind::StartAtMark);
}

void MarkUse(Roundtrip &trip) {
    const bool on = trip.Flag();
    SetMarkUseMode(on);
    trip.Expect(Kind::MarkSensing, Operands().B(on));
}

void EnterPageMode(Roundtrip &trip) {
    SetPageMode();
    trip.pageMode = true;
    trip.Expect(Kind::PageMode);
}

void LeavePageMode(Roundtrip &trip) {
    Page_SetStandardMode();
    trip.pageMode = false;
    trip.Expect(Kind::StandardMode);
}

void PrintPageAndLeave(Roundtrip &trip) {
    Page_Print_StandardMode();
    if (trip.pageMode)
        trip.Expect(Kind::FormFeed);
    trip.pageMode = false;
}

template <void (*Function)(), Kind kKind>
void OnPage(Roundtrip &trip) {
    Function();
    if (trip.pageMode)
        trip.Expect(kKind);
}

template <void (*Function)(int32_t), Kind kKind, int kHighest>
void NumberOnPage(Roundtrip &trip) {
    const int n = trip.Number(0, kHighest);
    Function(n);
    if (trip.pageMode)
        trip.Expect(kKind, Operands().B(n));
}

void PageArea(Roundtrip &trip) {
    const int x = trip.Word(), y = trip.Word(), width = trip.Word(), height = trip.Word();
    Page_SetArea(x, y, width, height);
    if (trip.pageMode)
        trip.Expect(Kind::PageArea, Operands().W(x).W(y).W(width).W(height));
}

void PagePosition(Roundtrip &trip) {
    const int x = trip.Word(), y = trip.Word();
    Page_SetPosition(x, y);
    if (trip.pageMode)
        trip.Expect(Kind::Position, Operands().W(x).W(y));
}

void Box(Roundtrip &trip) {
    const int x = trip.Word(), y = trip.Word(), width = trip.Word(), height = trip.Word();
    const int thickness = trip.Byte();
    Page_DrawBox(x, y, width, height, thickness);
    if (!trip.pageMode)
        return;
    trip.Expect(Kind::Position, Operands().W(x).W(y));
    trip.Expect(Kind::Box, Operands().W(width).W(height).B(thickness));
}

template <void (*Function)(int32_t, int32_t, int32_t, int32_t, int32_t), Kind kKind>
void Figure(Roundtrip &trip) {
    const int x1 = trip.Word(), y1 = trip.Word(), x2 = trip.Word(), y2 = trip.Word();
    const int thickness = trip.Byte();
    Function(x1, y1, x2, y2, thickness);
    trip.Expect(kKind, Operands().W(x1).W(y1).W(x2).W(y2).B(thickness));
}

void BeginPage(Roundtrip &trip) {
    const int x = trip.Word(), y = trip.Word(), width = trip.Word(), height = trip.Word();
    InitPageMode(x, y, width, height);
    trip.pageMode = true;
    trip.Expect(Kind::Initialize);
    trip.Expect(Kind::PageMode);
    trip.Expect(Kind::PageArea, Operands().W(x).W(y).W(width).W(height));
    trip.Expect(Kind::ClearPage);
}

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

void EnterSmartCard(Roundtrip &trip) {
    EnterSCRMode();
    trip.Expect(Kind::EnterSmartCard);
}

void LeaveSmartCard(Roundtrip &trip) {
    CancelSCRMode();
    trip.Expect(Kind::LeaveSmartCard);
}

void SecuredCard(Roundtrip &trip) {
    const Bytes text = trip.Text(kShortText);
    SecuredCardCommend(std::string(text.begin(), text.end()).c_str());
    trip.Expect(Kind::SecuredCard, Operands().B(0).B(static_cast<int>(text.size())).Data(text));
}

// What goes straight to the link.

template <auto Function, Kind kKind, int... kOperands>
void Ask(Roundtrip &trip) {
    trip.Print();
    Function();
    Operands operands;
    (operands.B(kOperands), ...);
    trip.Expect(kKind, operands);
    trip.Sent(true);
}

template <int32_t (*Function)(int32_t)>
void AskStatus(Roundtrip &trip) {
    trip.Print();
    for (int left = trip.Number(1, 3), asked = left; left > 0; --left) {
        if (left == asked)
            Function(asked * 200);
        trip.Expect(trip.framed ? Kind::Query : Kind::Status);
    }
    trip.Sent(false);
}

void PrintOutReports(Roundtrip &trip) {
    const bool on = trip.Flag();
    trip.Print();
    Set_PrintOutStatus(on);
    trip.Expect(Kind::PrintOutReports, Operands().B(on));
    trip.Sent(true);
}

void EnterReader(Roundtrip &trip) {
    const int track = trip.Number(0, 4);
    trip.Print();
    EnterMSRMode(track);
    trip.Expect(Kind::EnterReader, Operands().B('C' + track));
    trip.Sent(true);
}

void ReadCard(Roundtrip &trip) {
    const bool flag = trip.Flag();
    trip.Print();
    CardRead(flag);
    trip.Expect(Kind::CancelReading);
    trip.Expect(Kind::EnterReader, Operands().B(flag ? 'D' : 'C'));
    trip.Sent(true);
}

void ReadCardOtherwise(Roundtrip &trip) {
    trip.Print();
    CardRead_M(trip.Flag());
    trip.Expect(Kind::CardRead);
    trip.Sent(true);
}

void CancelSecuredCard(Roundtrip &trip) {
    trip.Print();
    SecuredCardCancel();
    trip.Expect(Kind::CancelSecuredCard);
    trip.Sent(false);
}

void Terminal(Roundtrip &trip) {
    Bytes id = trip.Text(8);
    id.resize(8, 'x');
    trip.Print();
    SetTermialID(Wide(id).c_str());
    trip.Expect(Kind::TerminalIdentifier, Operands().Data(id));
    trip.Sent(false);
}

// Digits, two a byte.
std::u16string Digits(Roundtrip &trip, int count, Operands &operands) {
    std::u16string digits;
    for (int i = 0; i < count; i += 2) {
        const int high = trip.Number(0, 9), low = trip.Number(0, 9);
        digits += static_cast<char16_t>('0' + high);
        digits += static_cast<char16_t>('0' + low);
        operands.B(high * 16 + low);
    }
    return digits;
}

void Payment(Roundtrip &trip) {
    const bool type = trip.Flag();
    Operands operands;
    operands.B(type);
    const auto first = Digits(trip, 12, operands), second = Digits(trip, 8, operands);
    const auto third = Digits(trip, 6, operands);
    trip.Print();
    SetPaymentReq(type, first.c_str(), second.c_str(), third.c_str());
    trip.Expect(Kind::PaymentRequest, operands);
    trip.Sent(false);
}

void PrintNow(Roundtrip &trip) {
    trip.Print();
}

constexpr RoundtripCall kCalls[] = {
    Text,
    TextWithStyle,
    RawText,
    Initialise,
    CodeTable,
    Style,
    UpsideDown,
    Position,
    Cut,
    Mark,
    MarkUse,
    NoOperand<PrintData, Kind::LineFeed>,
    OneNumber<PrintDotFeed, Kind::FeedDots, 255>,
    OneNumber<PrintLineFeed, Kind::FeedLines, 255>,
    OneNumber<SetLineSpace, Kind::LineSpacing, 255>,
    OneNumber<SetCharSpace, Kind::CharacterSpacing, 255>,
    OneNumber<SetFontSize, Kind::FontSize, 2>,
    OneNumber<SetTextAlignment, Kind::Alignment, 3>,
    OneNumber<LoadLogoSaveSpool, Kind::Logo, 255>,
    OneWord<SetAbsPosition, Kind::HorizontalPosition>,
    OneWord<SetPositionFromMark, Kind::OffsetFromMark>,
    EnterPageMode,
    LeavePageMode,
    PrintPageAndLeave,
    PageArea,
    PagePosition,
    Box,
    BeginPage,
    OnPage<Page_ClearCurrentData, Kind::ClearPage>,
    OnPage<Page_Print, Kind::PrintPage>,
    OnPage<Page_Newline, Kind::LineFeed>,
    NumberOnPage<Page_SetDirection, Kind::PageDirection, 3>,
    NumberOnPage<Page_DotFeed, Kind::FeedDots, 255>,
    NumberOnPage<Page_LineFeed, Kind::FeedLines, 255>,
    Figure<Page_DrawLine, Kind::LineFigure>,
    Figure<Page_DrawEllipse, Kind::Ellipse>,
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
    PositionedPicture,
    NormalPicture,
    CompressedPicture,
    EnterSmartCard,
    LeaveSmartCard,
    SecuredCard,
    Ask<GetPrinterModelName, Kind::ModelName, 0xFF>,
    Ask<GetFirmwareVersion, Kind::FirmwareVersion>,
    Ask<CancelMSRMode, Kind::CancelReading>,
    Ask<CardCancel, Kind::CancelReading>,
    AskStatus<GetPrinterStatus>,
    AskStatus<GetPrinterStatusEX>,
    PrintOutReports,
    EnterReader,
    ReadCard,
    ReadCardOtherwise,
    CancelSecuredCard,
    Terminal,
    Payment,
    PrintNow,
};

} // namespace

std::span<const RoundtripCall> RoundtripCalls() {
    return kCalls;
}

} // namespace fuzz

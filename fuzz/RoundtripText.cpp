#include "fuzz/Roundtrip.h"

// Calls of text and page mode with operands within the range of the command, and what the printer is to understand.

namespace fuzz {

namespace {

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
};

} // namespace

std::span<const RoundtripCall> TextCalls() {
    return kCalls;
}

} // namespace fuzz

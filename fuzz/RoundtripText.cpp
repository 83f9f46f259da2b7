#include "fuzz/Roundtrip.h"

// Text and page mode.

namespace fuzz {

namespace {

void Text(Roundtrip &trip) {
    const Bytes text = trip.Flag() ? trip.Text(kShortText) : trip.LongText(kLongText);
    TextSaveSpool(Wide(text).c_str());
    trip.ExpectText(CountedInAByte(text));
}

// A font that there is not leaves a command without its operand.
void TextWithStyle(Roundtrip &trip) {
    static constexpr int kSizes[] = {0x00, 0x10, 0x01, 0x11};
    const Bytes text = trip.LongText(kLongText);
    const int32_t font = trip.Near(0, 3), bold = trip.Near(0, 1);
    if (nadrel::SpoolLength > 9000)
        return;
    trip.Stored(SaveSpool(Wide(text).c_str(), font, bold));
    if (font >= 0 && font <= 3)
        trip.Expect(Kind::Magnification, Operands().B(kSizes[font]));
    else
        trip.Expect(Kind::Incomplete, Operands().B(0x1D).B('!'));
    trip.Expect(Kind::Bold, Operands().B(bold != 0));
    trip.ExpectText(text);
}

void RawText(Roundtrip &trip) {
    const Bytes text = trip.Flag() ? trip.Text(kShortText) : trip.LongText(65535);
    if (text.empty())
        return;
    trip.Stored(ControlCommand(text.data(), static_cast<int32_t>(text.size())));
    trip.Expect(Kind::Text, Operands().Data(text));
}

void Converted(Roundtrip &trip) {
    const Bytes text = trip.LongText(65535);
    const char *converted = U2A(Wide(text).c_str());
    Require(std::string(text.begin(), text.end()) == converted, "text is converted to another");
}

template <void (*Function)(int32_t), Kind kKind, int kHighest>
void OneNumber(Roundtrip &trip) {
    const int32_t n = trip.Near(0, kHighest);
    Function(n);
    if (n >= 0 && n <= kHighest)
        trip.Expect(kKind, Operands().B(n));
}

template <void (*Function)(int32_t), Kind kKind>
void OneWord(Roundtrip &trip) {
    const int32_t n = trip.Any();
    Function(n);
    trip.Expect(kKind, Operands().W(n));
}

template <void (*Function)(), Kind kKind>
void NoOperand(Roundtrip &trip) {
    Function();
    trip.Expect(kKind);
}

void Logo(Roundtrip &trip) {
    const int32_t n = trip.Near(0, 255);
    LoadLogoSaveSpool(n);
    trip.Expect(Kind::Logo, Operands().B(OrZero(0, n, 255)));
}

void Initialise(Roundtrip &trip) {
    InitPrinterStatus();
    trip.SetPageMode(false);
    trip.Expect(Kind::Initialize);
}

void CodeTable(Roundtrip &trip) {
    const int32_t table = trip.Any();
    SetCharCodeTableEX(static_cast<uint32_t>(table));
    trip.Expect(Kind::CodeTable, Operands().B(table));
}

void CodeTableOfItsKind(Roundtrip &trip) {
    static constexpr int kHighest[] = {5, 5, 50};
    const int32_t table = trip.Near(0, 51), kind = trip.Near(0, 3);
    SetCharCodeTable(table, static_cast<uint32_t>(kind));
    if (kind >= 0 && kind <= 2 && ((table >= 0 && table <= kHighest[kind]) || table == 255))
        trip.Expect(Kind::CodeTable, Operands().B(table));
}

void Style(Roundtrip &trip) {
    const int32_t underline = trip.Near(0, 3), width = trip.Near(0, 8), height = trip.Near(0, 8);
    const int32_t bold = trip.Near(0, 1), reverse = trip.Near(0, 1);
    SetTextStyle(static_cast<uint32_t>(underline), static_cast<uint32_t>(bold), width, height,
                 static_cast<uint32_t>(reverse));
    trip.Expect(Kind::Underline, Operands().B(OrZero(1, underline, 2)));
    trip.Expect(Kind::Bold, Operands().B(bold != 0));
    trip.Expect(Kind::Magnification, Operands().B(OrZero(0, width, 7) * 16 + OrZero(0, height, 7)));
    trip.Expect(Kind::Reverse, Operands().B(reverse != 0));
}

// In page mode it has no operand: it is not understood where the printer is in another mode than the library
// takes it to be in.
void UpsideDown(Roundtrip &trip) {
    if (trip.ModesDiffer())
        return;
    const int32_t on = trip.Near(0, 1);
    SetUpsideDown(static_cast<uint32_t>(on));
    trip.Expect(Kind::UpsideDown, trip.InPageMode() ? Operands() : Operands().B(on != 0));
}

void Position(Roundtrip &trip) {
    const int32_t x = trip.Any(), y = trip.Any();
    trip.Stored(SetPrintPosition(x, y));
    trip.Expect(Kind::Position, Operands().W(x).W(y));
}

void Cut(Roundtrip &trip) {
    const int32_t mode = trip.Near(0, 2);
    CutPaper(static_cast<uint32_t>(mode));
    trip.Expect(Kind::Cut, Operands().B(mode == 1));
}

void Mark(Roundtrip &trip) {
    FeedToMark();
    trip.Expect(Kind::FeedToMark);
    trip.Expect(Kind::StartAtMark);
}

void MarkUse(Roundtrip &trip) {
    const int32_t on = trip.Near(0, 1);
    SetMarkUseMode(static_cast<uint32_t>(on));
    trip.Expect(Kind::MarkSensing, Operands().B(on != 0));
}

void EnterPageMode(Roundtrip &trip) {
    ::SetPageMode();
    trip.SetPageMode(true);
    trip.Expect(Kind::PageMode);
}

void LeavePageMode(Roundtrip &trip) {
    Page_SetStandardMode();
    trip.SetPageMode(false);
    trip.Expect(Kind::StandardMode);
}

void PrintPageAndLeave(Roundtrip &trip) {
    Page_Print_StandardMode();
    if (!trip.InPageMode())
        return;
    trip.Expect(Kind::FormFeed);
    trip.SetPageMode(false);
}

template <void (*Function)(), Kind kKind>
void OnPage(Roundtrip &trip) {
    Function();
    if (trip.InPageMode())
        trip.Expect(kKind);
}

template <void (*Function)(int32_t), Kind kKind, int kHighest>
void NumberOnPage(Roundtrip &trip) {
    const int32_t n = trip.Near(0, kHighest);
    Function(n);
    if (trip.InPageMode() && n >= 0 && n <= kHighest)
        trip.Expect(kKind, Operands().B(n));
}

void PageArea(Roundtrip &trip) {
    const int32_t x = trip.Any(), y = trip.Any(), width = trip.Any(), height = trip.Any();
    Page_SetArea(x, y, width, height);
    if (trip.InPageMode())
        trip.Expect(Kind::PageArea, Operands().W(x).W(y).W(width).W(height));
}

void PagePosition(Roundtrip &trip) {
    const int32_t x = trip.Any(), y = trip.Any();
    Page_SetPosition(x, y);
    if (trip.InPageMode())
        trip.Expect(Kind::Position, Operands().W(x).W(y));
}

void Box(Roundtrip &trip) {
    const int32_t x = trip.Any(), y = trip.Any(), width = trip.Any(), height = trip.Any();
    const int32_t thickness = trip.Near(0, 255);
    Page_DrawBox(x, y, width, height, thickness);
    if (!trip.InPageMode())
        return;
    trip.Expect(Kind::Position, Operands().W(x).W(y));
    trip.Expect(Kind::Box, Operands().W(width).W(height).B(OrZero(0, thickness, 255)));
}

template <void (*Function)(int32_t, int32_t, int32_t, int32_t, int32_t), Kind kKind>
void Figure(Roundtrip &trip) {
    const int32_t x1 = trip.Any(), y1 = trip.Any(), x2 = trip.Any(), y2 = trip.Any();
    const int32_t thickness = trip.Near(0, 255);
    Function(x1, y1, x2, y2, thickness);
    if (thickness >= 0 && thickness <= 255)
        trip.Expect(kKind, Operands().W(x1).W(y1).W(x2).W(y2).B(thickness));
}

void BeginPage(Roundtrip &trip) {
    const int32_t x = trip.Any(), y = trip.Any(), width = trip.Any(), height = trip.Any();
    InitPageMode(x, y, width, height);
    trip.SetPageMode(true);
    trip.Expect(Kind::Initialize);
    trip.Expect(Kind::PageMode);
    trip.Expect(Kind::PageArea, Operands().W(x).W(y).W(width).W(height));
    trip.Expect(Kind::ClearPage);
}

constexpr RoundtripCall kCalls[] = {
    Text,
    TextWithStyle,
    RawText,
    Converted,
    Initialise,
    CodeTable,
    CodeTableOfItsKind,
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
    Logo,
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

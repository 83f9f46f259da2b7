#include "spool/Spool.h"

#include <algorithm>

using namespace nadrel;

namespace {

// A command with one parameter byte, left out when the parameter is none.
void AppendIfByte(uint8_t letter, int32_t n) {
    if (IsByte(n))
        AppendDirect(Command(kEsc, letter, n));
}

constexpr bool TableIsPermitted(int32_t table, uint32_t kind) {
    return kind <= 2 && IsCodeTable(table, kind == 2 ? 50 : 5);
}

} // namespace

void nadrel::SetDefaultLineSpace() {
    AppendDirect(Command(kEsc, '2'));
}

int32_t SetPrintPosition(int32_t x, int32_t y) {
    return AppendAndStoreResult({PositionCommand(x, y)});
}

void PrintData() {
    AppendDirect(Command(kLf));
}

void PrintDotFeed(int32_t n) {
    AppendIfByte('J', n);
}

void PrintLineFeed(int32_t n) {
    AppendIfByte('d', n);
}

void InitPrinterStatus() {
    if (AppendDirect(Command(kEsc, '@')))
        PageModeFlag = 0;
}

void SetLineSpace(int32_t n) {
    AppendIfByte('3', n);
}

void SetCharSpace(int32_t n) {
    AppendIfByte(' ', n);
}

void SetCharCodeTable(int32_t table, uint32_t kind) {
    if (TableIsPermitted(table, kind))
        AppendDirect(Command(kEsc, 't', table));
}

void SetCharCodeTableEX(uint32_t table) {
    AppendDirect(Command(kEsc, 't', table));
}

void SetFontSize(int32_t n) {
    if (InRange(n, 0, 2))
        AppendDirect(Command(kEsc, '!', n));
}

void SetTextStyle(uint32_t underline, uint32_t bold, int32_t width, int32_t height, uint32_t reverse) {
    const uint32_t thickness = underline == 1 || underline == 2 ? underline : 0;
    const int size = InRangeOrZero(width, 0, 7) << 4 | InRangeOrZero(height, 0, 7);
    AppendDirect(Command(kEsc, '-', thickness, kEsc, 'E', bold != 0, kGs, '!', size, kGs, 'B', reverse != 0));
}

// In page mode the parameter byte is left out. Hosts send their own, or none, after it.
void SetUpsideDown(uint32_t on) {
    if (PageModeFlag != 0)
        AppendDirect(Command(kEsc, '{'));
    else
        AppendDirect(Command(kEsc, '{', on != 0));
}

void SetAbsPosition(int32_t pos) {
    AppendDirect(Command(kEsc, '$', LowByte(pos), HighByte(pos)));
}

void SetTextAlignment(int32_t n) {
    if (InRange(n, 0, 3))
        AppendDirect(Command(kEsc, 'a', n));
}

void TextSaveSpool(const NadrelChar *text) {
    if (!SpoolIsPastCapacity())
        AppendPieces({FirstCounted(Convert(text))});
}

void CutPaper(uint32_t mode) {
    AppendDirect(Command(kGs, 'V', mode == 1));
}

void FeedToMark() {
    AppendDirect(Command(kEsc, 'z', kEsc, 'y'));
}

void SetPositionFromMark(int32_t dots) {
    AppendDirect(Command(kEsc, 'P', LowByte(dots), HighByte(dots)));
}

void SetMarkUseMode(uint32_t on) {
    AppendDirect(Command(kGs, 's', on != 0));
}

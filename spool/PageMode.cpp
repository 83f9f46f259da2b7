#include "spool/Spool.h"

using namespace nadrel;

namespace {

constexpr uint8_t kLine = '1';
constexpr uint8_t kEllipse = '2';

// A command that the printer knows in page mode alone: left out in standard mode. Whether it was appended.
bool AppendOnPage(Bytes command) {
    return PageModeFlag != 0 && AppendDirect(command);
}

void AppendOnPageIfByte(uint8_t letter, int32_t n) {
    if (IsByte(n))
        AppendOnPage(Command(kEsc, letter, n));
}

// Appended in either mode, and not at all with a thickness out of range.
void Draw(uint8_t shape, int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t thickness) {
    if (IsByte(thickness))
        AppendDirect(Command(kEsc, 'g', shape, LowByte(x1), HighByte(x1), LowByte(y1), HighByte(y1),
                             LowByte(x2), HighByte(x2), LowByte(y2), HighByte(y2), thickness));
}

} // namespace

void SetPageMode() {
    if (AppendDirect(Command(kEsc, 'L')))
        PageModeFlag = 1;
}

void Page_SetStandardMode() {
    if (AppendDirect(Command(kEsc, 'S')))
        PageModeFlag = 0;
}

void Page_ClearCurrentData() {
    AppendOnPage(Command(kCan));
}

void Page_Print() {
    AppendOnPage(Command(kEsc, kFf));
}

void Page_Print_StandardMode() {
    if (AppendOnPage(Command(kFf)))
        PageModeFlag = 0;
}

void Page_SetArea(int32_t x, int32_t y, int32_t width, int32_t height) {
    AppendOnPage(Command(kEsc, 'W', LowByte(x), HighByte(x), LowByte(y), HighByte(y), LowByte(width),
                         HighByte(width), LowByte(height), HighByte(height)));
}

void Page_SetDirection(int32_t n) {
    if (InRange(n, 0, 3))
        AppendOnPage(Command(kEsc, 'T', n));
}

void Page_SetPosition(int32_t x, int32_t y) {
    AppendOnPage(PositionCommand(x, y));
}

void Page_Newline() {
    AppendOnPage(Command(kLf));
}

void Page_DotFeed(int32_t n) {
    AppendOnPageIfByte('J', n);
}

void Page_LineFeed(int32_t n) {
    AppendOnPageIfByte('d', n);
}

// Unlike a line, a box with a thickness out of range is drawn, with thickness 0.
void Page_DrawBox(int32_t x, int32_t y, int32_t width, int32_t height, int32_t thickness) {
    if (PageModeFlag == 0)
        return;
    AppendDirect({PositionCommand(x, y), Command(kGs, 'i', LowByte(width), HighByte(width), LowByte(height),
                                                 HighByte(height), InRangeOrZero(thickness, 0, 255))});
}

void Page_DrawLine(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t thickness) {
    Draw(kLine, x1, y1, x2, y2, thickness);
}

void Page_DrawEllipse(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t thickness) {
    Draw(kEllipse, x1, y1, x2, y2, thickness);
}

void InitPageMode(int32_t x, int32_t y, int32_t width, int32_t height) {
    if (SpoolIsPastCapacity())
        return;
    InitPrinterStatus();
    SetPageMode();
    Page_SetArea(x, y, width, height);
    Page_ClearCurrentData();
}

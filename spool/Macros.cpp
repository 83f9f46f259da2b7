#include "spool/Spool.h"

#include <algorithm>

using namespace nadrel;

namespace {

// ESC FS '+' 01 00 nL nH, then n bytes that the printer keeps as its macro.
constexpr auto MacroHeader(int32_t n) {
    return Command(kEsc, 0x1C, '+', 0x01, 0x00, LowByte(n), HighByte(n));
}

} // namespace

void SetMarco_Start() {
    MacroStartMark = SpoolLength;
}

// The body is sent as the macro and its old place is sent as zeros, which printers ignore: the spool length
// does not move back.
void SetMacro_End() {
    const int32_t mark = MacroStartMark;
    const int32_t end = SpoolLength;
    const int64_t length = static_cast<int64_t>(end) - mark;
    if (!SpoolStorage::Holds(mark, length))
        return;
    const int32_t n = static_cast<int32_t>(length);
    if (!AppendPieces({MacroHeader(n), Bytes(SpoolBuffer.At(mark), static_cast<size_t>(n))}))
        return;
    std::fill_n(SpoolBuffer.Write(mark, n), n, uint8_t{0});
    SpoolBuffer.ClearFrom(SpoolLength);
}

void SetMacro_FontSize_FontTable(int32_t size, int32_t table) {
    if (InRange(size, 0, 3) && IsCodeTable(table, 50))
        AppendPieces({MacroHeader(6), Command(kEsc, '!', size, kEsc, 't', table)});
}

void Initialize_Macro() {
    AppendPieces({MacroHeader(0)});
}

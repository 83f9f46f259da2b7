#include "tools/HexDump.h"

namespace tool {
namespace {

constexpr size_t kBytesPerLine = 16;
} // namespace

std::string HexDigits(uint8_t byte) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    return {kDigits[byte >> 4], kDigits[byte & 0x0F]};
}

void HexDump::Add(std::span<const uint8_t> bytes) {
    for (const uint8_t byte : bytes) {
        if (column != 0)
            out.put(column == kBytesPerLine ? '\n' : ' ');
        column = column % kBytesPerLine + 1;
        out << HexDigits(byte);
    }
}

void HexDump::Finish() {
    if (column != 0)
        out.put('\n');
    column = 0;
}

} // namespace tool

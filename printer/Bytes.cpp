#include "printer/Bytes.h"

namespace printer {

std::string HexOf(ByteView bytes) {
    static constexpr char Digits[] = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 3);
    for (const uint8_t byte : bytes) {
        if (!hex.empty())
            hex += ' ';
        hex += Digits[byte >> 4];
        hex += Digits[byte & 15];
    }
    return hex;
}

} // namespace printer

#include "platform/linux/SystemText.h"

#include "platform/linux/CodePageUtf8.h"

namespace platform {

namespace {

bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// Moves `text` behind the character that it gives.
char32_t TakeCharacter(const char16_t *&text) {
    const char16_t first = *text++;
    if (!IsHighSurrogate(first) && !IsLowSurrogate(first))
        return first;
    if (IsLowSurrogate(first) || !IsLowSurrogate(*text))
        return kReplacementCharacter;
    return 0x10000 + ((first & char32_t{0x3FF}) << 10 | (*text++ & char32_t{0x3FF}));
}

} // namespace

std::string ToSystemText(const char16_t *text) {
    std::string converted;
    while (text != nullptr && *text != 0) {
        uint8_t bytes[4];
        const size_t size = EncodeUtf8(TakeCharacter(text), bytes);
        converted.append(bytes, bytes + size);
    }
    return converted;
}

} // namespace platform

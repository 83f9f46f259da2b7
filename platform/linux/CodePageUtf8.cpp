#include "platform/linux/CodePageUtf8.h"

#include <algorithm>
#include <iterator>

namespace platform {

namespace {

// What may follow a first byte: the range of the second byte and how many bytes come in all. Bytes after the
// second are 80..BF.
struct Form {
    uint8_t firstByte, lastByte;
    uint8_t lowest, highest;
    uint8_t length;
};

constexpr Form kForms[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

uint8_t TakeByte(std::string_view &text) {
    const auto byte = static_cast<uint8_t>(text.front());
    text.remove_prefix(1);
    return byte;
}

bool StartsBetween(std::string_view text, uint8_t lowest, uint8_t highest) {
    if (text.empty())
        return false;
    const auto byte = static_cast<uint8_t>(text.front());
    return lowest <= byte && byte <= highest;
}

char32_t TakeRest(const Form &form, char32_t character, std::string_view &text) {
    uint8_t lowest = form.lowest;
    uint8_t highest = form.highest;
    for (int left = form.length - 1; left > 0; --left) {
        if (!StartsBetween(text, lowest, highest))
            return kReplacementCharacter;
        character = character << 6 | (TakeByte(text) & 0x3F);
        lowest = 0x80;
        highest = 0xBF;
    }
    return character;
}

uint8_t Continuation(char32_t bits) {
    return static_cast<uint8_t>(0x80 | (bits & 0x3F));
}

} // namespace

size_t EncodeUtf8(char32_t character, uint8_t (&bytes)[4]) {
    size_t length = 0;
    if (character < 0x80) {
        bytes[length++] = static_cast<uint8_t>(character);
        return length;
    }
    if (character < 0x800) {
        bytes[length++] = static_cast<uint8_t>(0xC0 | character >> 6);
    } else if (character < 0x10000) {
        bytes[length++] = static_cast<uint8_t>(0xE0 | character >> 12);
        bytes[length++] = Continuation(character >> 6);
    } else {
        bytes[length++] = static_cast<uint8_t>(0xF0 | character >> 18);
        bytes[length++] = Continuation(character >> 12);
        bytes[length++] = Continuation(character >> 6);
    }
    bytes[length++] = Continuation(character);
    return length;
}

char32_t TakeUtf8(std::string_view &text) {
    const uint8_t first = TakeByte(text);
    if (first < 0x80)
        return first;
    const auto *form = std::find_if(std::begin(kForms), std::end(kForms), [=](const Form &candidate) {
        return candidate.firstByte <= first && first <= candidate.lastByte;
    });
    if (form == std::end(kForms))
        return kReplacementCharacter;
    return TakeRest(*form, first & (0x7Fu >> form->length), text);
}

} // namespace platform

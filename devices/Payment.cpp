#include "api/NadrelPrinter.h"

#include "devices/Request.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace {

using Text = std::u16string_view;

constexpr int32_t kWritten = 1;
constexpr int32_t kFirstTooLong = -1;
constexpr int32_t kThirdWrong = -4;

constexpr size_t kIdentifierLength = 8;

// Offsets and sizes of the payment request's fields, two digits a byte.
constexpr size_t kFirstAt = 3, kFirstBytes = 6;
constexpr size_t kSecondAt = 9, kSecondBytes = 4;
constexpr size_t kThirdAt = 13, kThirdBytes = 3;
constexpr size_t kRequestLength = 16;

Text TextOf(const char16_t *text) {
    return text == nullptr ? Text() : Text(text);
}

int32_t LengthOf(Text text) {
    return static_cast<int32_t>(text.size());
}

// What is not a digit counts with the low four bits of its distance from '0'.
constexpr unsigned Nibble(char16_t character) {
    return (static_cast<unsigned>(character) - '0') & 0x0F;
}

// Packs up to two digits a byte, right-aligned in a field that is zero.
void PackDigits(Text digits, std::span<uint8_t> field) {
    const size_t pad = 2 * field.size() - digits.size();
    for (size_t i = 0; i < digits.size(); ++i) {
        const size_t place = pad + i;
        const unsigned shift = place % 2 == 0 ? 4 : 0;
        field[place / 2] = static_cast<uint8_t>(field[place / 2] | Nibble(digits[i]) << shift);
    }
}

} // namespace

int32_t SetTermialID(const NadrelChar *id) {
    const Text identifier = TextOf(id);
    if (identifier.size() != kIdentifierLength)
        return LengthOf(identifier);
    std::array<uint8_t, 2 + kIdentifierLength> record = {0x1B, 'm'};
    for (size_t i = 0; i < kIdentifierLength; ++i)
        record[2 + i] = static_cast<uint8_t>(identifier[i] & 0xFF);
    nadrel::WriteWhole(record);
    return kWritten;
}

int32_t SetPaymentReq(uint32_t type, const NadrelChar *first, const NadrelChar *second,
                      const NadrelChar *third) {
    const Text fields[] = {TextOf(first), TextOf(second), TextOf(third)};
    if (fields[0].size() > 2 * kFirstBytes)
        return kFirstTooLong;
    if (fields[1].size() != 2 * kSecondBytes)
        return LengthOf(fields[1]);
    if (fields[2].size() != 2 * kThirdBytes)
        return kThirdWrong;
    const uint8_t kind = (type & 0xFF) != 0 ? 1 : 0;
    std::array<uint8_t, kRequestLength> record = {0x1B, 'n', kind};
    const std::span<uint8_t> bytes(record);
    PackDigits(fields[0], bytes.subspan(kFirstAt, kFirstBytes));
    PackDigits(fields[1], bytes.subspan(kSecondAt, kSecondBytes));
    PackDigits(fields[2], bytes.subspan(kThirdAt, kThirdBytes));
    nadrel::WriteWhole(record);
    return kWritten;
}

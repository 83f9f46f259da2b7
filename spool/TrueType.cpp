#include "spool/Spool.h"

#include <string_view>

using namespace nadrel;

namespace {

constexpr auto kSelectFont = Command(kEsc, 'g', 'F');
constexpr auto kNameEnd = Command(0);
constexpr auto kTextEnd = Command(0, 0, kLf);
constexpr int32_t kTextHeaderLength = 5;

// The printer takes UTF-16 high byte first, whatever the machine's own order is.
void WriteHighByteFirst(int32_t position, std::u16string_view text) {
    uint8_t *to = SpoolBuffer.Write(position, static_cast<int32_t>(2 * text.size()));
    for (const char16_t unit : text) {
        *to++ = static_cast<uint8_t>(unit >> 8);
        *to++ = static_cast<uint8_t>(unit & 0xFF);
    }
}

} // namespace

int32_t SelectForTTF(const NadrelChar *name) {
    const Bytes fileName = FirstCounted(Convert(name));
    return AppendAndStoreResult({kSelectFont, fileName, kNameEnd});
}

void SetFontForTTF(const NadrelChar *name) {
    const Bytes fileName = FirstCounted(Convert(name));
    AppendDirect({kSelectFont, fileName, kNameEnd});
}

int32_t PrintSpoolForTTF(const NadrelChar *text, uint8_t p1, uint8_t p2) {
    const std::u16string_view units = text == nullptr ? std::u16string_view() : std::u16string_view(text);
    const int32_t start = SpoolLength;
    const Bytes inMachineOrder(reinterpret_cast<const uint8_t *>(units.data()), 2 * units.size());
    const int32_t result = AppendAndStoreResult({Command(kEsc, 'g', 'U', p1, p2), inMachineOrder, kTextEnd});
    if (LinkIsOpen() && SpoolLength != start)
        WriteHighByteFirst(start + kTextHeaderLength, units);
    return result;
}

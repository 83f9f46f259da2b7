#include "platform/TextConversion.h"

#include "platform/windows/System.h"
#include "platform/windows/WideText.h"

#include <algorithm>

namespace platform {

namespace {

// UTF-16 units converted by one call to the system.
constexpr size_t kBlock = 65536;

// The most bytes that one unit may become.
size_t BytesPerUnit() {
    CPINFO page;
    return GetCPInfo(CP_ACP, &page) ? page.MaxCharSize : 4;
}

// The units of the first `limit`, or one more where the last of these is half a surrogate pair.
size_t WholeCharacters(const char16_t *text, size_t length, size_t limit) {
    const size_t count = std::min(length, limit);
    const bool splitsPair =
        count < length && IS_HIGH_SURROGATE(text[count - 1]) && IS_LOW_SURROGATE(text[count]);
    return splitsPair ? count + 1 : count;
}

// The bytes written; without room for any (0 of 0), the bytes that there must be room for.
size_t Convert(const char16_t *text, size_t length, uint8_t *bytes, size_t room) {
    return static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, Wide(text), static_cast<int>(length),
                                                   reinterpret_cast<char *>(bytes), static_cast<int>(room),
                                                   nullptr, nullptr));
}

} // namespace

// The system writes a part of what does not fit and then fails, so it is asked first where that may be. What does
// not fit is tried in halves, down to the one character that it is about.
size_t ToAnsi(const char16_t *text, size_t length, uint8_t *bytes, size_t capacity) {
    const size_t bytesPerUnit = BytesPerUnit();
    size_t read = 0;
    size_t written = 0;
    for (size_t block = kBlock; read < length && block != 0;) {
        const size_t units = WholeCharacters(text + read, length - read, block);
        const size_t room = std::min(capacity - written, 4 * kBlock);
        if (units * bytesPerUnit > room && (room == 0 || Convert(text + read, units, nullptr, 0) > room)) {
            block = std::min(block, units) / 2;
            continue;
        }
        written += Convert(text + read, units, bytes + written, room);
        read += units;
    }
    return written;
}

std::u16string FromAnsi(const char *text) {
    if (text == nullptr)
        return {};
    const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    std::u16string converted(static_cast<size_t>(std::max(length, 1)), u'\0');
    MultiByteToWideChar(CP_ACP, 0, text, -1, reinterpret_cast<wchar_t *>(converted.data()), length);
    converted.pop_back(); // the terminator
    return converted;
}

} // namespace platform

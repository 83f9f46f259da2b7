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

bool IsPair(const char16_t *text, size_t length) {
    return length >= 2 && IS_HIGH_SURROGATE(text[0]) && IS_LOW_SURROGATE(text[1]);
}

size_t UnitsBeforePair(const char16_t *text, size_t length) {
    size_t units = 0;
    while (units < length && !IsPair(text + units, length - units))
        ++units;
    return units;
}

// The bytes written; without room for any (0 of 0), the bytes that there must be room for.
size_t Convert(const char16_t *text, size_t length, uint8_t *bytes, size_t room) {
    return static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, Wide(text), static_cast<int>(length),
                                                   reinterpret_cast<char *>(bytes), static_cast<int>(room),
                                                   nullptr, nullptr));
}

struct Progress {
    size_t read = 0;    // UTF-16 units
    size_t written = 0; // bytes
};

// Of text without pairs. The system writes a part of what does not fit and then fails, so it is asked first
// where that may be. What does not fit is tried in halves, down to the one character that it is about.
Progress ConvertRun(const char16_t *text, size_t length, uint8_t *bytes, size_t capacity) {
    const size_t bytesPerUnit = BytesPerUnit();
    Progress done;
    for (size_t block = kBlock; done.read < length && block != 0;) {
        const char16_t *const next = text + done.read;
        const size_t units = std::min(length - done.read, block);
        const size_t room = std::min(capacity - done.written, 4 * kBlock);
        if (units * bytesPerUnit > room && (room == 0 || Convert(next, units, nullptr, 0) > room)) {
            block = units / 2;
            continue;
        }
        done.written += Convert(next, units, bytes + done.written, room);
        done.read += units;
    }
    return done;
}

// The system takes a pair that the page lacks for two characters.
size_t ConvertPair(const char16_t *pair, uint8_t *bytes, size_t capacity) {
    uint8_t converted[8];
    const size_t count = Convert(pair, 2, converted, sizeof converted);
    const bool isLacking = count == 2 && converted[0] == '?' && converted[1] == '?';
    const size_t wanted = isLacking ? 1 : count;
    if (wanted > capacity)
        return 0;
    std::copy_n(converted, wanted, bytes);
    return wanted;
}

} // namespace

size_t ToAnsi(const char16_t *text, size_t length, uint8_t *bytes, size_t capacity) {
    Progress done;
    while (done.read < length) {
        const char16_t *const next = text + done.read;
        const size_t units = UnitsBeforePair(next, length - done.read);
        const Progress run = ConvertRun(next, units, bytes + done.written, capacity - done.written);
        done = {done.read + run.read, done.written + run.written};
        if (run.read < units || done.read == length)
            break;
        const size_t pair = ConvertPair(text + done.read, bytes + done.written, capacity - done.written);
        if (pair == 0)
            break;
        done = {done.read + 2, done.written + pair};
    }
    return done.written;
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

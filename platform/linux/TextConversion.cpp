#include "platform/TextConversion.h"

#include "platform/linux/AnsiCodePage.h"
#include "platform/linux/CodePage.h"
#include "platform/linux/CodePageUtf8.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string_view>
#include <vector>

namespace platform {

namespace {

constexpr uint32_t kUtf8CodePage = 65001;

// The place of the code page among those with tables, or their count for UTF-8. 0 is 1252.
std::atomic<size_t> currentPage{0};

bool IsUtf8(size_t page) {
    return page == CodePageCount();
}

bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

constexpr size_t kBlock = 16;

// Copies a block of ASCII; false, and nothing is copied, when there is another character in it. Each step is
// one that compilers turn into a few wide instructions.
bool CopyAsciiBlock(const char16_t *text, uint8_t *bytes) {
    uint16_t block[kBlock];
    uint64_t fours[kBlock / 4];
    std::memcpy(block, text, sizeof block);
    std::memcpy(fours, text, sizeof fours);
    if (((fours[0] | fours[1] | fours[2] | fours[3]) & 0xFF80'FF80'FF80'FF80) != 0)
        return false;
    uint8_t narrow[kBlock];
    for (size_t i = 0; i < kBlock; ++i)
        narrow[i] = static_cast<uint8_t>(block[i]);
    std::memcpy(bytes, narrow, sizeof narrow);
    return true;
}

// Copies ASCII up to the first other character, at most `count` characters, and returns their number: by
// blocks, then four at a time, whose bytes close up in two steps as one word, in the right order on machines
// of either byte order.
size_t CopyAscii(const char16_t *text, uint8_t *bytes, size_t count) {
    size_t done = 0;
    while (count - done >= kBlock && CopyAsciiBlock(text + done, bytes + done))
        done += kBlock;
    for (; count - done >= 4; done += 4) {
        uint64_t four;
        std::memcpy(&four, text + done, sizeof four);
        if ((four & 0xFF80'FF80'FF80'FF80) != 0)
            break;
        four = (four | four >> 8) & 0x0000'FFFF'0000'FFFF;
        const auto narrow = static_cast<uint32_t>(four | four >> 16);
        std::memcpy(bytes + done, &narrow, sizeof narrow);
    }
    for (; done < count && text[done] < 0x80; ++done)
        bytes[done] = static_cast<uint8_t>(text[done]);
    return done;
}

struct Character {
    char32_t code; // a lone surrogate stands for itself
    size_t units;
};

Character FirstCharacter(const char16_t *text, size_t length) {
    if (length < 2 || !IsHighSurrogate(text[0]) || !IsLowSurrogate(text[1]))
        return {text[0], 1};
    return {0x10000 + ((text[0] & char32_t{0x3FF}) << 10 | (text[1] & char32_t{0x3FF})), 2};
}

// No page has what takes two units.
uint16_t BytesOf(size_t page, char32_t character) {
    if (character > 0xFFFF)
        return '?';
    const auto unit = static_cast<char16_t>(character);
    const uint16_t own = BytesInCodePage(page, unit);
    const uint16_t value = own != 0 ? own : NearBytesInCodePage(page, unit);
    return value != 0 ? value : uint16_t{'?'};
}

size_t EncodeInTables(size_t page, char32_t character, uint8_t (&bytes)[4]) {
    const uint16_t value = BytesOf(page, character);
    if (value < 0x100) {
        bytes[0] = static_cast<uint8_t>(value);
        return 1;
    }
    bytes[0] = static_cast<uint8_t>(value >> 8);
    bytes[1] = static_cast<uint8_t>(value & 0xFF);
    return 2;
}

size_t Encode(size_t page, char32_t character, uint8_t (&bytes)[4]) {
    if (!IsUtf8(page))
        return EncodeInTables(page, character, bytes);
    const bool lone = IsHighSurrogate(character) || IsLowSurrogate(character);
    return EncodeUtf8(lone ? kReplacementCharacter : character, bytes);
}

void AppendUtf16(char32_t character, std::u16string &text) {
    if (character > 0xFFFF) {
        text += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
        text += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    } else {
        text += static_cast<char16_t>(character);
    }
}

// What the bytes of a page mean. The tables go from characters to bytes only; turned round for one text they
// cost a fraction of a millisecond. A pair that the page reads but never writes means nothing here.
class CodePageReader {
  public:
    explicit CodePageReader(size_t page)
        : characters_(0x10000, static_cast<char16_t>(kReplacementCharacter)) {
        for (uint32_t character = 0; character < 0x10000; ++character) {
            const auto unit = static_cast<char16_t>(character);
            const uint16_t bytes = unit < 0x80 ? unit : BytesInCodePage(page, unit);
            if (bytes != 0)
                characters_[bytes] = unit;
        }
    }

    // Takes the first character off non-empty text. A byte that stands for no character begins a pair; when
    // the pair means nothing, an ASCII byte in it is left to stand for itself.
    char16_t Take(std::string_view &text) const {
        const auto first = static_cast<uint8_t>(text[0]);
        const auto second = static_cast<uint8_t>(text.size() > 1 ? text[1] : 0);
        const char16_t single = characters_[first];
        const char16_t pair = characters_[static_cast<size_t>(first << 8 | second)];
        const bool takesOne =
            single != kReplacementCharacter || (pair == kReplacementCharacter && second < 0x80);
        text.remove_prefix(takesOne ? 1 : 2);
        return single != kReplacementCharacter ? single : pair;
    }

  private:
    std::vector<char16_t> characters_; // by the number that the bytes make
};

void AppendFromCodePage(size_t page, std::string_view rest, std::u16string &text) {
    const CodePageReader reader(page);
    while (!rest.empty())
        text += reader.Take(rest);
}

void AppendFromUtf8(std::string_view rest, std::u16string &text) {
    while (!rest.empty())
        AppendUtf16(TakeUtf8(rest), text);
}

} // namespace

bool SetAnsiCodePage(uint32_t codePage) {
    const auto page = codePage == kUtf8CodePage ? CodePageCount() : FindCodePage(codePage);
    if (page)
        currentPage.store(*page, std::memory_order_relaxed);
    return page.has_value();
}

uint32_t AnsiCodePage() {
    const size_t page = currentPage.load(std::memory_order_relaxed);
    return IsUtf8(page) ? kUtf8CodePage : CodePageNumber(page);
}

size_t ToAnsi(const char16_t *text, size_t length, uint8_t *bytes, size_t capacity) {
    const size_t page = currentPage.load(std::memory_order_relaxed);
    size_t read = 0;
    size_t written = 0;
    for (;;) {
        const size_t ascii =
            CopyAscii(text + read, bytes + written, std::min(length - read, capacity - written));
        read += ascii;
        written += ascii;
        if (read == length || written == capacity)
            return written;
        const Character character = FirstCharacter(text + read, length - read);
        uint8_t encoded[4];
        const size_t size = Encode(page, character.code, encoded);
        if (size > capacity - written)
            return written;
        std::copy_n(encoded, size, bytes + written);
        read += character.units;
        written += size;
    }
}

std::u16string FromAnsi(const char *text) {
    const std::string_view bytes = text == nullptr ? std::string_view() : std::string_view(text);
    const auto ascii = std::find_if(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
    std::u16string converted(bytes.begin(), ascii);
    const std::string_view rest(ascii, bytes.end());
    const size_t page = currentPage.load(std::memory_order_relaxed);
    if (IsUtf8(page))
        AppendFromUtf8(rest, converted);
    else if (!rest.empty())
        AppendFromCodePage(page, rest, converted);
    return converted;
}

} // namespace platform

#include "printer/Text.h"

#include <algorithm>
#include <cerrno>
#include <iconv.h>

namespace printer {

// One of the system's converters to UTF-32; one byte of text is one character where the system has none.
class TextDecoder::Converter {
  public:
    explicit Converter(const CodeTable &table)
        : handle_(iconv_open("UTF-32LE", std::string(table.encoding).c_str())),
          utf8_(table.encoding == "UTF-8") {}
    ~Converter() {
        if (IsOpen())
            iconv_close(handle_);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    // Takes one character off the front of the bytes.
    Character Next(ByteView &bytes) {
        for (size_t length = 1; IsOpen() && length <= std::min<size_t>(bytes.size(), 4); ++length) {
            char32_t code = 0;
            if (!Convert(bytes.first(length), code))
                continue;
            bytes = bytes.subspan(length);
            return {code, length > 1 && !utf8_};
        }
        const char32_t code = IsOpen() ? Replacement : char32_t{bytes[0]};
        bytes = bytes.subspan(1);
        return {code};
    }

  private:
    bool IsOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    bool Convert(ByteView bytes, char32_t &code) {
        char input[4] = {}, output[4] = {};
        for (size_t i = 0; i < std::min(bytes.size(), sizeof input); ++i)
            input[i] = static_cast<char>(bytes[i]);
        char *from = input, *to = output;
        size_t inputLeft = bytes.size(), outputLeft = sizeof output;
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        if (iconv(handle_, &from, &inputLeft, &to, &outputLeft) == static_cast<size_t>(-1))
            return false;
        // Some converters keep a character back, in case an accent follows.
        iconv(handle_, nullptr, nullptr, &to, &outputLeft);
        if (outputLeft != 0)
            return false;
        for (int i = 3; i >= 0; --i)
            code = code << 8 | static_cast<uint8_t>(output[i]);
        return true;
    }

    iconv_t handle_;
    bool utf8_;
};

TextDecoder::Converter &TextDecoder::ConverterFor(const CodeTable &table) {
    std::shared_ptr<Converter> &converter = converters_[table.encoding];
    if (!converter)
        converter = std::make_shared<Converter>(table);
    return *converter;
}

std::vector<Character> TextDecoder::Decode(ByteView bytes, const CodeTable &table) {
    Converter &converter = ConverterFor(table);
    std::vector<Character> characters;
    characters.reserve(bytes.size());
    while (!bytes.empty())
        characters.push_back(converter.Next(bytes));
    return characters;
}

std::string TextDecoder::ToUtf8(ByteView bytes, const CodeTable &table) {
    std::string text;
    for (const Character &character : Decode(bytes, table))
        AppendUtf8(text, character.code);
    return text;
}

void AppendUtf8(std::string &text, char32_t code) {
    const auto append = [&text](char32_t value) { text += static_cast<char>(static_cast<uint8_t>(value)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        append(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        append(0x80 | (code >> 6 & 0x3F));
        append(0x80 | (code & 0x3F));
    } else {
        append(0xF0 | code >> 18);
        append(0x80 | (code >> 12 & 0x3F));
        append(0x80 | (code >> 6 & 0x3F));
        append(0x80 | (code & 0x3F));
    }
}

std::vector<char32_t> DecodeUtf16(ByteView bytes) {
    std::vector<char32_t> characters;
    const auto unitAt = [bytes](size_t at) { return static_cast<char32_t>(bytes[at] << 8 | bytes[at + 1]); };
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const char32_t unit = unitAt(at), next = at + 3 < bytes.size() ? unitAt(at + 2) : 0;
        if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            characters.push_back(0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            at += 2;
        } else {
            characters.push_back(unit >= 0xD800 && unit < 0xE000 ? Replacement : unit);
        }
    }
    return characters;
}

std::vector<char32_t> DecodeUtf8(std::string_view text) {
    static constexpr CodeTable Utf8 = {0, "UTF-8", "UTF-8"};
    const auto *first = reinterpret_cast<const uint8_t *>(text.data());
    TextDecoder decoder;
    std::vector<char32_t> characters;
    for (const Character &character : decoder.Decode({first, text.size()}, Utf8))
        characters.push_back(character.code);
    return characters;
}

} // namespace printer

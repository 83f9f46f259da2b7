#pragma once

#include "printer/Bytes.h"
#include "printer/FirmwareTables.h"

#include <map>
#include <memory>
#include <string>

namespace printer {

struct Character {
    char32_t code;
    bool wide = false; // takes two cells: its code page has it as two bytes or more
};

constexpr char32_t Replacement = U'\uFFFD'; // for bytes that mean nothing

// Reads text in the code tables. Not shared between threads.
class TextDecoder {
  public:
    std::vector<Character> Decode(ByteView bytes, const CodeTable &table);
    std::string ToUtf8(ByteView bytes, const CodeTable &table);

  private:
    class Converter;
    Converter &ConverterFor(const CodeTable &table);

    std::map<std::string_view, std::shared_ptr<Converter>> converters_; // by encoding
};

void AppendUtf8(std::string &text, char32_t code);

// UTF-16 with the high byte first; lone surrogates become replacements, an odd last byte is left out.
std::vector<char32_t> DecodeUtf16(ByteView bytes);

// UTF-8 into characters; for texts of this program's own.
std::vector<char32_t> DecodeUtf8(std::string_view text);

} // namespace printer

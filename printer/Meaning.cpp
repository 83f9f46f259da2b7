#include "printer/Meaning.h"

#include <cstdlib>

// A form's meaning is a sentence with values in braces; n counts the parameter bytes from 0:
//   {bn}  byte    {wn}  two bytes, low byte first    {cn}  byte as a character    {highn} {lown}  half a
//   byte, plus 1 {bn:a|b|c}  a for 0, b for 1 ... or the number    {bcdm-n}  the decimal digits of bytes m to
//   n {text} {ascii} {utf16}  what follows the fixed parameters, quoted    {count}  its length {codetable}
//   the name of the code table    {note}  why the command is incomplete or bad
namespace printer {
namespace {

void AppendCharacter(std::string &text, char32_t code) {
    if (code == '"' || code == '\\')
        text += '\\';
    if (code >= 0x20 && code != 0x7F) {
        AppendUtf8(text, code);
    } else {
        const auto byte = static_cast<uint8_t>(code);
        text += "\\x" + HexOf({&byte, 1});
    }
}

ByteView ContentOf(const Command &command) {
    return command.form->length == Length::Fixed ? command.Parameters() : command.Content();
}

std::string QuoteText(ByteView bytes, uint8_t codeTable, TextDecoder &decoder) {
    std::string text = "\"";
    for (const Character &character : decoder.Decode(bytes, FindCodeTable(codeTable)))
        AppendCharacter(text, character.code);
    return text + '"';
}

std::string QuoteUtf16(ByteView bytes) {
    std::string text = "\"";
    for (const char32_t code : DecodeUtf16(bytes))
        AppendCharacter(text, code);
    return text + '"';
}

std::string QuoteAscii(ByteView bytes) {
    std::string text = "\"";
    for (const uint8_t byte : bytes)
        AppendCharacter(text, byte < 0x80 ? byte : Replacement);
    return text + '"';
}

// The choice-th of names separated by '|'; the number itself when there are fewer.
std::string Choose(std::string_view names, size_t choice) {
    for (size_t i = 0; i < choice; ++i) {
        const size_t bar = names.find('|');
        if (bar == names.npos)
            return std::to_string(choice);
        names.remove_prefix(bar + 1);
    }
    return std::string(names.substr(0, names.find('|')));
}

size_t NumberIn(std::string_view text) {
    size_t number = 0;
    for (const char letter : text.substr(0, text.find_first_not_of("0123456789")))
        number = number * 10 + static_cast<size_t>(letter - '0');
    return number;
}

std::string Digits(const Command &command, std::string_view range) {
    std::string digits;
    for (size_t i = NumberIn(range); i <= NumberIn(range.substr(range.find('-') + 1)); ++i)
        digits += HexOf(command.Parameters().subspan(i, 1));
    return digits;
}

std::string Letter(uint8_t byte) {
    return byte > 0x20 && byte < 0x7F ? std::string{'\'', static_cast<char>(byte), '\''} : HexOf({&byte, 1});
}

std::string NumberValue(const Command &command, std::string_view name) {
    const size_t index = NumberIn(name.substr(name.find_first_of("0123456789")));
    if (name.starts_with("bcd"))
        return Digits(command, name.substr(3));
    if (name.starts_with("high"))
        return std::to_string((command.Byte(index) >> 4 & 7) + 1);
    if (name.starts_with("low"))
        return std::to_string((command.Byte(index) & 7) + 1);
    if (name.starts_with("w"))
        return std::to_string(command.Word(index));
    if (name.starts_with("c"))
        return Letter(command.Byte(index));
    const size_t colon = name.find(':');
    return colon == name.npos ? std::to_string(command.Byte(index))
                              : Choose(name.substr(colon + 1), command.Byte(index));
}

std::string Value(const Command &command, std::string_view name, uint8_t codeTable, TextDecoder &decoder) {
    if (name == "text")
        return QuoteText(ContentOf(command), codeTable, decoder);
    if (name == "ascii")
        return QuoteAscii(ContentOf(command));
    if (name == "utf16")
        return QuoteUtf16(ContentOf(command));
    if (name == "count")
        return std::to_string(ContentOf(command).size()) + " bytes";
    if (name == "codetable")
        return std::string(FindCodeTable(command.Byte(0)).name);
    if (name == "note")
        return command.note;
    return NumberValue(command, name);
}

} // namespace

std::string MeaningOf(const Command &command, uint8_t codeTable, TextDecoder &decoder) {
    std::string meaning;
    std::string_view rest = command.form->meaning;
    while (!rest.empty()) {
        const size_t open = rest.find('{'), close = rest.find('}');
        meaning += rest.substr(0, open);
        if (open == rest.npos)
            break;
        meaning += Value(command, rest.substr(open + 1, close - open - 1), codeTable, decoder);
        rest.remove_prefix(close + 1);
    }
    const bool isSpecial = command.form->prefix.empty();
    return isSpecial || command.note.empty() ? meaning : meaning + " (" + command.note + ")";
}

} // namespace printer

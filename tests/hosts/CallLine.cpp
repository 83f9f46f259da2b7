#include "tests/hosts/CallLine.h"

#include <charconv>
#include <stdexcept>

namespace hosts {
namespace {

[[noreturn]] void Refuse(std::string_view what, std::string_view rest) {
    throw std::runtime_error(std::string(what) + " expected at '" + std::string(rest) + "'");
}

bool Accept(std::string_view &rest, std::string_view word) {
    if (!rest.starts_with(word))
        return false;
    rest.remove_prefix(word.size());
    return true;
}

void SkipBlanks(std::string_view &rest) {
    while (Accept(rest, " ")) {
    }
}

// Digits of the base, at most `limit`.
uint64_t TakeDigits(std::string_view &rest, int base, size_t limit) {
    uint64_t value = 0;
    const char *const start = rest.data();
    const auto taken = std::from_chars(start, start + std::min(rest.size(), limit), value, base);
    if (taken.ec != std::errc())
        Refuse("a number", rest);
    rest.remove_prefix(static_cast<size_t>(taken.ptr - start));
    return value;
}

intptr_t TakeNumber(std::string_view &rest) {
    const bool isNegative = Accept(rest, "-");
    const int base = Accept(rest, "0x") ? 16 : 10;
    const auto magnitude = static_cast<intptr_t>(TakeDigits(rest, base, rest.size()));
    return isNegative ? -magnitude : magnitude;
}

char16_t TakeUnit(std::string_view &rest) {
    if (Accept(rest, "\\x"))
        return static_cast<char16_t>(TakeDigits(rest, 16, 2));
    if (Accept(rest, "\\u"))
        return static_cast<char16_t>(TakeDigits(rest, 16, 4));
    const char unit = rest.front();
    rest.remove_prefix(1);
    return static_cast<unsigned char>(unit);
}

} // namespace

CallLine::CallLine(std::string_view line) {
    name = line.substr(0, line.find('('));
    std::string_view rest = line.substr(name.size());
    if (!Accept(rest, "("))
        Refuse("(", rest);
    while (!Accept(rest, ")")) {
        TakeArgument(rest);
        SkipBlanks(rest);
        if (Accept(rest, ","))
            SkipBlanks(rest);
        else if (!rest.starts_with(")"))
            Refuse(", or )", rest);
    }
    if (!rest.empty())
        Refuse("the end", rest);
}

void CallLine::TakeArgument(std::string_view &rest) {
    if (Accept(rest, "null")) {
        arguments.push_back(0);
    } else if (Accept(rest, "b\"")) {
        const std::u16string units = TakeString(rest);
        byteTexts.emplace_back(units.begin(), units.end());
        arguments.push_back(reinterpret_cast<intptr_t>(byteTexts.back().c_str()));
    } else if (Accept(rest, "\"")) {
        texts.push_back(TakeString(rest));
        arguments.push_back(reinterpret_cast<intptr_t>(texts.back().c_str()));
    } else {
        arguments.push_back(TakeNumber(rest));
    }
}

std::u16string CallLine::TakeString(std::string_view &rest) {
    std::u16string units;
    while (!Accept(rest, "\"")) {
        if (rest.empty())
            Refuse("\"", rest);
        units += TakeUnit(rest);
    }
    return units;
}

} // namespace hosts

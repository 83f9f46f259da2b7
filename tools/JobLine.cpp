#include "tools/JobLine.h"

#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

namespace tool {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
constexpr std::string_view kNameCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789";
constexpr std::string_view kNumberCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789.";
constexpr size_t kShownAtMost = 40;

constexpr char kArgumentExpected[] = "a number, a character such as 'M' or a string in double quotes";

bool IsOneOf(char c, std::string_view characters) {
    return characters.find(c) != std::string_view::npos;
}

struct Escape {
    char32_t value;
    bool isUnicode;
};

class Scanner {
  public:
    explicit Scanner(std::string_view line) : rest(line) {}

    std::optional<JobLine> Line() {
        SkipBlanks();
        if (AtEnd())
            return std::nullopt;
        JobLine line{.name = Name()};
        SkipBlanks();
        if (!Accept('('))
            Unexpected("( after " + Shortened(line.name));
        line.arguments = Arguments();
        SkipBlanks();
        if (Accept(';'))
            SkipBlanks();
        if (!AtEnd())
            Unexpected("the end of the line or a comment after the call");
        return line;
    }

  private:
    // At the end of the line or at a comment.
    bool AtEnd() const { return rest.empty() || rest.front() == '#'; }

    bool Accept(char c) {
        if (rest.empty() || rest.front() != c)
            return false;
        rest.remove_prefix(1);
        return true;
    }

    void SkipBlanks() { Run(kBlanks); }

    // Takes the longest run of the characters, at most `limit`.
    std::string_view Run(std::string_view characters, size_t limit = std::string_view::npos) {
        const size_t length = std::min({rest.find_first_not_of(characters), rest.size(), limit});
        return TakeFront(length);
    }

    std::string_view TakeFront(size_t length) {
        const std::string_view front = rest.substr(0, length);
        rest.remove_prefix(length);
        return front;
    }

    // One UTF-8 character, which is valid.
    std::string_view Character() {
        auto end = rest.begin();
        utf8::unchecked::next(end);
        return TakeFront(static_cast<size_t>(end - rest.begin()));
    }

    [[noreturn]] void Unexpected(const std::string &expected) {
        if (AtEnd())
            throw LineFault("unexpected end of the line", expected);
        const bool isControl = static_cast<unsigned char>(rest.front()) < 0x20 || rest.front() == 0x7F;
        const std::string what = isControl ? "control character" : '"' + std::string(Character()) + '"';
        throw LineFault("unexpected " + what, expected);
    }

    std::string Name() {
        if (IsOneOf(rest.front(), kDigits) || !IsOneOf(rest.front(), kNameCharacters))
            Unexpected("the name of a function");
        return std::string(Run(kNameCharacters));
    }

    std::vector<Literal> Arguments() {
        std::vector<Literal> arguments;
        SkipBlanks();
        if (Accept(')'))
            return arguments;
        do {
            if (arguments.size() == kMostArguments)
                throw LineFault("there are too many arguments", std::to_string(kMostArguments) + " at most");
            SkipBlanks();
            arguments.push_back(Argument());
            SkipBlanks();
        } while (Accept(','));
        if (!Accept(')'))
            Unexpected(", or )");
        return arguments;
    }

    Literal Argument() {
        if (Accept('"'))
            return String();
        if (!rest.empty() && rest.front() == '\'')
            return CharacterLiteral();
        if (!rest.empty() && (rest.front() == '-' || IsOneOf(rest.front(), kNumberCharacters)))
            return Number();
        Unexpected(kArgumentExpected);
    }

    Literal Number() {
        const std::string_view start = rest;
        const bool isNegative = Accept('-');
        std::string_view digits = Run(kNumberCharacters);
        const std::string source = Shortened(start.substr(0, start.size() - rest.size()));
        const bool isHex = digits.starts_with("0x") || digits.starts_with("0X");
        if (isHex)
            digits.remove_prefix(2);
        else if (digits.size() > 1 && digits.front() == '0' &&
                 digits.find_first_not_of(kDigits) == digits.npos)
            throw LineFault("the number " + source + " begins with 0",
                            "a decimal number without leading zeros, or 0x and hexadecimal digits");
        return {.source = source, .number = Magnitude(digits, isHex, isNegative, source)};
    }

    static int64_t Magnitude(std::string_view digits, bool isHex, bool isNegative,
                             const std::string &source) {
        if (digits.empty() || digits.find_first_not_of(isHex ? kHexDigits : kDigits) != digits.npos)
            throw LineFault('"' + source + "\" is not a number", kArgumentExpected);
        int64_t magnitude = 0;
        const auto parsed =
            std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, isHex ? 16 : 10);
        if (parsed.ec == std::errc::result_out_of_range)
            magnitude = std::numeric_limits<int64_t>::max();
        return isNegative ? -magnitude : magnitude;
    }

    Literal CharacterLiteral() {
        const std::string_view start = rest;
        Accept('\'');
        char32_t value = 0;
        bool isGood = !rest.empty() && rest.front() != '\'';
        if (isGood && Accept('\\')) {
            const Escape escape = EscapeSequence();
            value = escape.value;
            isGood = !escape.isUnicode;
        } else if (isGood) {
            value = static_cast<unsigned char>(rest.front());
            isGood = value < 0x80;
            rest.remove_prefix(1);
        }
        if (!isGood || !Accept('\''))
            throw LineFault("a character is not as it must be",
                            "one ASCII character or one escape between single quotes");
        return {.type = Literal::Type::character,
                .source = std::string(start.substr(0, start.size() - rest.size())),
                .number = static_cast<int64_t>(value)};
    }

    Literal String() {
        Literal literal{.type = Literal::Type::string};
        while (!Accept('"')) {
            if (rest.empty())
                throw LineFault("a string is not closed", "\" before the end of the line");
            if (Accept('\\'))
                Append(literal, EscapeSequence());
            else
                Append(literal, Character());
        }
        return literal;
    }

    static void Append(Literal &literal, std::string_view character) {
        utf8::utf8to16(character.begin(), character.end(), std::back_inserter(literal.text));
        literal.bytes += character;
    }

    static void Append(Literal &literal, Escape escape) {
        literal.text += static_cast<NadrelChar>(escape.value);
        literal.bytes += static_cast<char>(escape.value);
        literal.hasUnicodeEscape |= escape.isUnicode;
    }

    // What follows a backslash.
    Escape EscapeSequence() {
        constexpr std::string_view kLetters = "nrt\"'\\";
        constexpr std::string_view kValues = "\n\r\t\"'\\";
        if (Accept('x'))
            return {HexEscape('x', 2), false};
        if (Accept('u'))
            return {CodeUnit(), true};
        if (Accept('0'))
            return Zero();
        const size_t index = rest.empty() ? std::string_view::npos : kLetters.find(rest.front());
        if (index == std::string_view::npos)
            throw LineFault("unknown escape \\" + std::string(rest.empty() ? "" : Character()),
                            R"(\n, \r, \t, \", \', \\, \0, \xHH or \uXXXX)");
        rest.remove_prefix(1);
        return {static_cast<char32_t>(kValues[index]), false};
    }

    Escape Zero() const {
        if (!rest.empty() && IsOneOf(rest.front(), kDigits))
            throw LineFault(std::string("octal escape \\0") + rest.front(),
                            R"(\0 without a digit behind it, or \xHH)");
        return {0, false};
    }

    char32_t HexEscape(char letter, size_t digits) {
        const std::string_view found = Run(kHexDigits, digits);
        if (found.size() < digits)
            throw LineFault(std::string("incomplete escape \\") + letter + std::string(found),
                            std::to_string(digits) + " hexadecimal digits behind \\" + letter);
        uint32_t value = 0;
        std::from_chars(found.data(), found.data() + found.size(), value, 16);
        return value;
    }

    char32_t CodeUnit() {
        const std::string_view digits = rest.substr(0, 4);
        const char32_t value = HexEscape('u', 4);
        if (value >= 0xD800 && value <= 0xDFFF)
            throw LineFault("the escape \\u" + std::string(digits) + " is half a character",
                            "the character itself in UTF-8");
        return value;
    }

    std::string_view rest;
};

} // namespace

std::string Shortened(std::string_view source) {
    return source.size() <= kShownAtMost ? std::string(source)
                                         : std::string(source.substr(0, kShownAtMost)) + "...";
}

std::optional<JobLine> ReadJobLine(std::string_view line) {
    const auto invalid = utf8::find_invalid(line.begin(), line.end());
    if (invalid != line.end())
        throw LineFault("byte " + std::to_string(invalid - line.begin() + 1) + " of the line is not UTF-8",
                        "a text file in UTF-8");
    return Scanner(line).Line();
}

} // namespace tool

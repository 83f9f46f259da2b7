#include "tools/CallCheck.h"

#include "tools/BitmapFile.h"

#include <utf8.h>

#include <algorithm>
#include <limits>

namespace tool {
namespace {

constexpr char kListedExpected[] = "a name that \"nadrel functions\" lists";

struct Range {
    int64_t lowest;
    int64_t highest;
};

template <typename T>
constexpr Range RangeOf() {
    return {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()};
}

Range NumbersOf(Kind kind) {
    switch (kind) {
    case Kind::uint32:
        return RangeOf<uint32_t>();
    case Kind::uint8:
        return RangeOf<uint8_t>();
    default:
        return RangeOf<int32_t>();
    }
}

bool IsNumber(Kind kind) {
    return kind == Kind::int32 || kind == Kind::uint32 || kind == Kind::uint8;
}

std::string Described(const Literal &literal) {
    switch (literal.type) {
    case Literal::Type::number:
        return literal.source;
    case Literal::Type::character:
        return "the character " + literal.source;
    case Literal::Type::string:
        return "a string";
    }
    return {};
}

std::string ExpectedNumber(const Range &range) {
    return "a number from " + std::to_string(range.lowest) + " to " + std::to_string(range.highest);
}

// One argument and where it stands.
struct Position {
    const Function &function;
    size_t index;

    Kind kind() const { return function.parameters[index].kind; }

    LineFault Fault(const std::string &wrong, const std::string &expected) const {
        return LineFault("argument " + std::to_string(index + 1) + " of " + std::string(function.name) +
                             " (" + std::string(function.parameters[index].name) + ") " + wrong,
                         expected);
    }
};

Value CheckNumber(const Position &at, const Literal &literal) {
    const Range range = NumbersOf(at.kind());
    const bool isString = literal.type == Literal::Type::string;
    if (isString || literal.number < range.lowest || literal.number > range.highest)
        throw at.Fault("is " + Described(literal), ExpectedNumber(range));
    return literal.number;
}

Value CheckText(const Position &at, const Literal &literal) {
    if (literal.type != Literal::Type::string)
        throw at.Fault("is " + Described(literal), "text in double quotes");
    if (literal.text.find(NadrelChar{0}) != Text::npos)
        throw at.Fault("has a zero character", "text without \\0 and \\x00");
    return literal.text;
}

Value CheckBytes(const Position &at, const Literal &literal) {
    if (literal.type != Literal::Type::string)
        throw at.Fault("is " + Described(literal), "bytes in double quotes");
    if (literal.hasUnicodeEscape)
        throw at.Fault("has a \\u escape", "bytes written as \\xHH");
    if (at.kind() == Kind::byteText && literal.bytes.find('\0') != std::string::npos)
        throw at.Fault("has a zero byte", "bytes without \\0 and \\x00");
    return literal.bytes;
}

// The name with the folder before it, so that it is found from where the program works.
Value CheckPicture(const Position &at, const Literal &literal, const std::filesystem::path &folder) {
    const Text name = std::get<Text>(CheckText(at, literal));
    const std::filesystem::path file = folder / utf8::utf16to8(name);
    RequireBitmap(file, file.string());
    if (!utf8::is_valid(file.native()))
        throw at.Fault("lies in a folder whose name is not UTF-8", "one whose name is");
    return utf8::utf8to16(file.native());
}

Value CheckArgument(const Position &at, const Literal &literal, const std::filesystem::path &folder) {
    if (IsNumber(at.kind()))
        return CheckNumber(at, literal);
    if (at.kind() == Kind::picture)
        return CheckPicture(at, literal, folder);
    return at.kind() == Kind::text ? CheckText(at, literal) : CheckBytes(at, literal);
}

// The number behind an argument of bytes is how many of them the library reads.
void CheckCount(const Position &at, const std::vector<Value> &values) {
    if (at.index == 0 || at.function.parameters[at.index - 1].kind != Kind::bytes)
        return;
    const auto *bytes = std::get_if<std::string>(&values[at.index - 1]);
    const int64_t count = std::get<int64_t>(values[at.index]);
    if (bytes != nullptr && (count < 0 || static_cast<uint64_t>(count) > bytes->size()))
        throw at.Fault("is " + std::to_string(count), "0 to " + std::to_string(bytes->size()) +
                                                          ", the number of bytes in the argument before it");
}

Entry FindCallable(const std::string &name, const Catalogue &catalogue) {
    if (const auto entry = catalogue.Find(name))
        return *entry;
    if (const NotForJobs *other = catalogue.FindNotForJobs(name))
        throw LineFault(name + " cannot be called in a job, because " + std::string(other->reason),
                        kListedExpected);
    const std::string_view nearest = catalogue.Nearest(name);
    const std::string hint = nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
    throw LineFault("unknown function " + Shortened(name), kListedExpected + hint);
}

void CheckNumberOfArguments(const Function &function, size_t given) {
    const size_t expected = function.parameters.size();
    if (given == expected)
        return;
    throw LineFault(std::string(function.name) + " has " + std::to_string(given) +
                        (given == 1 ? " argument" : " arguments"),
                    (expected == 0 ? "none" : std::to_string(expected)) + ": " + Signature(function));
}

} // namespace

CheckedCall CheckCall(const JobLine &line, const Catalogue &catalogue, const std::filesystem::path &folder,
                      std::vector<LineFault> &faults) {
    CheckedCall call{.entry = FindCallable(line.name, catalogue), .arguments = {}};
    const Function &function = *call.entry.function;
    CheckNumberOfArguments(function, line.arguments.size());
    for (size_t i = 0; i < line.arguments.size(); ++i) {
        const Position at{function, i};
        try {
            call.arguments.push_back(CheckArgument(at, line.arguments[i], folder));
            CheckCount(at, call.arguments);
        } catch (const LineFault &fault) {
            faults.push_back(fault);
            call.arguments.resize(i + 1);
        }
    }
    return call;
}

} // namespace tool

#pragma once

#include "tools/Function.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// One line of a job file: a call with C-like arguments, or nothing but a comment.
namespace tool {

// What is wrong in a line and what was expected there.
class LineFault : public std::runtime_error {
  public:
    LineFault(const std::string &wrong, const std::string &expected)
        : std::runtime_error(wrong + ", expected " + expected) {}
};

// An argument as the line has it. A string is kept both ways until its parameter is known.
struct Literal {
    enum class Type { number, character, string };

    Type type = Type::number;
    std::string source{};          // a number or a character as it stands in the line, shortened
    int64_t number = 0;            // beyond 64 bits: the largest or the smallest
    Text text{};                   // with \xHH as U+00HH
    std::string bytes{};           // with characters as UTF-8
    bool hasUnicodeEscape = false; // \uXXXX, which means nothing among bytes
};

struct JobLine {
    std::string name;
    std::vector<Literal> arguments{};
};

// At most 40 bytes of a name or number, for messages.
std::string Shortened(std::string_view source);

// No function takes as many; a line with more is refused.
inline constexpr size_t kMostArguments = 16;

// Nothing for a line that is blank or a comment. Throws a LineFault for one that is no call.
std::optional<JobLine> ReadJobLine(std::string_view line);

} // namespace tool

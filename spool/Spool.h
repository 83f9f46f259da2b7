#pragma once

#include "spool/State.h"

#include "api/NadrelPrinter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

// Appending to the spool. Every command goes through AppendPieces, which never leaves the storage.
namespace nadrel {

// The control codes that commands begin with.
inline constexpr uint8_t kLf = 0x0A;
inline constexpr uint8_t kFf = 0x0C;
inline constexpr uint8_t kCan = 0x18;
inline constexpr uint8_t kEsc = 0x1B;
inline constexpr uint8_t kGs = 0x1D;

using Bytes = std::span<const uint8_t>;

// A command in fixed bytes: Command(0x1B, 'J', n).
template <typename... Values>
constexpr auto Command(Values... values) {
    struct Fixed {
        uint8_t bytes[sizeof...(Values)];
        constexpr operator Bytes() const { return bytes; }
    };
    return Fixed{{static_cast<uint8_t>(values)...}};
}

// The two bytes of a 16-bit field: remainder and quotient of the signed value, each cut to a byte, so that -1
// goes out as FF 00. Hosts pass what they like; nothing is checked.
constexpr uint8_t LowByte(int32_t value) {
    return static_cast<uint8_t>(value % 256);
}
constexpr uint8_t HighByte(int32_t value) {
    return static_cast<uint8_t>(value / 256);
}

constexpr bool InRange(int32_t value, int32_t lowest, int32_t highest) {
    return value >= lowest && value <= highest;
}
constexpr bool IsByte(int32_t value) {
    return InRange(value, 0, 255);
}

// `value` if it lies within the range, else 0, the byte that leaves the choice to the printer.
constexpr uint8_t InRangeOrZero(int32_t value, int32_t lowest, int32_t highest) {
    return InRange(value, lowest, highest) ? static_cast<uint8_t>(value) : uint8_t{0};
}

// A code table between 0 and `highest`, or 255, which printers use for a table of the user's own.
constexpr bool IsCodeTable(int32_t table, int32_t highest) {
    return table == 255 || InRange(table, 0, highest);
}

// ESC 'O': print position in dots.
constexpr auto PositionCommand(int32_t x, int32_t y) {
    return Command(kEsc, 'O', LowByte(x), HighByte(x), LowByte(y), HighByte(y));
}

// The capacity test of the direct appenders: made once, before the command, and strict, so that a command
// which begins at the capacity is still written.
inline bool SpoolIsPastCapacity() {
    return SpoolLength > kSpoolCapacity;
}

// Appends all pieces or, where they would leave the storage, none. `end` is where they may end at most.
inline bool AppendPieces(std::initializer_list<Bytes> pieces, int32_t end = SpoolStorage::kEnd) {
    size_t total = 0;
    for (const Bytes &piece : pieces)
        total += piece.size();
    constexpr size_t kWhole = SpoolStorage::kEnd - SpoolStorage::kLowest;
    if (total > kWhole || !SpoolStorage::Holds(SpoolLength, static_cast<int64_t>(total)) ||
        SpoolLength > end - static_cast<int32_t>(total))
        return false;
    uint8_t *to = SpoolBuffer.Write(SpoolLength, static_cast<int32_t>(total));
    for (const Bytes &piece : pieces)
        to = std::copy(piece.begin(), piece.end(), to);
    SpoolLength += static_cast<int32_t>(total);
    return true;
}

// A direct appender's command: no link test. Whether it was appended.
inline bool AppendDirect(std::initializer_list<Bytes> pieces) {
    return !SpoolIsPastCapacity() && AppendPieces(pieces);
}

inline bool AppendDirect(Bytes command) {
    return AppendDirect({command});
}

// An appender's command through the link: the new spool length, ERR_NOT_CONNECTED or ERR_SPOOL_LIMIT.
int32_t AppendThroughLink(std::initializer_list<Bytes> pieces);

// The same for the functions that store their result into SpoolLength: without a link that leaves it at
// ERR_NOT_CONNECTED until the next connect or ClearSpool. Hosts test for it.
int32_t AppendAndStoreResult(std::initializer_list<Bytes> pieces);

// Converts text to the ANSI code page, into ConversionBuffer; empty while no link is open. It stands until
// the next conversion.
Bytes Convert(const char16_t *text);

// Appends ESC '2', the printer's default line spacing. No exported function sends it.
void SetDefaultLineSpace();

// As many bytes of converted text as a command counts: its length keeps only the low 8 bits, so that a text
// of 256 bytes counts 0 and one of 300 counts 44.
inline Bytes FirstCounted(Bytes text) {
    return text.first(text.size() & 0xFF);
}

} // namespace nadrel

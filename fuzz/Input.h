#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

// What the fuzz targets make of their bytes.
namespace fuzz {

using Bytes = std::vector<uint8_t>;

// Ends the process where something is not as it has to be: that is what a fuzzer looks for.
inline void Require(bool holds, const char *sentence) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", sentence);
    std::abort();
}

// Takes numbers, choices and strings from the front. Where the bytes are used up, everything is zero or empty.
class Input {
  public:
    explicit Input(std::span<const uint8_t> bytes) : rest(bytes) {}

    bool IsUsedUp() const { return rest.empty(); }

    uint8_t Byte() {
        if (rest.empty())
            return 0;
        const uint8_t byte = rest.front();
        rest = rest.subspan(1);
        return byte;
    }

    bool Flag() { return (Byte() & 1) != 0; }

    // 0 to limit - 1; the limit is not 0.
    uint32_t Below(uint32_t limit) {
        const uint32_t low = Byte();
        return (limit > 256 ? low + 256U * Byte() : low) % limit;
    }

    // Any number of the type, those at the edges of what commands take more often.
    template <typename T>
    T Number() {
        static constexpr std::array<int64_t, 32> kEdges = {
            -1,    0,     1,      2,    3,    5,    6,      7,          8,           30,         40,
            44,    50,    126,    127,  128,  255,  256,    257,        9999,        32767,      32768,
            65535, 65536, 409600, -255, -256, -257, -32768, 2147483647, -2147483647, -2147483648};
        const uint8_t choice = Byte();
        if (choice < kEdges.size())
            return static_cast<T>(kEdges[choice]);
        if (choice < 192)
            return static_cast<T>(Byte());
        uint32_t whole = 0;
        for (int i = 0; i < 4; ++i)
            whole = whole << 8 | Byte();
        return static_cast<T>(whole);
    }

    // A byte that says how many, and as many, as far as there are any.
    Bytes ShortBytes() { return Take(Byte()); }

    Bytes Take(size_t count) {
        const auto front = rest.first(std::min(count, rest.size()));
        rest = rest.subspan(front.size());
        return {front.begin(), front.end()};
    }

    Bytes Rest() { return Take(rest.size()); }

    // None, short, long, very long or of any units.
    template <typename Char>
    std::optional<std::basic_string<Char>> Text() {
        switch (Byte() % 8) {
        case 0:
            return std::nullopt;
        case 1:
            return std::basic_string<Char>(Below(1024), static_cast<Char>(Byte()));
        case 2:
            return std::basic_string<Char>(size_t{410} * Byte() * (Byte() == 255 ? 10 : 1), Unit<Char>());
        case 3:
        case 4:
            return Units<Char>();
        default: {
            const Bytes bytes = ShortBytes();
            return std::basic_string<Char>(bytes.begin(), bytes.end());
        }
        }
    }

  private:
    template <typename Char>
    Char Unit() {
        const uint32_t low = Byte();
        return static_cast<Char>(sizeof(Char) == 1 ? low : low | uint32_t{Byte()} << 8);
    }

    template <typename Char>
    std::basic_string<Char> Units() {
        std::basic_string<Char> text(Byte() % 64, Char{});
        for (Char &unit : text)
            unit = Unit<Char>();
        return text;
    }

    std::span<const uint8_t> rest;
};

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count);

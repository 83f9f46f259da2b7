#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace platform {

// UTF-8 as a code page: 65001 needs no tables.

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// Writes a character (no surrogate, at most 10FFFF) as 1 to 4 bytes and returns their number.
size_t EncodeUtf8(char32_t character, uint8_t (&bytes)[4]);

// Takes the first character, or the longest beginning of one, off non-empty text. Anything that is not UTF-8
// (too long a form, a surrogate, beyond 10FFFF, cut off) gives U+FFFD and takes at least a byte.
char32_t TakeUtf8(std::string_view &text);

} // namespace platform

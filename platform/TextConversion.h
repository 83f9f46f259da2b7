#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace platform {

// Converts UTF-16 to the ANSI code page and stops before the first character that does not fit whole. A
// character that the page lacks becomes the near one that Windows takes for it, or else '?', a surrogate pair
// counting as one character and a lone surrogate as one that no page has. In UTF-8 a lone surrogate becomes
// U+FFFD. Returns the bytes written; nothing is put behind them. Any thread; needs no memory.
size_t ToAnsi(const char16_t *text, size_t length, uint8_t *bytes, size_t capacity);

// Converts zero-terminated text in the ANSI code page to UTF-16. Bytes that mean nothing become U+FFFD.
std::u16string FromAnsi(const char *text);

} // namespace platform

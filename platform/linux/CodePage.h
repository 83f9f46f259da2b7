#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace platform {

// A code page with tables, known by its place among them: 0..CodePageCount()-1, 0 being 1252.
size_t CodePageCount();
uint32_t CodePageNumber(size_t page);
std::optional<size_t> FindCodePage(uint32_t number);

// The bytes of a character from U+0080 on: below 100 a single byte, else a lead byte (high) and a trail byte
// (low); 0 when the page lacks the character. Surrogates are in no page. Constant time, any thread.
uint16_t BytesInCodePage(size_t page, char16_t character);

// The same of the near character that stands in for one that the page lacks; 0 when it has none.
uint16_t NearBytesInCodePage(size_t page, char16_t character);

} // namespace platform

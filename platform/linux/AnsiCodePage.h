#pragma once

#include <cstdint>

namespace platform {

// Sets the code page that ToAnsi and FromAnsi use in this process. False, and no change, when the number is
// not one of 437, 737, 775, 850, 852, 855, 857, 858, 860 to 866, 874, 932, 936, 949, 950, 1250 to 1258 and
// 65001 (UTF-8). Any thread; a conversion that is under way keeps its page.
bool SetAnsiCodePage(uint32_t codePage);

// 1252 until another is set.
uint32_t AnsiCodePage();

} // namespace platform

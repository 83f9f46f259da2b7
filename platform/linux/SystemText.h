#pragma once

#include <string>

namespace platform {

// Zero-terminated UTF-16 as the system takes names and messages, in UTF-8. Null is empty text; a lone
// surrogate becomes U+FFFD.
std::string ToSystemText(const char16_t *text);

} // namespace platform

#pragma once

namespace platform {

// The system's wide characters are UTF-16 units like the library's, by another name.
static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline const wchar_t *Wide(const char16_t *text) {
    return reinterpret_cast<const wchar_t *>(text);
}

} // namespace platform

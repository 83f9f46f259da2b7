#include "platform/MessageBox.h"

#include "platform/linux/SystemText.h"

#include <cstdio>

namespace platform {

void ShowMessage(const char16_t *text) {
    std::fprintf(stderr, "%s\n", ToSystemText(text).c_str());
}

} // namespace platform

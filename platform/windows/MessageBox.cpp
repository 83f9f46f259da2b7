#include "platform/MessageBox.h"

#include "platform/windows/System.h"
#include "platform/windows/WideText.h"

namespace platform {

void ShowMessage(const char16_t *text) {
    MessageBoxW(nullptr, Wide(text), L"NADRELPRINTER", MB_OK);
}

} // namespace platform

#pragma once

namespace platform {

// Shows the user a message with a plain OK: a box where there is a desktop, a line on standard error
// elsewhere.
void ShowMessage(const char16_t *text);

} // namespace platform

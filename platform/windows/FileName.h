#pragma once

namespace platform {

// Whether the name is that of a file or folder, there or not: of something on a drive or on another machine's
// share. Ports, pipes and mail slots have other names. Nothing is opened, which alone could do something to
// them.
bool NamesAFile(const char16_t *name);

} // namespace platform

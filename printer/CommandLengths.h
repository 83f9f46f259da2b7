#pragma once

#include "printer/Commands.h"

namespace printer {

// The length of a command from its first byte to its last.
struct Extent {
    size_t total = 0;      // bytes; 0 when it is not known before `needed` bytes are there
    size_t needed = 0;     // bytes
    const char *note = ""; // why the command ends where it does, when that is not its regular end
};

// `bytes` begin with the form's prefix. `scanned` is how many of them an earlier call for the same command
// has searched for the end; it is updated.
Extent ExtentOf(const CommandForm &form, ByteView bytes, size_t &scanned);

} // namespace printer

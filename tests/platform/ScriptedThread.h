#pragma once

#include "platform/Threads.h"

namespace platform {

// Recorded and never run; tests call its body.
class Thread {
  public:
    int number = 0; // counted from 1
    ThreadBody body = nullptr;
    uint32_t exitCode = kStillActive;
    bool deleted = false;
};

} // namespace platform

#pragma once

#include "spool/State.h"

#include <cstdint>

namespace nadrel {

// The one write to the open link. Blocks until the link has taken the bytes or refused them; a refusal is
// left in LastLinkError and in the link report. Without a link nothing is written. Always 0.
int32_t WriteToLink(const uint8_t *bytes, int32_t count);

// While one exists, a call is sending: a close by a notification handler releases the call and waits for it
// before anything that it uses is put back.
class Sending {
  public:
    Sending() { SendingCalls.Add(1); }
    ~Sending() { SendingCalls.Add(-1); }
    Sending(const Sending &) = delete;
    Sending &operator=(const Sending &) = delete;
};

} // namespace nadrel

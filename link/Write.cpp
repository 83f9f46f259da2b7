#include "link/Write.h"

#include "platform/Error.h"

namespace nadrel {
namespace {

void Account(bool accepted, uint32_t asked, uint32_t taken) {
    Counters.bytesAsked.Add(asked);
    Counters.bytesTaken.Add(taken);
    if (accepted)
        return;
    const uint32_t error = platform::LastError();
    LastLinkError = error;
    Counters.lastError = error;
    Counters.errorCount.Add(1);
}

} // namespace

int32_t WriteToLink(const uint8_t *bytes, int32_t count) {
    const Sending sending;
    const uint32_t asked = static_cast<uint32_t>(count);
    if (SerialLinkOpen.Acquire() != 0) {
        uint32_t taken = 0;
        const bool accepted = platform::WritePort(SerialPortHandle, bytes, asked, taken);
        Account(accepted, asked, taken);
    }
    if (WirelessLinkOpen.Acquire() != 0) {
        uint32_t taken = 0;
        const bool accepted = platform::Send(LinkSocket, bytes, asked, taken) >= 0;
        Account(accepted, asked, taken);
    }
    return 0;
}

} // namespace nadrel

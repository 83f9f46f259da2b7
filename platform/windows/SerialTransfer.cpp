// What moves bytes through a serial port, and waits for them.

#include "platform/SerialPort.h"

#include "platform/Clock.h"
#include "platform/windows/LastError.h"
#include "platform/windows/Overlapped.h"
#include "platform/windows/Port.h"

#include <algorithm>
#include <cstring>

namespace platform {

namespace {

// How long a wait that has nothing to wait for pauses, in milliseconds.
constexpr uint32_t kPause = 1;

// The operations that may be in progress at a time, and what the system writes into while they are. Not on
// the stack of the thread that waits for them, which may be ended by force.
constinit Overlapped waiting;
constinit Overlapped reading;
constinit Overlapped writing;
constinit char chunk[256] = {};
constinit uint8_t outgoing[1 << 19] = {};

bool IsUnderWay(BOOL begun) {
    return begun || GetLastError() == ERROR_IO_PENDING;
}

bool WaitForEvent(HANDLE port) {
    if (!waiting.Begin())
        return false;
    const bool underWay = IsUnderWay(WaitCommEvent(port, &waiting.Word(), waiting.Get()));
    DWORD count = 0;
    return waiting.Finish(port, underWay, count);
}

bool WritePart(HANDLE port, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    if (!writing.Begin())
        return false;
    std::memcpy(outgoing, bytes, count);
    const bool underWay = IsUnderWay(WriteFile(port, outgoing, count, nullptr, writing.Get()));
    DWORD went = 0;
    const bool wrote = writing.Finish(port, underWay, went);
    taken += went;
    return wrote && (went == count || Fail(ERROR_TIMEOUT));
}

} // namespace

bool WaitPortEvent(PortHandle port, PortEvents &events) {
    events = PortEvents::none;
    const HandleUse use = UsePort(port);
    const bool waited = use.IsOpen() && WaitForEvent(use.Get());
    if (waited && (waiting.Word() & EV_RXCHAR) != 0) {
        events = PortEvents::received;
        return true;
    }
    const DWORD error = GetLastError();
    Sleep(kPause);
    return waited || Fail(error);
}

bool ReadPort(PortHandle port, uint8_t *bytes, uint32_t count, uint32_t &got) {
    got = 0;
    const HandleUse use = UsePort(port);
    if (!use.IsOpen() || !reading.Begin())
        return false;
    const auto part = std::min<uint32_t>(count, sizeof chunk);
    const bool underWay = IsUnderWay(ReadFile(use.Get(), chunk, part, nullptr, reading.Get()));
    DWORD came = 0;
    const bool read = reading.Finish(use.Get(), underWay, came);
    std::memcpy(bytes, chunk, came);
    got = came;
    return read;
}

// A spool goes in one part, whole: the time-out counts for all of it.
bool WritePort(PortHandle port, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    taken = 0;
    const HandleUse use = UsePort(port);
    bool wrote = use.IsOpen();
    while (wrote && taken < count)
        wrote =
            WritePart(use.Get(), bytes + taken, std::min<uint32_t>(count - taken, sizeof outgoing), taken);
    return wrote;
}

} // namespace platform

// What moves bytes through a serial port, and waits for them.

#include "platform/SerialPort.h"

#include "platform/linux/Port.h"
#include "platform/linux/ThreadExit.h"

#include <algorithm>
#include <unistd.h>

namespace platform {

namespace {

// How long the kernel's queue is left alone while the device takes its last bytes, in milliseconds: shortly
// at first, since most writes are short.
constexpr uint64_t kFirstLook = 1;
constexpr uint64_t kLongestLook = 16;

Deadline TotalDeadline(uint64_t count, uint32_t multiplier, uint32_t constant) {
    return AfterMilliseconds(count * multiplier + constant);
}

// Why a wait has not ended as hoped for.
int FailureOf(std::optional<short> report) {
    if (!report)
        return ECANCELED;
    return *report == 0 ? ETIMEDOUT : EIO;
}

// Gives the bytes to the kernel; `taken` counts them.
bool HandOver(const Port &port, const uint8_t *bytes, uint32_t count, Deadline deadline, uint32_t &taken) {
    while (taken < count) {
        const ssize_t wrote =
            Uninterrupted([&] { return write(port.Number(), bytes + taken, count - taken); });
        if (wrote > 0) {
            taken += static_cast<uint32_t>(wrote);
            continue;
        }
        if (wrote < 0 && errno != EAGAIN)
            return Fail(errno);
        const auto report = port.Wait(POLLOUT, deadline);
        if (report != POLLOUT)
            return Fail(FailureOf(report));
    }
    return true;
}

// Waits until the kernel has given everything to the device.
bool Drain(const Port &port, Deadline deadline) {
    for (uint64_t look = kFirstLook;; look = std::min(2 * look, kLongestLook)) {
        const auto queued = port.OutputQueued();
        if (queued == 0U)
            return true;
        if (!queued)
            return Fail(EIO);
        if (std::chrono::steady_clock::now() >= deadline)
            return Fail(ETIMEDOUT);
        const auto report = port.Wait(0, std::min(deadline, AfterMilliseconds(look)));
        if (report != 0)
            return Fail(FailureOf(report));
    }
}

// When a read that has `got` bytes by now ends with those.
Deadline ReadDeadline(Deadline total, const PortTimeouts &limits, uint32_t got) {
    const bool gapCounts = got != 0 && limits.readInterval != 0;
    return gapCounts ? std::min(total, AfterMilliseconds(limits.readInterval)) : total;
}

} // namespace

bool WaitPortEvent(PortHandle handle, PortEvents &events) {
    events = PortEvents::none;
    LeaveIfTerminated();
    const auto port = Ports().FindOrFail(handle);
    if (port)
        return port->WaitEvent(events);
    WaitUntil(AfterMilliseconds(kPauseWhenGone));
    return false;
}

bool ReadPort(PortHandle handle, uint8_t *bytes, uint32_t count, uint32_t &got) {
    got = 0;
    LeaveIfTerminated();
    const auto port = Ports().FindOrFail(handle);
    if (!port)
        return false;
    const PortTimeouts limits = port->Timeouts();
    const Deadline total = TotalDeadline(count, limits.readTotalMultiplier, limits.readTotalConstant);
    while (got < count) {
        const ssize_t came = Uninterrupted([&] { return read(port->Number(), bytes + got, count - got); });
        if (came > 0) {
            got += static_cast<uint32_t>(came);
            continue;
        }
        if (came < 0 && errno != EAGAIN)
            return Fail(errno);
        const auto report = port->Wait(POLLIN, ReadDeadline(total, limits, got));
        if (report == 0)
            break;
        if (report != POLLIN)
            return Fail(FailureOf(report));
    }
    return true;
}

bool WritePort(PortHandle handle, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    taken = 0;
    LeaveIfTerminated();
    const auto port = Ports().FindOrFail(handle);
    if (!port || count == 0)
        return port != nullptr;
    const PortTimeouts limits = port->Timeouts();
    const Deadline deadline = TotalDeadline(count, limits.writeTotalMultiplier, limits.writeTotalConstant);
    if (HandOver(*port, bytes, count, deadline, taken) && Drain(*port, deadline))
        return true;
    taken -= std::min(taken, port->OutputQueued().value_or(0));
    return false;
}

} // namespace platform

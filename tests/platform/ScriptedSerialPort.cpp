#include "platform/SerialPort.h"
#include "tests/platform/ScriptedAllocation.h"
#include "tests/platform/ScriptedError.h"
#include "tests/platform/ScriptedPlatform.h"

#include <algorithm>

namespace scripted {

Outcome Platform::EnterPort(const std::string &operation, platform::PortHandle port,
                            const std::string &arguments) {
    Outcome outcome = Enter(operation, Joined(port, arguments));
    if (!outcome.failed && !PortAt(port).open) {
        outcome.failed = true;
        SetLastError(kBadHandle);
    }
    return outcome;
}

platform::PortHandle Platform::AddPort(const std::string &name) {
    const Lock lock(mutex);
    for (const auto &[handle, port] : ports)
        if (port.open && port.name == name)
            return platform::kInvalidPort;
    ports[nextHandle] = {.name = name, .settings = lineSettings, .timeouts = portTimeouts};
    return nextHandle++;
}

Platform::Port Platform::PortAt(platform::PortHandle port) const {
    const Lock lock(mutex);
    const auto found = ports.find(port);
    return found == ports.end() ? Port{.open = false} : found->second;
}

void Platform::ChangePort(platform::PortHandle port, const std::function<void(Port &)> &change) {
    const Lock lock(mutex);
    change(ports.at(port));
}

platform::LineSettings Platform::LineSettingsOf(platform::PortHandle port) const {
    return PortAt(port).settings;
}

int Platform::OpenPorts() const {
    const Lock lock(mutex);
    return static_cast<int>(
        std::count_if(ports.begin(), ports.end(), [](const auto &entry) { return entry.second.open; }));
}

void Platform::SetNextHandle(intptr_t handle) {
    const Lock lock(mutex);
    nextHandle = handle;
}

bool Platform::WaitForPort(platform::PortHandle port) {
    for (;;) {
        if (!PortAt(port).open || PortAt(port).events == platform::PortEvents::none)
            return false;
        {
            const Lock lock(mutex);
            if (!input.empty())
                return true;
        }
        if (!AdvanceToNextAction())
            throw ThreadTerminated();
    }
}

bool Platform::TakeByte(uint8_t &byte) {
    const Lock lock(mutex);
    if (input.empty())
        return false;
    ++delivered;
    byte = input.front().front();
    input.front().erase(input.front().begin());
    if (input.front().empty())
        input.pop_front();
    return true;
}

void Platform::PrinterSends(const Bytes &bytes, uint64_t afterMs) {
    const auto arrive = [this, bytes] {
        const Lock lock(mutex);
        input.push_back(bytes);
    };
    if (afterMs == 0)
        arrive();
    else
        After(afterMs, arrive);
}

void Platform::AddWritten(const Bytes &bytes) {
    const Lock lock(mutex);
    if (recording)
        written.push_back(bytes);
}

std::vector<Bytes> Platform::Written() const {
    const Lock lock(mutex);
    return written;
}

size_t Platform::Delivered() const {
    const Lock lock(mutex);
    return delivered;
}

namespace {

constexpr uint32_t kBusy = 16;
constexpr uint32_t kNoSuchName = 2;

std::string Shown(platform::PortAccess access) {
    return access == platform::PortAccess::plain ? "0x80" : "0x40000080";
}

std::string Shown(platform::PortEvents events) {
    return events == platform::PortEvents::received ? "received" : "none";
}

std::string Shown(platform::PortSignal signal) {
    switch (signal) {
    case platform::PortSignal::setRts:
        return "setRts";
    case platform::PortSignal::clearRts:
        return "clearRts";
    case platform::PortSignal::setDtr:
        return "setDtr";
    case platform::PortSignal::clearDtr:
        return "clearDtr";
    }
    return "unknown";
}

std::string Shown(const platform::LineSettings &settings) {
    return "baud=" + std::to_string(settings.baudRate) + " size=" + std::to_string(settings.byteSize) +
           " parity=" + std::to_string(settings.parity) + " stop=" + std::to_string(settings.stopBits);
}

std::string Shown(const platform::PortTimeouts &timeouts) {
    return std::to_string(timeouts.readInterval) + " " + std::to_string(timeouts.readTotalMultiplier) + " " +
           std::to_string(timeouts.readTotalConstant) + " " + std::to_string(timeouts.writeTotalMultiplier) +
           " " + std::to_string(timeouts.writeTotalConstant);
}

platform::PortHandle OpenFailed(uint32_t error) {
    SetLastError(error);
    return platform::kInvalidPort;
}

} // namespace

} // namespace scripted

namespace platform {

using namespace scripted;

PortHandle OpenPort(const char16_t *name, PortAccess access) {
    const scripted::allocation::Exempt own;
    if (TheSystem().Enter("OpenPort", Quoted(name) + ", " + Shown(access)).failed)
        return kInvalidPort;
    if (name == nullptr)
        return OpenFailed(kNoSuchName);
    const PortHandle port = TheSystem().AddPort(Quoted(name));
    return port == kInvalidPort ? OpenFailed(kBusy) : port;
}

bool GetLineSettings(PortHandle port, LineSettings &settings) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("GetLineSettings", port).failed)
        return false;
    settings = TheSystem().PortAt(port).settings;
    return true;
}

bool SetLineSettings(PortHandle port, const LineSettings &settings) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("SetLineSettings", port, Shown(settings)).failed)
        return false;
    TheSystem().ChangePort(port, [&](Platform::Port &state) { state.settings = settings; });
    return true;
}

bool GetPortTimeouts(PortHandle port, PortTimeouts &timeouts) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("GetPortTimeouts", port).failed)
        return false;
    timeouts = TheSystem().PortAt(port).timeouts;
    return true;
}

bool SetPortTimeouts(PortHandle port, const PortTimeouts &timeouts) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("SetPortTimeouts", port, Shown(timeouts)).failed)
        return false;
    TheSystem().ChangePort(port, [&](Platform::Port &state) { state.timeouts = timeouts; });
    return true;
}

bool SetPortEvents(PortHandle port, PortEvents events) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("SetPortEvents", port, Shown(events)).failed)
        return false;
    TheSystem().ChangePort(port, [&](Platform::Port &state) { state.events = events; });
    return true;
}

bool WaitPortEvent(PortHandle port, PortEvents &events) {
    const scripted::allocation::Exempt own;
    constexpr uint64_t kGonePauseMs = 100;
    if (TheSystem().EnterPort("WaitPortEvent", port).failed) {
        TheSystem().Pause(kGonePauseMs);
        return false;
    }
    events = TheSystem().WaitForPort(port) ? PortEvents::received : PortEvents::none;
    return TheSystem().PortAt(port).open;
}

bool ReadPort(PortHandle port, uint8_t *bytes, uint32_t count, uint32_t &got) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("ReadPort", port, std::to_string(count)).failed)
        return false;
    got = 0;
    while (got < count && TheSystem().TakeByte(bytes[got]))
        ++got;
    return true;
}

bool WritePort(PortHandle port, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    const scripted::allocation::Exempt own;
    const Outcome outcome = TheSystem().EnterPort("WritePort", port, ToHex(bytes, count));
    taken = outcome.taken.value_or(outcome.failed ? 0 : count);
    TheSystem().AddWritten(Bytes(bytes, bytes + taken));
    return !outcome.failed;
}

bool GetModemStatus(PortHandle port, uint32_t &status) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("GetModemStatus", port).failed)
        return false;
    status = 0;
    return true;
}

bool SignalPort(PortHandle port, PortSignal signal) {
    const scripted::allocation::Exempt own;
    return !TheSystem().EnterPort("SignalPort", port, Shown(signal)).failed;
}

bool PurgePort(PortHandle port, uint32_t what) {
    const scripted::allocation::Exempt own;
    return !TheSystem().EnterPort("PurgePort", port, std::to_string(what)).failed;
}

bool ClosePort(PortHandle port) {
    const scripted::allocation::Exempt own;
    if (TheSystem().EnterPort("ClosePort", port).failed)
        return false;
    TheSystem().ChangePort(port, [](Platform::Port &state) { state.open = false; });
    return true;
}

} // namespace platform

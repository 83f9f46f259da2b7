#include "platform/SerialPort.h"

#include "platform/linux/Port.h"
#include "platform/linux/PortName.h"
#include "platform/linux/TerminalSettings.h"

#include <fcntl.h>
#include <new>
#include <sys/ioctl.h>

namespace platform {

namespace {

// What the abort-and-clear argument of PurgePort means for the queues.
constexpr uint32_t kPurgeOutput = 4;
constexpr uint32_t kPurgeInput = 8;

bool ReadTerminal(const Port &port, termios2 &terminal) {
    return Uninterrupted([&] { return ioctl(port.Number(), TCGETS2, &terminal); }) == 0 || Fail(errno);
}

// Neither the process's controlling terminal nor held up by a missing carrier.
Descriptor OpenDevice(const std::string &path) {
    constexpr int kFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;
    Descriptor device(Uninterrupted([&] { return open(path.c_str(), kFlags); }));
    if (!device.IsOpen())
        Fail(errno == EISDIR ? ENOTTY : errno);
    return device;
}

PortHandle OpenPath(const std::string &path) {
    Descriptor device = OpenDevice(path);
    if (!device.IsOpen())
        return kInvalidPort;
    const auto port = std::make_shared<Port>(std::move(device));
    termios2 terminal;
    if (!port->IsValid())
        Fail(EMFILE);
    else if (ReadTerminal(*port, terminal) && port->Claim()) {
        Ports().Add(port);
        return port->Number();
    }
    return kInvalidPort;
}

bool Apply(const LineSettings &settings, const Port &port) {
    termios2 terminal;
    if (!ReadTerminal(port, terminal))
        return false;
    if (!ToTerminal(settings, terminal))
        return Fail(EINVAL);
    if (Uninterrupted([&] { return ioctl(port.Number(), TCSETS2, &terminal); }) != 0)
        return Fail(errno);
    termios2 taken;
    return ReadTerminal(port, taken) && (IsTaken(terminal, taken) || Fail(EINVAL));
}

// Success of a control operation on the device.
template <typename Argument>
bool Control(PortHandle handle, unsigned long request, Argument argument) {
    const auto port = Ports().FindOrFail(handle);
    return port &&
           (Uninterrupted([&] { return ioctl(port->Number(), request, argument); }) == 0 || Fail(errno));
}

} // namespace

PortHandle OpenPort(const char16_t *name, PortAccess) {
    try {
        return OpenPath(DevicePath(name));
    } catch (const std::bad_alloc &) {
        Fail(ENOMEM);
        return kInvalidPort;
    }
}

bool GetLineSettings(PortHandle handle, LineSettings &settings) {
    const auto port = Ports().FindOrFail(handle);
    termios2 terminal;
    if (!port || !ReadTerminal(*port, terminal))
        return false;
    settings = FromTerminal(terminal);
    return true;
}

// A port that does not take its settings is one that its host leaves open and never uses.
bool SetLineSettings(PortHandle handle, const LineSettings &settings) {
    const auto port = Ports().FindOrFail(handle);
    if (!port)
        return false;
    if (Apply(settings, *port))
        return port->Wake() || Fail(EMFILE);
    port->Rest();
    return false;
}

bool GetPortTimeouts(PortHandle handle, PortTimeouts &timeouts) {
    const auto port = Ports().FindOrFail(handle);
    if (!port)
        return false;
    timeouts = port->Timeouts();
    return true;
}

bool SetPortTimeouts(PortHandle handle, const PortTimeouts &timeouts) {
    const auto port = Ports().FindOrFail(handle);
    if (!port)
        return false;
    port->SetTimeouts(timeouts);
    return true;
}

bool SetPortEvents(PortHandle handle, PortEvents events) {
    const auto port = Ports().FindOrFail(handle);
    if (!port)
        return false;
    port->SetEvents(events);
    return true;
}

bool GetModemStatus(PortHandle handle, uint32_t &status) {
    return Control(handle, TIOCMGET, &status);
}

bool SignalPort(PortHandle handle, PortSignal signal) {
    const bool dtr = signal == PortSignal::setDtr || signal == PortSignal::clearDtr;
    const bool set = signal == PortSignal::setDtr || signal == PortSignal::setRts;
    const int line = dtr ? TIOCM_DTR : TIOCM_RTS;
    return Control(handle, set ? TIOCMBIS : TIOCMBIC, &line);
}

bool PurgePort(PortHandle handle, uint32_t what) {
    const bool input = (what & kPurgeInput) != 0;
    const bool output = (what & kPurgeOutput) != 0;
    if (!input && !output)
        return Ports().FindOrFail(handle) != nullptr;
    return Control(handle, TCFLSH, input && output ? TCIOFLUSH : input ? TCIFLUSH : TCOFLUSH);
}

bool ClosePort(PortHandle handle) {
    return CloseHandle(Ports(), handle);
}

} // namespace platform

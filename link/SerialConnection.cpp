#include "api/NadrelPrinter.h"

#include "link/Connection.h"
#include "link/Pacing.h"
#include "platform/TextConversion.h"
#include "spool/Guarded.h"
#include "spool/State.h"

#include <string>

using namespace nadrel;

namespace {

// What the three connect functions do differently once the port is open.
struct SerialOptions {
    uint32_t baudRate = 0;
    uint8_t byteSize = 8;
    uint8_t stopBits = 0;
    uint8_t parity = 0;
    uint32_t readTotalConstant = 10;
    bool newer = true; // event mask and purge first, framed mode stored once the port is configured
    int32_t framed = 0;
};

bool ApplyLineSettings(const SerialOptions &options) {
    platform::LineSettings settings;
    platform::GetLineSettings(SerialPortHandle, settings);
    settings.length = 28;
    settings.baudRate = options.baudRate;
    settings.binary = true;
    settings.parityCheck = true;
    settings.ctsFlow = false;
    settings.dsrFlow = false;
    settings.dtrControl = 0;
    settings.dsrSensitivity = false;
    settings.xonXoffOut = false;
    settings.xonXoffIn = false;
    settings.errorCharacter = false;
    settings.dropNull = false;
    settings.rtsControl = 0;
    settings.abortOnError = false;
    settings.byteSize = options.byteSize;
    settings.parity = options.parity;
    settings.stopBits = options.stopBits;
    return platform::SetLineSettings(SerialPortHandle, settings);
}

bool ApplyTimeouts(const SerialOptions &options) {
    platform::PortTimeouts timeouts;
    platform::GetPortTimeouts(SerialPortHandle, timeouts);
    timeouts.readInterval = 65535;
    timeouts.readTotalMultiplier = 100;
    timeouts.readTotalConstant = options.readTotalConstant;
    timeouts.writeTotalMultiplier = 100;
    timeouts.writeTotalConstant = 0;
    return platform::SetPortTimeouts(SerialPortHandle, timeouts);
}

int32_t LinkUp(const SerialOptions &options) {
    CreateConversionBuffer();
    SerialLinkOpen = 1;
    if (options.newer)
        FramedMode = options.framed;
    StartReceiveSide();
    return ProbePrinter();
}

// From the opened port to the link. A port that does not take its settings stays open, in SerialPortHandle:
// the next exclusive open of it fails.
int32_t ConfigurePort(const SerialOptions &options) {
    if (!ApplyLineSettings(options))
        return FailConnect(ERR_SET_COMM_STATE);
    if (options.newer) {
        platform::SetPortEvents(SerialPortHandle, platform::PortEvents::received);
        platform::PurgePort(SerialPortHandle, platform::kPurgeAll);
    }
    if (!ApplyTimeouts(options))
        return FailConnect(ERR_SET_TIMEOUTS);
    platform::SignalPort(SerialPortHandle, platform::PortSignal::setDtr);
    platform::SignalPort(SerialPortHandle, platform::PortSignal::setRts);
    return LinkUp(options);
}

platform::PortHandle OpenWithin(AttemptPause &pause, const char16_t *port, int32_t attempts) {
    platform::PortHandle handle = platform::kInvalidPort;
    for (int32_t attempt = 0; attempt < attempts && handle == platform::kInvalidPort; ++attempt) {
        pause.Wait();
        handle = platform::OpenPort(port, platform::PortAccess::overlapped);
    }
    return handle;
}

int32_t ConnectPatiently(const char16_t *port, int32_t openTimeout, const SerialOptions &options) {
    AttemptPause pause;
    if (LinkIsTaken())
        return ERR_ALREADY_CONNECTED;
    ResetLinkState();
    ResetCounters();
    SerialPortHandle = OpenWithin(pause, port, AttemptsWithin(openTimeout));
    return SerialPortHandle == platform::kInvalidPort ? FailConnect(ERR_OPEN_PORT) : ConfigurePort(options);
}

// COM3: is COM3, COM12: is \\.\COM12: the colon goes first, then a name of more than four characters is a
// device.
std::u16string DeviceName(const char *port) {
    std::u16string name = platform::FromAnsi(port);
    if (!name.empty() && name.back() == u':')
        name.pop_back();
    return name.size() > 4 ? u"\\\\.\\" + name : name;
}

} // namespace

int32_t InitPrinter(const NadrelChar *port, uint32_t baudRate, int32_t framed) {
    return Guarded([=]() -> int32_t {
        if (port == nullptr)
            return 0;
        FramedMode = framed; // also where the call is refused
        if (LinkIsTaken())
            return ERR_ALREADY_CONNECTED;
        ResetLinkState();
        ResetCounters();
        SerialPortHandle = platform::OpenPort(port, platform::PortAccess::plain);
        if (SerialPortHandle == platform::kInvalidPort)
            return FailConnect(ERR_OPEN_PORT);
        return ConfigurePort({.baudRate = baudRate, .newer = false});
    });
}

int32_t ConnectSerialPrinter(const NadrelChar *port, uint32_t baudRate, int32_t openTimeout, int32_t framed) {
    return Guarded(
        [=] { return ConnectPatiently(port, openTimeout, {.baudRate = baudRate, .framed = framed}); });
}

int32_t ConnectSerialPrinterEx(const char *port, uint32_t baudRate, uint8_t byteSize, uint8_t stopBits,
                               uint8_t parity, int32_t openTimeout, int32_t framed) {
    return Guarded([=] {
        const std::u16string name = DeviceName(port);
        return ConnectPatiently(port == nullptr ? nullptr : name.c_str(), openTimeout,
                                {.baudRate = baudRate,
                                 .byteSize = byteSize,
                                 .stopBits = stopBits,
                                 .parity = parity,
                                 .readTotalConstant = 100,
                                 .framed = framed});
    });
}

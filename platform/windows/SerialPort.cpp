#include "platform/SerialPort.h"

#include "platform/windows/LastError.h"
#include "platform/windows/LineSettings.h"
#include "platform/windows/Port.h"
#include "platform/windows/WideText.h"

// The contract's numbers are the system's own.
static_assert(static_cast<DWORD>(platform::PortAccess::plain) == FILE_ATTRIBUTE_NORMAL);
static_assert(static_cast<DWORD>(platform::PortAccess::overlapped) ==
              (FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED));
static_assert(static_cast<DWORD>(platform::PortEvents::received) == EV_RXCHAR);
static_assert(static_cast<DWORD>(platform::PortSignal::setRts) == SETRTS);
static_assert(static_cast<DWORD>(platform::PortSignal::clearRts) == CLRRTS);
static_assert(static_cast<DWORD>(platform::PortSignal::setDtr) == SETDTR);
static_assert(static_cast<DWORD>(platform::PortSignal::clearDtr) == CLRDTR);
static_assert(platform::kPurgeAll == (PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR));
static_assert(sizeof(DCB) == 28);

namespace platform {

namespace {

constinit OpenHandle openPort;

} // namespace

HandleUse UsePort(PortHandle port) {
    return HandleUse(openPort, port, ERROR_INVALID_HANDLE);
}

// Always overlapped: the system serialises what is done through a handle that is not, and the receive
// thread's wait would hold up the host's writes.
PortHandle OpenPort(const char16_t *name, PortAccess access) {
    const HANDLE port = CreateFileW(Wide(name), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                    static_cast<DWORD>(access) | FILE_FLAG_OVERLAPPED, nullptr);
    const auto opened = reinterpret_cast<PortHandle>(port);
    if (opened != kInvalidPort)
        openPort.Set(opened);
    return opened;
}

bool GetLineSettings(PortHandle port, LineSettings &settings) {
    DCB block = {};
    block.DCBlength = sizeof block;
    const HandleUse use = UsePort(port);
    if (!use.IsOpen() || !GetCommState(use.Get(), &block))
        return false;
    settings = FromBlock(block);
    return true;
}

bool SetLineSettings(PortHandle port, const LineSettings &settings) {
    DCB block = {};
    block.DCBlength = sizeof block;
    const HandleUse use = UsePort(port);
    if (!use.IsOpen())
        return false;
    GetCommState(use.Get(), &block); // for the fields that the settings do not name
    ToBlock(settings, block);
    return SetCommState(use.Get(), &block);
}

bool GetPortTimeouts(PortHandle port, PortTimeouts &timeouts) {
    COMMTIMEOUTS block = {};
    const HandleUse use = UsePort(port);
    if (!use.IsOpen() || !GetCommTimeouts(use.Get(), &block))
        return false;
    timeouts = {block.ReadIntervalTimeout, block.ReadTotalTimeoutMultiplier, block.ReadTotalTimeoutConstant,
                block.WriteTotalTimeoutMultiplier, block.WriteTotalTimeoutConstant};
    return true;
}

bool SetPortTimeouts(PortHandle port, const PortTimeouts &timeouts) {
    COMMTIMEOUTS block = {timeouts.readInterval, timeouts.readTotalMultiplier, timeouts.readTotalConstant,
                          timeouts.writeTotalMultiplier, timeouts.writeTotalConstant};
    const HandleUse use = UsePort(port);
    return use.IsOpen() && SetCommTimeouts(use.Get(), &block);
}

bool SetPortEvents(PortHandle port, PortEvents events) {
    const HandleUse use = UsePort(port);
    return use.IsOpen() && SetCommMask(use.Get(), static_cast<DWORD>(events));
}

bool GetModemStatus(PortHandle port, uint32_t &status) {
    DWORD lines = 0;
    const HandleUse use = UsePort(port);
    if (!use.IsOpen() || !GetCommModemStatus(use.Get(), &lines))
        return false;
    status = lines;
    return true;
}

bool SignalPort(PortHandle port, PortSignal signal) {
    const HandleUse use = UsePort(port);
    return use.IsOpen() && EscapeCommFunction(use.Get(), static_cast<DWORD>(signal));
}

bool PurgePort(PortHandle port, uint32_t what) {
    const HandleUse use = UsePort(port);
    return use.IsOpen() && PurgeComm(use.Get(), what);
}

bool ClosePort(PortHandle port) {
    if (!openPort.Remove(port))
        return Fail(ERROR_INVALID_HANDLE);
    return CloseHandle(reinterpret_cast<HANDLE>(port));
}

} // namespace platform

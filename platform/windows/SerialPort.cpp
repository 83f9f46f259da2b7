#include "platform/SerialPort.h"

#include "platform/windows/LastError.h"
#include "platform/windows/LineSettings.h"
#include "platform/windows/Port.h"
#include "platform/windows/WideText.h"

#include <atomic>

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

std::atomic<PortHandle> openPort = kInvalidPort;

} // namespace

HANDLE FindPort(PortHandle port) {
    if (port != kInvalidPort && port == openPort)
        return reinterpret_cast<HANDLE>(port);
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

// Always overlapped: the system serialises what is done through a handle that is not, and the receive
// thread's wait would hold up the host's writes.
PortHandle OpenPort(const char16_t *name, PortAccess access) {
    const HANDLE port = CreateFileW(Wide(name), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                    static_cast<DWORD>(access) | FILE_FLAG_OVERLAPPED, nullptr);
    const auto opened = reinterpret_cast<PortHandle>(port);
    if (opened != kInvalidPort)
        openPort = opened;
    return opened;
}

bool GetLineSettings(PortHandle port, LineSettings &settings) {
    DCB block = {};
    block.DCBlength = sizeof block;
    const HANDLE handle = FindPort(port);
    if (handle == nullptr || !GetCommState(handle, &block))
        return false;
    settings = FromBlock(block);
    return true;
}

bool SetLineSettings(PortHandle port, const LineSettings &settings) {
    DCB block = {};
    block.DCBlength = sizeof block;
    const HANDLE handle = FindPort(port);
    if (handle == nullptr)
        return false;
    GetCommState(handle, &block); // for the fields that the settings do not name
    ToBlock(settings, block);
    return SetCommState(handle, &block);
}

bool GetPortTimeouts(PortHandle port, PortTimeouts &timeouts) {
    COMMTIMEOUTS block = {};
    const HANDLE handle = FindPort(port);
    if (handle == nullptr || !GetCommTimeouts(handle, &block))
        return false;
    timeouts = {block.ReadIntervalTimeout, block.ReadTotalTimeoutMultiplier, block.ReadTotalTimeoutConstant,
                block.WriteTotalTimeoutMultiplier, block.WriteTotalTimeoutConstant};
    return true;
}

bool SetPortTimeouts(PortHandle port, const PortTimeouts &timeouts) {
    COMMTIMEOUTS block = {timeouts.readInterval, timeouts.readTotalMultiplier, timeouts.readTotalConstant,
                          timeouts.writeTotalMultiplier, timeouts.writeTotalConstant};
    const HANDLE handle = FindPort(port);
    return handle != nullptr && SetCommTimeouts(handle, &block);
}

bool SetPortEvents(PortHandle port, PortEvents events) {
    const HANDLE handle = FindPort(port);
    return handle != nullptr && SetCommMask(handle, static_cast<DWORD>(events));
}

bool GetModemStatus(PortHandle port, uint32_t &status) {
    DWORD lines = 0;
    const HANDLE handle = FindPort(port);
    if (handle == nullptr || !GetCommModemStatus(handle, &lines))
        return false;
    status = lines;
    return true;
}

bool SignalPort(PortHandle port, PortSignal signal) {
    const HANDLE handle = FindPort(port);
    return handle != nullptr && EscapeCommFunction(handle, static_cast<DWORD>(signal));
}

bool PurgePort(PortHandle port, uint32_t what) {
    const HANDLE handle = FindPort(port);
    return handle != nullptr && PurgeComm(handle, what);
}

bool ClosePort(PortHandle port) {
    const HANDLE handle = FindPort(port);
    if (handle == nullptr)
        return false;
    openPort = kInvalidPort;
    CancelIoEx(handle, nullptr); // releases whoever is still reading or writing
    return CloseHandle(handle);
}

} // namespace platform

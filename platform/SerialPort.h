#pragma once

#include <cstdint>

// A serial port as the operating system's device.
//
// One thread may wait for or read received characters while another writes. Every call on a handle that is
// not open fails and touches nothing, also when the system has given the same number to something else since.
// Calls that fail return false and leave the reason in LastError.
namespace platform {

using PortHandle = intptr_t;
inline constexpr PortHandle kInvalidPort = -1;

// How the connect procedures ask for the port. What a back end needs inside to keep the port full duplex is
// its own business.
enum class PortAccess : uint32_t { plain = 0x80, overlapped = 0x40000080 };

enum class PortEvents : uint32_t { none = 0, received = 1 };

enum class PortSignal : uint32_t { setRts = 3, clearRts = 4, setDtr = 5, clearDtr = 6 };

// Abort what is being read and written and drop what is queued, both ways.
inline constexpr uint32_t kPurgeAll = 15;

// The line settings the library decides. What it does not name (XON/XOFF limits, special characters) stays as
// the port had it, where the system has such a thing.
struct LineSettings {
    uint32_t length = 0; // of the system's own block, 28
    uint32_t baudRate = 0;
    bool binary = false;
    bool parityCheck = false;
    bool ctsFlow = false;
    bool dsrFlow = false;
    uint32_t dtrControl = 0; // 0 = not used for flow control
    bool dsrSensitivity = false;
    bool xonXoffOut = false;
    bool xonXoffIn = false;
    bool errorCharacter = false;
    bool dropNull = false;
    uint32_t rtsControl = 0; // 0 = not used for flow control
    bool abortOnError = false;
    uint8_t byteSize = 0;
    uint8_t parity = 0;   // 0 none, 1 odd, 2 even, 3 mark, 4 space
    uint8_t stopBits = 0; // 0 one, 1 one and a half, 2 two

    bool operator==(const LineSettings &) const = default;
};

// Milliseconds. A read of n bytes ends after n x multiplier + constant, with what came; a write of n bytes
// fails after n x multiplier + constant with what went.
struct PortTimeouts {
    uint32_t readInterval = 0;
    uint32_t readTotalMultiplier = 0;
    uint32_t readTotalConstant = 0;
    uint32_t writeTotalMultiplier = 0;
    uint32_t writeTotalConstant = 0;

    bool operator==(const PortTimeouts &) const = default;
};

// Opens the named port for this process alone; a null name opens nothing. The caller closes it with
// ClosePort. kInvalidPort on failure.
PortHandle OpenPort(const char16_t *name, PortAccess access);

bool GetLineSettings(PortHandle port, LineSettings &settings);

// Fails when the driver does not take the settings as they stand.
bool SetLineSettings(PortHandle port, const LineSettings &settings);

bool GetPortTimeouts(PortHandle port, PortTimeouts &timeouts);
bool SetPortTimeouts(PortHandle port, const PortTimeouts &timeouts);

// Setting PortEvents::none releases a thread in WaitPortEvent.
bool SetPortEvents(PortHandle port, PortEvents events);

// Blocks until a character has been received, or the events are set to none, or the port is closed, which is
// a failure. `events` is what happened: none when released. A device that has gone, or a handle that is not
// open, fails after a pause, so that callers may simply ask again. A terminated thread leaves here.
bool WaitPortEvent(PortHandle port, PortEvents &events);

// Reads up to `count` bytes within the read time-outs; `got` is 0 when none came in time. A terminated thread
// leaves here.
bool ReadPort(PortHandle port, uint8_t *bytes, uint32_t count, uint32_t &got);

// Blocks until the device has taken all bytes; fails when it has not within the write time-outs, or is gone.
// `taken` counts the bytes that went either way.
bool WritePort(PortHandle port, const uint8_t *bytes, uint32_t count, uint32_t &taken);

bool GetModemStatus(PortHandle port, uint32_t &status);
bool SignalPort(PortHandle port, PortSignal signal);
bool PurgePort(PortHandle port, uint32_t what);

// Releases every thread that is in a call on the port. What the device has not taken by now is dropped, so
// that a stuck device cannot hold the caller.
bool ClosePort(PortHandle port);

} // namespace platform

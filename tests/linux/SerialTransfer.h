#pragma once

#include "platform/Error.h"
#include "platform/SerialPort.h"
#include "tests/linux/PseudoTerminal.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

using platform::PortEvents;
using platform::PortHandle;
using platform::PortTimeouts;
using Bytes = std::vector<uint8_t>;

inline constexpr uint32_t kLong = 600'000; // milliseconds: never in a test

// An open port, with a printer at the other end of the line.
class SerialTransfer : public testing::Test {
  protected:
    void SetUp() override {
        port = platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain);
        platform::LineSettings settings;
        settings.baudRate = 115200;
        settings.binary = true;
        settings.byteSize = 8;
        ASSERT_TRUE(platform::SetLineSettings(port, settings));
        ASSERT_TRUE(platform::SetPortEvents(port, PortEvents::received));
        SetTimeouts({0, 0, 10'000, 0, 10'000});
    }
    void TearDown() override { platform::ClosePort(port); }

    void SetTimeouts(const PortTimeouts &timeouts) { ASSERT_TRUE(platform::SetPortTimeouts(port, timeouts)); }

    bool Write(const Bytes &bytes) {
        taken = 0;
        return platform::WritePort(port, bytes.data(), static_cast<uint32_t>(bytes.size()), taken);
    }

    // What came; `readSucceeded` is the result of the call.
    Bytes Read(size_t count) {
        Bytes bytes(count);
        uint32_t got = 0;
        readSucceeded = platform::ReadPort(port, bytes.data(), static_cast<uint32_t>(count), got);
        bytes.resize(got);
        return bytes;
    }

    bool WaitEvent() {
        events = PortEvents::received;
        return platform::WaitPortEvent(port, events);
    }

    static int Error() { return static_cast<int>(platform::LastError()); }

    PseudoTerminal line;
    PortHandle port = platform::kInvalidPort;
    uint32_t taken = 0;
    bool readSucceeded = false;
    PortEvents events = PortEvents::none;
};

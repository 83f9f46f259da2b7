#pragma once

#include "tests/hosts/CallingHost.h"

#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/RawPeer.h"

namespace hosts {

// A test has a folder of its own, and starts host programs that have NADRELPRINTER.dll loaded.
class OnWindows : public testing::Test {
  protected:
    OnWindows() {
        if (!IsOnWindows())
            throw std::runtime_error("./dev windows runs these tests");
    }

    CallingHost StartHost(Environment environment = {}) {
        environment.emplace("NADREL_LINE_LOG", LineLog());
        return CallingHost(folder.Path(), environment);
    }

    endtoend::VirtualPrinter StartPrinter(const std::vector<std::string> &options = {}) {
        return endtoend::VirtualPrinter(NADREL_PRINTER_PROGRAM, folder.Path() / "printer", options);
    }

    // What was done to the serial line, a line each.
    std::string LineLog() const { return folder.Path() / "line.log"; }
    std::string Line() const { return endtoend::ContentsOf(LineLog()); }

    TemporaryFolder folder;
};

inline std::string Quoted(const std::string &text) {
    return '"' + text + '"';
}

// The call that connects over TCP.
inline std::string Wlan(uint32_t port, bool framed = false, int timeout = 10000) {
    return "InitWlanPrinter(\"127.0.0.1\", " + std::to_string(port) + ", " + std::to_string(timeout) + ", " +
           std::to_string(framed) + ")";
}

inline std::string Wireless(uint32_t port, bool framed = false, int timeout = 5000) {
    return "ConnectWirelessPrinter(\"127.0.0.1\", " + std::to_string(port) + ", " + std::to_string(timeout) +
           ", " + std::to_string(framed) + ")";
}

} // namespace hosts

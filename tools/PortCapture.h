#pragma once

#include "tools/Descriptor.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <thread>

namespace tool {

// A pseudo-terminal with nothing behind it: takes what is written to its path as to a serial port, and
// answers status requests as a printer would.
class PortCapture {
  public:
    using Sink = std::function<void(std::span<const uint8_t>)>;

    // The sink is called on a thread of the capture's own, from now until Finish. Throws std::system_error
    // when the system has no pseudo-terminal to give.
    explicit PortCapture(Sink sink);
    PortCapture(const PortCapture &) = delete;
    ~PortCapture();

    const std::string &Path() const { return path; }

    // Waits until everything that was written has reached the sink. Whoever wrote it has closed the port.
    void Finish();

  private:
    void Take();
    bool WaitForBytes();
    void Answer(std::span<const uint8_t> bytes);

    Sink sink;
    Descriptor terminal;
    Descriptor stop;
    std::string path;
    std::array<uint8_t, 4> latest{};
    std::thread reader;
};

} // namespace tool

#include "tools/Sending.h"

#include "tools/HexDump.h"
#include "tools/PortCapture.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <system_error>

namespace tool {
namespace {

// A file to write to, or the standard output.
class Output {
  public:
    explicit Output(const std::string &fileName) : name(fileName) {
        if (name == "-")
            return;
        file.open(name, std::ios::binary);
        Require(file.good());
    }

    std::ostream &Stream() { return name == "-" ? std::cout : file; }

    void Finish() { Require(Stream().flush().good()); }

  private:
    void Require(bool isGood) const {
        if (!isGood)
            throw std::system_error(errno, std::generic_category(), name + ": cannot be written");
    }

    std::string name;
    std::ofstream file;
};

void SendOnLink(const LinkOptions &options, const std::function<void()> &send) {
    const Link link(options);
    send();
    link.RequireEverythingTaken();
}

void SendToHex(const Destination &destination, const std::function<void()> &send) {
    Output output(destination.hex);
    HexDump dump(output.Stream());
    PortCapture capture([&dump](std::span<const uint8_t> bytes) { dump.Add(bytes); });
    SendOnLink({.serial = capture.Path(), .framed = destination.link.framed}, send);
    capture.Finish();
    dump.Finish();
    output.Finish();
}

} // namespace

void SendTo(const Destination &destination, const std::function<void()> &send) {
    if (destination.hex.empty())
        SendOnLink(destination.link, send);
    else
        SendToHex(destination, send);
}

} // namespace tool

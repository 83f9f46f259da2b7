#include "tools/Sending.h"

#include "tools/HexDump.h"
#include "tools/NotificationQueue.h"
#include "tools/PortCapture.h"

#include "api/NadrelPrinter.h"

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

// A printer that is out of paper takes nothing; this is for someone to put paper in.
constexpr std::chrono::seconds kPatience{60};

// A framed printer answers frame by frame. Its answer to a TCP connection that is closed already makes it
// lose the rest, so the connection stays until a question behind it all has been answered.
void AwaitTheLastAnswer(const Link &link, const LinkOptions &options) {
    NotificationQueue queue;
    const Listening listening(&NotificationQueue::Handle, &queue);
    const auto end = std::chrono::steady_clock::now() + kPatience;
    do {
        GetPrinterStatus(0);
        link.RequireEverythingTaken();
        if (queue.WaitFor("S", std::chrono::seconds(1)))
            return;
    } while (std::chrono::steady_clock::now() < end);
    throw LinkFailure(options.Name() + ": everything was sent, but the printer has answered nothing for " +
                      std::to_string(kPatience.count()) + " s; the end may not have arrived");
}

void SendOnLink(const LinkOptions &options, const std::function<void()> &send) {
    const Link link(options);
    send();
    link.RequireEverythingTaken();
    if (options.framed && !options.tcp.empty())
        AwaitTheLastAnswer(link, options);
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

#include "tools/Link.h"

#include "tools/Address.h"
#include "tools/Function.h"
#include "tools/PortTrouble.h"

#include "api/NadrelHost.h"
#include "api/NadrelPrinter.h"

#include <utf8.h>

#include <cstring>
#include <iterator>

namespace tool {
namespace {

// Five attempts: a port that another program has just closed may take a moment.
constexpr int32_t kOpenTimeoutMs = 1000;
constexpr int32_t kConnectTimeoutMs = 5000;

constexpr char kNoFramedAnswer[] =
    "no answer to 4 query frames in 1.6 s; is a printer there that speaks the framed form?";

Text ToText(const std::string &name) {
    Text text;
    utf8::utf8to16(name.begin(), name.end(), std::back_inserter(text));
    return text;
}

[[noreturn]] void Fail(const std::string &name, const std::string &why) {
    throw LinkFailure(name + ": " + why);
}

std::string SerialTrouble(const LinkOptions &options, int32_t result) {
    switch (result) {
    case ERR_OPEN_PORT:
        return "the serial port did not open in 5 attempts: " +
               PortTrouble(options.serial, TryPort(options.serial));
    case ERR_SET_COMM_STATE:
        return "the serial port does not take " + std::to_string(options.baudRate) +
               " baud with 8 bits, no parity and 1 stop bit";
    case ERR_SET_TIMEOUTS:
        return "the serial port does not take time-outs";
    case ERR_NO_ANSWER:
        return kNoFramedAnswer;
    default:
        return "the connection failed with result " + std::to_string(result);
    }
}

void ConnectSerial(const LinkOptions &options) {
    const int32_t result = ConnectSerialPrinter(ToText(options.serial).c_str(), options.baudRate,
                                                kOpenTimeoutMs, options.framed ? 1 : 0);
    if (result != NADREL_SUCCESS)
        Fail(options.serial, SerialTrouble(options, result));
}

void ConnectTcp(const LinkOptions &options) {
    const auto address = ParseAddress(options.tcp);
    if (!address)
        Fail(options.tcp, "it is no address, expected HOST, HOST:PORT or [IPV6]:PORT");
    const int32_t result = InitWlanPrinter(ToText(address->host).c_str(), address->port, kConnectTimeoutMs,
                                           options.framed ? 1 : 0);
    if (result == ERR_NO_ANSWER)
        Fail(options.tcp, kNoFramedAnswer);
    if (result != NADREL_SUCCESS)
        Fail(options.tcp, "no connection to port " + std::to_string(address->port) +
                              " within 5 s: " + AddressTrouble(*address));
}

} // namespace

Link::Link(const LinkOptions &options) : name(options.Name()) {
    if (options.serial.empty())
        ConnectTcp(options);
    else
        ConnectSerial(options);
}

Link::~Link() {
    ClosePrinter();
}

void Link::RequireEverythingTaken() const {
    NadrelLinkReport report{};
    report.size = sizeof report;
    if (GetLinkReport(&report) == 1 && report.bytesTaken < report.bytesAsked)
        Fail(name, "only " + std::to_string(report.bytesTaken) + " of " + std::to_string(report.bytesAsked) +
                       " bytes were sent: " + std::strerror(static_cast<int>(report.lastError)));
}

} // namespace tool

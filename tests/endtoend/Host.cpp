#include "tests/endtoend/Host.h"

#include "tests/endtoend/Waiting.h"

namespace endtoend {

std::string NameOf(Medium medium) {
    return medium == Medium::serial ? "Serial" : "Tcp";
}

std::string NameOf(Link link) {
    return NameOf(link.medium) + (link.form == Form::plain ? "Plain" : "Framed");
}

std::u16string ToUtf16(const std::string &ascii) {
    return {ascii.begin(), ascii.end()};
}

int32_t ConnectSerial(const std::string &path, Form form) {
    return InitPrinter(ToUtf16(path).c_str(), 115200, form == Form::framed);
}

int32_t ConnectTcp(uint32_t port, Form form) {
    return InitWlanPrinter(u"127.0.0.1", port, 10'000, form == Form::framed);
}

int32_t Connect(const VirtualPrinter &printer, Link link) {
    return link.medium == Medium::serial ? ConnectSerial(printer.SerialPath(), link.form)
                                         : ConnectTcp(printer.TcpPort(), link.form);
}

int32_t PrintLine(const std::string &text) {
    TextSaveSpool(ToUtf16(text).c_str());
    PrintData();
    return PrintSpool(1);
}

int32_t PrintUntilAnError() {
    int32_t result = 0;
    for (int times = 0; times < 100'000 && Report().errorCount == 0; ++times)
        result = PrintSpool(0);
    return result;
}

NadrelLinkReport Report() {
    NadrelLinkReport report = {};
    report.size = sizeof report;
    GetLinkReport(&report);
    return report;
}

Closing TimedClose() {
    const Stopwatch watch;
    const int32_t result = ClosePrinter();
    return {result, watch.Elapsed()};
}

} // namespace endtoend

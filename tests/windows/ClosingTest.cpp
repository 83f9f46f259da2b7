// Links that are closed, or not, while something is going on.

#include "tests/windows/OnWindows.h"

namespace hosts {
namespace {

using namespace endtoend;

class Closing : public OnWindows, public testing::WithParamInterface<Medium> {
  protected:
    std::string ConnectTo(const VirtualPrinter &printer) {
        return GetParam() == Medium::tcp
                   ? Wlan(printer.TcpPort())
                   : "InitPrinter(" + Quoted(PortName(printer.SerialPath())) + ", 115200, 0)";
    }
};

TEST_P(Closing, AHostMayEndWithTheLinkOpen) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Connect(ConnectTo(printer));
    EXPECT_EQ(host.Call("GetPrinterStatus(10000)"), 1);
    EXPECT_EQ(host.End(), 0);
}

TEST_P(Closing, AWindowMayCloseTheLinkWhenItIsTold) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Ask("listen");
    host.Ask("close when told");
    for (size_t i = 1; i <= 5; ++i) {
        host.Connect(ConnectTo(printer));
        host.Call("GetPrinterStatus(10000)");
        EXPECT_EQ(host.Told(i).size(), i);
        EXPECT_EQ(host.Call("ClosePrinter()"), 0);
    }
}

// A printer without paper reads nothing more, and what is printed is more than all buffers on the way take.
TEST_P(Closing, FromAWindowReleasesAWriteThatThePrinterDoesNotTake) {
    VirtualPrinter printer = StartPrinter({"--paper-out", "1"});
    CallingHost host = StartHost();
    host.Ask("listen");
    host.Ask("close when told");
    host.Connect(ConnectTo(printer));
    const std::string lines(4000, 'x');
    for (int i = 0; i < 100; ++i) {
        host.Ask("ControlCommand(b" + Quoted(lines) + ", 4000)");
        host.Ask("PrintData()");
    }
    for (int i = 0; i < 40; ++i)
        host.Say("PrintSpool(0)");
    EXPECT_TRUE(printer.AwaitListed("xxx"));
    printer.Say("send 30");
    EXPECT_EQ(host.Told(1), std::vector<std::string>{"54 1 30"});
    EXPECT_EQ(host.Answer(), "-11"); // of the last of them
}

INSTANTIATE_TEST_SUITE_P(, Closing, testing::ValuesIn(kEveryMedium), ParameterName<Medium>);

} // namespace
} // namespace hosts

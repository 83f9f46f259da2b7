#include "tests/windows/OnWindows.h"

namespace hosts {
namespace {

using namespace endtoend;

class WirelessLink : public OnWindows {
  protected:
    void PrintAndAwait(CallingHost &host, const VirtualPrinter &printer, const std::string &text) {
        host.Ask("TextSaveSpool(" + Quoted(text) + ")");
        host.Ask("PrintData()");
        EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
        EXPECT_TRUE(printer.AwaitListed(text));
    }
};

TEST_F(WirelessLink, PrintsAndAnswersOnAPlainLink) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Ask("listen");
    host.Connect(Wireless(printer.TcpPort()));
    PrintAndAwait(host, printer, "over the air");
    EXPECT_EQ(host.Call("GetPrinterStatusEX(10000)"), 1);
    EXPECT_EQ(host.Told(1).size(), 1U);
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(WirelessLink, ProbesAFramedPrinter) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    for (const std::string &connect : {Wlan(printer.TcpPort(), true), Wireless(printer.TcpPort(), true)}) {
        host.Connect(connect);
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    }
}

TEST_F(WirelessLink, FailsAFramedConnectToASilentPrinter) {
    VirtualPrinter printer = StartPrinter({"--silent"});
    CallingHost host = StartHost();
    EXPECT_EQ(host.Call(Wlan(printer.TcpPort(), true)), -5);
    EXPECT_EQ(host.Call("ClosePrinter()"), 0);
}

TEST_F(WirelessLink, FindsAHostByName) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Connect("InitWlanPrinter(\"localhost\", " + std::to_string(printer.TcpPort()) + ", 10000, 0)");
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(WirelessLink, ConnectsToAnIpv6Address) {
    if (ContentsOf("/proc/net/if_inet6").empty())
        GTEST_SKIP() << "this system has no IPv6";
    VirtualPrinter printer = StartPrinter({"--bind", "::1"});
    CallingHost host = StartHost();
    host.Connect("ConnectWirelessPrinter(\"::1\", " + std::to_string(printer.TcpPort()) + ", 2000, 0)");
    PrintAndAwait(host, printer, "six");
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

// The socket that was made for the other family goes at once.
TEST_F(WirelessLink, ToAnIpv6AddressDoesNotWaitForASocketThatWasNeverConnected) {
    if (ContentsOf("/proc/net/if_inet6").empty())
        GTEST_SKIP() << "this system has no IPv6";
    VirtualPrinter printer = StartPrinter({"--bind", "::1"});
    CallingHost host = StartHost();
    const Stopwatch watch;
    for (int i = 0; i < 40; ++i) {
        host.Connect("InitWlanPrinter(\"::1\", " + std::to_string(printer.TcpPort()) + ", 10000, 0)");
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    }
    EXPECT_LT(watch.Elapsed(), 40 * 100);
}

TEST_F(WirelessLink, ToAnAddressThatIsNoneIsRefused) {
    CallingHost host = StartHost();
    EXPECT_EQ(host.Call("InitWlanPrinter(\"\", 9100, 0, 0)"), -2);
    EXPECT_EQ(host.Call("InitWlanPrinter(null, 9100, 0, 0)"), -2);
    EXPECT_EQ(host.Call("InitWlanPrinter(\"127.0.0.1\", 70000, 0, 0)"), -2);
    EXPECT_EQ(host.Call("ConnectWirelessPrinter(\"\", 9100, 0, 0)"), -7);
}

TEST_F(WirelessLink, ToAPortWhereNobodyListensTimesOut) {
    CallingHost host = StartHost();
    EXPECT_EQ(host.Call(Wlan(1, false, 999)), -2);
    EXPECT_EQ(host.Call(Wireless(1, false, 400)), -7);
    EXPECT_EQ(host.Call("ClosePrinter()"), 0);
}

TEST_F(WirelessLink, ConnectsAndClosesTwoHundredTimesWithoutLosingHandles) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    std::string before;
    for (int i = 0; i < 200; ++i) {
        if (i == 20)
            before = host.Ask("next handle");
        host.Connect(Wlan(printer.TcpPort()));
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    }
    EXPECT_EQ(host.Ask("next handle"), before);
    host.Connect(Wlan(printer.TcpPort()));
    PrintAndAwait(host, printer, "after two hundred");
}

TEST_F(WirelessLink, SurvivesAPrinterThatHangsUp) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Connect(Wlan(printer.TcpPort()));
    PrintAndAwait(host, printer, "before");
    printer.Kill();
    for (int i = 0; i < 5; ++i) {
        host.Ask("PrintData()");
        EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
    }
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(WirelessLink, TakesABigSpoolWhole) {
    RawPeer peer(Medium::tcp);
    CallingHost host = StartHost();
    host.Connect(Wlan(peer.TcpPort()));
    const std::string line(2000, 'x');
    for (int i = 0; i < 100; ++i)
        host.Ask("ControlCommand(b" + Quoted(line) + ", 2000)");
    EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
    EXPECT_EQ(peer.Await(200'000), Bytes(200'000, 'x'));
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

} // namespace
} // namespace hosts

#include "tests/windows/OnWindows.h"

#include <map>
#include <memory>

namespace hosts {
namespace {

using namespace endtoend;

class Loading : public OnWindows {};

TEST_F(Loading, UnloadsAndLoadsAgain) {
    CallingHost host = StartHost();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(host.Ask("unload"), "unloaded");
        EXPECT_EQ(host.Ask("load NADRELPRINTER.dll"), "loaded");
    }
}

TEST_F(Loading, UnloadsOnceTheLinkIsClosed) {
    RawPeer peer(Medium::tcp);
    CallingHost host = StartHost();
    host.Connect(Wlan(peer.TcpPort()));
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    EXPECT_EQ(host.Ask("unload"), "unloaded");
}

TEST_F(Loading, UnloadsOnceThePortIsClosed) {
    RawPeer peer(Medium::serial);
    CallingHost host = StartHost();
    host.Connect("InitPrinter(" + Quoted(PortName(peer.SerialPath())) + ", 9600, 0)");
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    EXPECT_EQ(host.Ask("unload"), "unloaded");
    // The system has ended all that it did for the port, and wrote nothing where the library was.
    EXPECT_EQ(host.End(), 0);
}

TEST_F(Loading, LeavesNoHandleBehindWhenItIsUnloaded) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    std::vector<int> open;
    for (int i = 0; i < 6; ++i) {
        host.Connect(Wlan(printer.TcpPort()));
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
        EXPECT_EQ(host.Ask("unload"), "unloaded");
        open.push_back(std::stoi(host.Ask("open handles")));
        EXPECT_EQ(host.Ask("load NADRELPRINTER.dll"), "loaded");
    }
    EXPECT_EQ(open.back(), open[1]);
}

// What a port that is gone refuses at once is over: nothing is kept for it.
TEST_F(Loading, LeavesNoHandleBehindOfWhatFailedAtOnce) {
    std::vector<std::string> open;
    for (const bool isGone : {false, true}) {
        auto peer = std::make_unique<RawPeer>(Medium::serial);
        CallingHost host = StartHost();
        host.Connect("InitPrinter(" + Quoted(PortName(peer->SerialPath())) + ", 9600, 0)");
        if (isGone)
            peer.reset();
        host.Ask("PrintData()");
        host.Ask("PrintSpool(1)");
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
        EXPECT_EQ(host.Ask("unload"), "unloaded");
        open.push_back(host.Ask("open handles"));
    }
    EXPECT_EQ(open[1], open[0]);
}

TEST_F(Loading, KeepsItsCodeWhileItsThreadsRun) {
    RawPeer peer(Medium::tcp);
    CallingHost host = StartHost();
    host.Ask("listen");
    host.Connect(Wlan(peer.TcpPort()));
    EXPECT_EQ(host.Ask("unload"), "still loaded");
    peer.Send({'0'});
    EXPECT_EQ(host.Told(1), std::vector<std::string>{"54 1 30"});
}

TEST_F(Loading, BringsTheMessageAsString101) {
    EXPECT_EQ(StartHost().Ask("string 101"), "Windows sockets initialization failed.");
}

TEST_F(Loading, AnswersWithoutALink) {
    CallingHost host = StartHost();
    const std::map<std::string, int32_t> results{{"ControlCommand(b\"ab\", 2)", -11},
                                                 {"SaveSpool(\"ab\", 0, 0)", -11},
                                                 {"SelectForTTF(\"a\")", -11},
                                                 {"OneDimensionBarcodeSaveSpool(73, 2, 80, 1, \"12\")", -11},
                                                 {"PrintSpool(1)", -11},
                                                 {"GetPrinterStatus(0)", -1},
                                                 {"GetPrinterStatusEX(0)", -1},
                                                 {"EnterMSRMode(1)", -11},
                                                 {"CardRead(1)", 0},
                                                 {"SetPaymentReq(1, \"1234567890123\", \"\", \"\")", -1},
                                                 {"ClosePrinter()", 0},
                                                 {"ClosePrinterConnection()", 0}};
    for (const auto &[call, result] : results)
        EXPECT_EQ(host.Call(call), result) << call;
    EXPECT_EQ(host.Ask("handle of U2A(\"ab\")"), "0");
    EXPECT_EQ(host.Ask("handle of GetPortHandle()"), "-1");
}

// A socket library stands beside the program that refuses to start.
TEST_F(Loading, WithoutSocketsShowsTheMessageAndStillServesSerialPorts) {
    RawPeer peer(Medium::serial);
    CallingHost host(WindowsFolder() / "nosockets" / "caller.exe", folder.Path(),
                     {{"WINEDLLOVERRIDES", "ws2_32=n"}});
    EXPECT_EQ(host.Ask("box at load"), "loaded, box: Windows sockets initialization failed.");
    EXPECT_EQ(host.Call(Wlan(9100, false, 0)), -1);
    host.Connect("InitPrinter(" + Quoted(PortName(peer.SerialPath())) + ", 9600, 0)");
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

} // namespace
} // namespace hosts

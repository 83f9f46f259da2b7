#include "tests/windows/OnWindows.h"

#include <gmock/gmock.h>

namespace hosts {
namespace {

using namespace endtoend;

// What a connect ends with: the settings, without flow control, then DTR raised, then RTS.
std::string Raised(const std::string &settings) {
    return "speed " + settings + " free\nDTR 1 RTS 0\nDTR 1 RTS 1\n";
}

class Serial : public OnWindows {
  protected:
    Serial() : peer(Medium::serial), host(StartHost()) {}

    std::string Port(const std::string &name = "COM1") { return PortName(peer.SerialPath(), name); }
    std::string Init() { return "InitPrinter(" + Quoted(Port()) + ", 115200, 0)"; }

    RawPeer peer;
    CallingHost host;
};

TEST_F(Serial, InitPrinterSetsTheLineAndRaisesDtrAndRts) {
    host.Connect("InitPrinter(" + Quoted(Port()) + ", 19200, 0)");
    EXPECT_THAT(Line(), testing::EndsWith(Raised("19200 8N1")));
    EXPECT_THAT(Line(), testing::HasSubstr("DTR 0 RTS 0\n"));
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(Serial, ConnectSerialPrinterSetsTheLineAndRaisesDtrAndRts) {
    host.Connect("ConnectSerialPrinter(" + Quoted(Port()) + ", 57600, 1000, 0)");
    EXPECT_THAT(Line(), testing::EndsWith(Raised("57600 8N1")));
    EXPECT_THAT(Line(), testing::HasSubstr("DTR 0 RTS 0\n"));
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(Serial, ConnectSerialPrinterExTakesSizeStopBitsAndParity) {
    host.Connect("ConnectSerialPrinterEx(b" + Quoted(Port() + ":") + ", 9600, 7, 2, 2, 400, 0)");
    // A pseudo-terminal takes size and parity and drops them again.
    EXPECT_THAT(Line(), testing::HasSubstr("speed 9600 7E2 "));
    EXPECT_THAT(Line(), testing::EndsWith(Raised("9600 8N2")));
    EXPECT_EQ(host.Call("ClosePrinterConnection()"), 1);
}

TEST_F(Serial, ConnectSerialPrinterExFindsPortsPastTheNinth) {
    host.Connect("ConnectSerialPrinterEx(b" + Quoted(Port("COM12") + ":") + ", 9600, 8, 0, 0, 400, 0)");
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(Serial, EveryConnectOpensThePortOverlapped) {
    ASSERT_EQ(host.Ask("is a file overlapped"), "overlapped");
    ASSERT_EQ(host.Ask("is a plain file overlapped"), "error 87");
    for (const std::string &connect :
         {Init(), "ConnectSerialPrinter(" + Quoted(Port()) + ", 9600, 0, 0)",
          "ConnectSerialPrinterEx(b" + Quoted(Port()) + ", 9600, 8, 0, 0, 0, 0)"}) {
        host.Connect(connect);
        EXPECT_NE(host.Ask("handle of GetPortHandle()"), "-1");
        EXPECT_EQ(host.Ask("is the port overlapped"), "overlapped") << connect;
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
        EXPECT_EQ(host.Ask("handle of GetPortHandle()"), "-1");
    }
}

TEST_F(Serial, TheThreadsLeaveByThemselvesAtAClose) {
    host.Connect(Init());
    peer.Send({'0'});
    host.Ask("listen");
    host.Told(1);
    for (int i = 0; i < 20; ++i) {
        const Stopwatch watch;
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
        EXPECT_LT(watch.Elapsed(), 2000);
        host.Connect(Init());
        peer.Send({'x'}); // the reader is in its time-out at the next close
    }
}

TEST_F(Serial, ConnectsAndClosesAgainAndAgainWithoutLosingHandles) {
    for (int i = 0; i < 10; ++i) {
        host.Connect(Init());
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    }
    const std::string before = host.Ask("next handle");
    for (int i = 0; i < 50; ++i) {
        host.Connect(Init());
        EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    }
    EXPECT_EQ(host.Ask("next handle"), before);
}

TEST_F(Serial, WritesWhileTheReceiveThreadWaits) {
    host.Ask("listen");
    host.Connect(Init());
    for (int i = 0; i < 5; ++i) {
        peer.Forget();
        host.Ask("PrintData()");
        EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
        EXPECT_EQ(peer.Await(1), Bytes{0x0A});
        peer.Send({'0', static_cast<uint8_t>('a' + i)});
        EXPECT_EQ(host.Told(static_cast<size_t>(i) + 1).size(), static_cast<size_t>(i) + 1);
    }
    const std::vector<std::string> expected{"54 2 3061", "54 2 3062", "54 2 3063", "54 2 3064", "54 2 3065"};
    EXPECT_EQ(host.Told(5), expected);
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(Serial, APortThatIsMissingOrTakenIsMinusTwo) {
    EXPECT_EQ(host.Call("InitPrinter(\"COM9\", 9600, 0)"), -2);
    EXPECT_EQ(host.Call("InitPrinter(null, 9600, 0)"), 0);
    EXPECT_EQ(host.Call("ConnectSerialPrinter(\"COM9\", 9600, 0, 0)"), -2);
    EXPECT_EQ(host.Call("ConnectSerialPrinter(null, 9600, 0, 0)"), -2);
    EXPECT_EQ(host.Call("ConnectSerialPrinterEx(b\"COM9\", 9600, 8, 0, 0, 0, 0)"), -2);
    EXPECT_EQ(host.Call("ClosePrinter()"), 0);
}

TEST_F(Serial, SettingsThatThePortRefusesAreMinusThreeAndLeaveItOpen) {
    EXPECT_EQ(host.Call("ConnectSerialPrinterEx(b" + Quoted(Port()) + ", 9600, 9, 0, 0, 0, 0)"), -3);
    EXPECT_NE(host.Ask("handle of GetPortHandle()"), "-1");
    EXPECT_EQ(host.Call("ClosePrinter()"), 0);
}

TEST_F(Serial, ALinkThatIsOpenIsMinusOne) {
    host.Connect(Init());
    EXPECT_EQ(host.Call(Init()), -1);
    EXPECT_EQ(host.Call("ConnectSerialPrinter(" + Quoted(Port()) + ", 9600, 0, 0)"), -1);
    EXPECT_EQ(host.Call("ConnectSerialPrinterEx(b" + Quoted(Port()) + ", 9600, 8, 0, 0, 0, 0)"), -1);
    EXPECT_EQ(host.Call(Wlan(1)), -3);
    EXPECT_EQ(host.Call(Wireless(1)), -1);
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
    EXPECT_EQ(host.Call("ClosePrinter()"), 0);
}

class SerialPrinter : public OnWindows {
  protected:
    std::string Connect(const VirtualPrinter &printer, bool framed) {
        return "ConnectSerialPrinter(" + Quoted(PortName(printer.SerialPath())) + ", 115200, 1000, " +
               std::to_string(framed) + ")";
    }
};

TEST_F(SerialPrinter, PrintsAndAnswersOnAPlainLink) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Ask("listen");
    host.Connect(Connect(printer, false));
    host.Ask("TextSaveSpool(\"Thank you\")");
    host.Ask("PrintData()");
    EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
    EXPECT_TRUE(printer.AwaitListed("Thank you"));
    EXPECT_EQ(host.Call("GetPrinterStatus(10000)"), 1);
    // The question is asked again where the answer takes its time; both answers may then come as one.
    ASSERT_GE(host.Told(1).size(), 1U);
    EXPECT_EQ(host.Told(1)[0].substr(0, 3), "53 ");
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(SerialPrinter, AnswersTheProbeOfAFramedConnect) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Connect(Connect(printer, true));
    host.Ask("TextSaveSpool(\"framed\")");
    host.Ask("PrintData()");
    EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
    EXPECT_TRUE(printer.AwaitListed("framed"));
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

TEST_F(SerialPrinter, ThatIsSilentFailsAFramedConnectAfterFourProbes) {
    VirtualPrinter printer = StartPrinter({"--silent"});
    CallingHost host = StartHost();
    const Stopwatch watch;
    EXPECT_EQ(host.Call(Connect(printer, true)), -5);
    EXPECT_GE(watch.Elapsed(), 4 * 400);
    EXPECT_EQ(host.Call("ClosePrinter()"), 0);
    EXPECT_EQ(host.Ask("handle of GetPortHandle()"), "-1");
}

TEST_F(SerialPrinter, ThatGoesTakesNoProcessorTime) {
    VirtualPrinter printer = StartPrinter();
    CallingHost host = StartHost();
    host.Connect(Connect(printer, false));
    printer.Kill();
    const int before = std::stoi(host.Ask("processor time"));
    host.Call("GetPrinterStatus(2000)"); // pauses of two seconds in all
    EXPECT_LT(std::stoi(host.Ask("processor time")) - before, 1000);
    EXPECT_EQ(host.Call("ClosePrinter()"), 1);
}

} // namespace
} // namespace hosts

#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/Limits.h"

#include "tests/linux/Listener.h"

using namespace endtoend;

namespace {

constexpr char16_t kHere[] = u"127.0.0.1";

class WirelessConnection : public EndToEnd {};

} // namespace

TEST_F(WirelessConnection, OpensInBothOfItsWays) {
    StartPrinter();
    EXPECT_EQ(InitWlanPrinter(kHere, Printer().TcpPort(), 5000, 0), 1);
    EXPECT_EQ(PrintLine("first"), 1);
    EXPECT_EQ(ClosePrinter(), 1);
    EXPECT_EQ(ConnectWirelessPrinter(kHere, Printer().TcpPort(), 5000, 0), 1);
    EXPECT_EQ(PrintLine("second"), 1);
    EXPECT_EQ(ClosePrinterConnection(), 1);
    EXPECT_EQ(ClosePrinterConnection(), 0);
    EXPECT_TRUE(HasListed("\"first\""));
    EXPECT_TRUE(HasListed("\"second\""));
}

TEST_F(WirelessConnection, TakesHostNamesAndBothKindsOfAddresses) {
    const Listener four(AF_INET);
    EXPECT_EQ(InitWlanPrinter(u"localhost", four.Port(), 5000, 0), 1);
    EXPECT_EQ(ClosePrinter(), 1);
    EXPECT_EQ(ConnectWirelessPrinter(u"localhost", four.Port(), 5000, 0), 1);
    EXPECT_EQ(ClosePrinter(), 1);
    const Listener six(AF_INET6);
    EXPECT_EQ(InitWlanPrinter(u"::1", six.Port(), 5000, 0), 1);
    EXPECT_EQ(ClosePrinter(), 1);
    EXPECT_EQ(ConnectWirelessPrinter(u"::1", six.Port(), 5000, 0), 1);
    EXPECT_EQ(ClosePrinter(), 1);
}

TEST_F(WirelessConnection, IsRefusedWhileALinkIsOpenAndLeavesItAlone) {
    ASSERT_TRUE(Open({Medium::tcp, Form::plain}));
    EXPECT_EQ(InitWlanPrinter(kHere, Printer().TcpPort(), 1000, 0), -3);
    EXPECT_EQ(ConnectWirelessPrinter(kHere, Printer().TcpPort(), 0, 0), -1);
    EXPECT_EQ(InitPrinter(ToUtf16(Printer().SerialPath()).c_str(), 115200, 0), ERR_ALREADY_CONNECTED);
    EXPECT_EQ(PrintLine("still here"), 1);
    EXPECT_TRUE(HasListed("\"still here\""));
}

TEST_F(WirelessConnection, DoesNotTakeARefusalForAConnection) {
    const Listener refusing(AF_INET, Backlog::refusing);
    EXPECT_EQ(InitWlanPrinter(kHere, refusing.Port(), 3000, 0), -2);
    EXPECT_EQ(InitWlanPrinter(kHere, refusing.Port(), 0, 0), -2);
    const Stopwatch watch;
    EXPECT_EQ(ConnectWirelessPrinter(kHere, refusing.Port(), 400, 0), -7);
    EXPECT_GE(watch.Elapsed(), 400);
    EXPECT_EQ(ClosePrinter(), 0);
}

TEST_F(WirelessConnection, EndsWithTheTimeOutWhenNobodyAnswers) {
    const Listener silent(AF_INET, Backlog::silent);
    const Stopwatch first;
    EXPECT_EQ(InitWlanPrinter(kHere, silent.Port(), 1999, 0), -2);
    EXPECT_GE(first.Elapsed(), 1000);
    EXPECT_LT(first.Elapsed(), 1900 * kSlowdown);
    const Stopwatch second;
    EXPECT_EQ(ConnectWirelessPrinter(kHere, silent.Port(), 600, 0), -7);
    EXPECT_GE(second.Elapsed(), 600);
    EXPECT_LT(second.Elapsed(), 1500 * kSlowdown);
}

TEST_F(WirelessConnection, PollsOnceForATimeOutBelowASecond) {
    const Listener silent(AF_INET, Backlog::silent);
    for (const int32_t timeout : {999, 0, -1}) {
        const Stopwatch watch;
        EXPECT_EQ(InitWlanPrinter(kHere, silent.Port(), timeout, 0), -2);
        EXPECT_LT(watch.Elapsed(), 500 * kSlowdown);
    }
}

TEST_F(WirelessConnection, FindsAPrinterThatComesUpWhileItTries) {
    Listener later(AF_INET, Backlog::refusing);
    std::thread starting([&] { later.Listen(); });
    EXPECT_EQ(ConnectWirelessPrinter(kHere, later.Port(), 20'000, 0), 1);
    starting.join();
}

TEST_F(WirelessConnection, FailsForAddressesThatLeadNowhere) {
    EXPECT_EQ(InitWlanPrinter(u"", 9100, 0, 0), -2);
    EXPECT_EQ(InitWlanPrinter(nullptr, 9100, 0, 0), -2);
    EXPECT_EQ(InitWlanPrinter(u"no such host.invalid", 9100, 0, 0), -2);
    EXPECT_EQ(InitWlanPrinter(kHere, 65536, 0, 0), -2);
    EXPECT_LT(ConnectWirelessPrinter(nullptr, 9100, 0, 0), 0);
    EXPECT_EQ(ClosePrinter(), 0);
}

TEST_F(WirelessConnection, EndsAFramedConnectAfterFourQueryFramesWithoutAnswer) {
    StartPrinter({"--silent"});
    const Stopwatch watch;
    EXPECT_EQ(InitWlanPrinter(kHere, Printer().TcpPort(), 5000, 1), ERR_NO_ANSWER);
    EXPECT_GE(watch.Elapsed(), 1600);
    EXPECT_EQ(ClosePrinter(), 0);
    EXPECT_TRUE(HasListed("00 C0 51 C1", 4));
    EXPECT_EQ(Printer().Listed(""), 4u);
}

TEST_F(WirelessConnection, OpensFramedWhenThePrinterAnswers) {
    StartPrinter();
    EXPECT_EQ(ConnectWirelessPrinter(kHere, Printer().TcpPort(), 2000, 1), 1);
    EXPECT_EQ(heard.Next(), FramedStatus(0x40));
}

TEST_F(WirelessConnection, OneWayKeepsWhatWasComposedBeforeAndTheOtherForgetsIt) {
    StartPrinter();
    PrintLineFeed(5);
    EXPECT_EQ(InitWlanPrinter(kHere, Printer().TcpPort(), 5000, 0), 1);
    EXPECT_EQ(PrintSpool(1), 1);
    EXPECT_TRUE(HasListed("ESC d      print and feed 5 lines"));
    EXPECT_EQ(ClosePrinter(), 1);
    PrintLineFeed(6);
    EXPECT_EQ(ConnectWirelessPrinter(kHere, Printer().TcpPort(), 5000, 0), 1);
    EXPECT_EQ(PrintLine("new"), 1);
    EXPECT_TRUE(HasListed("\"new\""));
    EXPECT_EQ(Printer().Listed("6 lines"), 0u);
}

#include "tests/endtoend/EndToEnd.h"

using namespace endtoend;

namespace {

class SerialConnection : public EndToEnd {
  protected:
    std::u16string Port() { return ToUtf16(Printer().SerialPath()); }
    bool IsClosed() { return GetPortHandle() == NADREL_INVALID_HANDLE && ClosePrinter() == 0; }
};

} // namespace

TEST_F(SerialConnection, OpensInEachOfItsThreeWays) {
    StartPrinter();
    EXPECT_EQ(InitPrinter(Port().c_str(), 9600, 0), 1);
    EXPECT_EQ(PrintLine("first"), 1);
    EXPECT_EQ(ClosePrinter(), 1);
    EXPECT_EQ(ConnectSerialPrinter(Port().c_str(), 115200, 0, 0), 1);
    EXPECT_EQ(PrintLine("second"), 1);
    EXPECT_EQ(ClosePrinterConnection(), 1);
    EXPECT_EQ(ConnectSerialPrinterEx(Printer().SerialPath().c_str(), 921600, 8, 0, 0, 0, 0), 1);
    EXPECT_EQ(PrintLine("third"), 1);
    EXPECT_EQ(ClosePrinter(), 1);
    for (const char *text : {"\"first\"", "\"second\"", "\"third\""})
        EXPECT_TRUE(HasListed(text));
}

TEST_F(SerialConnection, TakesNamesWithThePrefixOfDevicesAndWithAColon) {
    StartPrinter();
    EXPECT_EQ(InitPrinter((u"\\\\.\\" + Port()).c_str(), 115200, 0), 1);
    EXPECT_EQ(ClosePrinter(), 1);
    EXPECT_EQ(ConnectSerialPrinterEx((Printer().SerialPath() + ":").c_str(), 115200, 8, 0, 0, 0, 0), 1);
}

TEST_F(SerialConnection, TakesSpeedsThatHaveNoName) {
    StartPrinter();
    EXPECT_EQ(InitPrinter(Port().c_str(), 250000, 0), 1);
    EXPECT_EQ(PrintLine("odd"), 1);
    EXPECT_TRUE(HasListed("\"odd\""));
}

TEST_F(SerialConnection, IsRefusedWhileALinkIsOpenAndLeavesItAlone) {
    ASSERT_TRUE(Open({Medium::serial, Form::plain}));
    const NadrelHandle handle = GetPortHandle();
    EXPECT_NE(handle, NADREL_INVALID_HANDLE);
    EXPECT_EQ(InitPrinter(Port().c_str(), 115200, 0), ERR_ALREADY_CONNECTED);
    EXPECT_EQ(ConnectSerialPrinter(Port().c_str(), 115200, 0, 0), ERR_ALREADY_CONNECTED);
    EXPECT_EQ(ConnectSerialPrinterEx(Printer().SerialPath().c_str(), 115200, 8, 0, 0, 0, 0),
              ERR_ALREADY_CONNECTED);
    EXPECT_EQ(ConnectWirelessPrinter(u"127.0.0.1", Printer().TcpPort(), 0, 0), -1);
    EXPECT_EQ(InitWlanPrinter(u"127.0.0.1", Printer().TcpPort(), 1000, 0), -3);
    EXPECT_EQ(GetPortHandle(), handle);
    EXPECT_EQ(PrintLine("still here"), 1);
    EXPECT_TRUE(HasListed("\"still here\""));
}

TEST_F(SerialConnection, SaysThatThereIsNoSuchPort) {
    const std::string nowhere = (folder.Path() / "nowhere").string();
    EXPECT_EQ(InitPrinter(ToUtf16(nowhere).c_str(), 115200, 0), ERR_OPEN_PORT);
    EXPECT_EQ(ConnectSerialPrinter(ToUtf16(nowhere).c_str(), 115200, 0, 0), ERR_OPEN_PORT);
    EXPECT_EQ(ConnectSerialPrinterEx(nowhere.c_str(), 115200, 8, 0, 0, 0, 0), ERR_OPEN_PORT);
    EXPECT_EQ(InitPrinter(u"", 115200, 0), ERR_OPEN_PORT);
    EXPECT_EQ(InitPrinter(u"/dev/null", 115200, 0), ERR_OPEN_PORT);
    EXPECT_EQ(ConnectSerialPrinter(nullptr, 115200, 0, 0), ERR_OPEN_PORT);
    EXPECT_TRUE(IsClosed());
}

TEST_F(SerialConnection, TriesAgainEvery200MillisecondsUntilThePortIsThere) {
    const std::u16string nowhere = ToUtf16((folder.Path() / "port").string());
    const Stopwatch watch;
    EXPECT_EQ(ConnectSerialPrinter(nowhere.c_str(), 115200, 600, 0), ERR_OPEN_PORT);
    EXPECT_GE(watch.Elapsed(), 600);
    StartPrinter();
    std::thread plugging(
        [&] { std::filesystem::create_symlink(Printer().SerialPath(), folder.Path() / "port"); });
    EXPECT_EQ(ConnectSerialPrinter(nowhere.c_str(), 115200, 20'000, 0), 1);
    plugging.join();
}

TEST_F(SerialConnection, KeepsThePortWhenItDoesNotTakeTheSettings) {
    keptOpen = 1;
    StartPrinter();
    const std::string port = Printer().SerialPath();
    EXPECT_EQ(ConnectSerialPrinterEx(port.c_str(), 115200, 7, 0, 0, 0, 0), ERR_SET_COMM_STATE);
    EXPECT_EQ(ClosePrinter(), 0);
    EXPECT_EQ(ConnectSerialPrinterEx(port.c_str(), 115200, 8, 0, 0, 0, 0), ERR_OPEN_PORT);
    EXPECT_EQ(InitPrinter(Port().c_str(), 115200, 0), ERR_OPEN_PORT);
    EXPECT_TRUE(IsClosed());
}

TEST_F(SerialConnection, TakesAPortForItselfAlone) {
    ASSERT_TRUE(Open({Medium::serial, Form::plain}));
    const auto anotherOpens = [this] {
        return Process(NADREL_HOST_PROGRAM, {"print", "serial", Printer().SerialPath()},
                       folder.Path() / "host")
            .Wait();
    };
    EXPECT_EQ(anotherOpens(), 11);
    EXPECT_EQ(ClosePrinter(), 1);
    EXPECT_EQ(anotherOpens(), 0);
}

TEST_F(SerialConnection, EndsAFramedConnectAfterFourQueryFramesWithoutAnswer) {
    StartPrinter({"--silent"});
    const Stopwatch watch;
    EXPECT_EQ(InitPrinter(Port().c_str(), 115200, 1), ERR_NO_ANSWER);
    EXPECT_GE(watch.Elapsed(), 1600);
    EXPECT_TRUE(IsClosed());
    EXPECT_TRUE(HasListed("00 C0 51 C1", 4));
    EXPECT_EQ(Printer().Listed(""), 4u);
}

TEST_F(SerialConnection, OpensFramedWhenThePrinterAnswers) {
    StartPrinter();
    EXPECT_EQ(ConnectSerialPrinter(Port().c_str(), 115200, 0, 1), 1);
    EXPECT_EQ(heard.Next(), FramedStatus(0x40));
    EXPECT_TRUE(HasListed("00 C0 51 C1"));
}

TEST_F(SerialConnection, ForgetsWhatWasComposedBeforeIt) {
    StartPrinter();
    PrintLineFeed(5);
    ASSERT_EQ(Connect(Printer(), {Medium::serial, Form::plain}), 1);
    EXPECT_EQ(PrintLine("new"), 1);
    EXPECT_TRUE(HasListed("LF         print the line"));
    EXPECT_EQ(Printer().Listed("ESC d"), 0u);
}

TEST_F(SerialConnection, TakesAnyLengthOfName) {
    EXPECT_EQ(InitPrinter(std::u16string(100'000, u'x').c_str(), 115200, 0), ERR_OPEN_PORT);
    EXPECT_EQ(InitPrinter(nullptr, 115200, 0), 0);
    EXPECT_EQ(ConnectSerialPrinterEx(nullptr, 115200, 8, 0, 0, 0, 0), ERR_OPEN_PORT);
}

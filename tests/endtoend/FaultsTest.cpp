#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/Limits.h"

#include <cerrno>
#include <csignal>
#include <future>

using namespace endtoend;
using namespace std::chrono_literals;

namespace {

class Faults : public OnEveryMedium {
  protected:
    // Bytes that mean nothing to the printer.
    void AppendPadding(int32_t count) {
        const Bytes padding(static_cast<size_t>(count));
        ASSERT_EQ(ControlCommand(padding.data(), count), count);
    }

    void ExpectToCloseInTime() {
        const Closing closed = TimedClose();
        EXPECT_EQ(closed.result, 1);
        EXPECT_LT(closed.time, kLongestClose);
    }

    bool IsDead(uint32_t error) const {
        return GetParam() == Medium::serial ? error == EIO : error == EPIPE || error == ECONNRESET;
    }
};
NADREL_ON_EVERY_MEDIUM(Faults);

} // namespace

TEST_P(Faults, ASilentPrinterIsAskedAgainAndThenGivenUp) {
    ASSERT_TRUE(Open(Plain(), {"--silent"}));
    const Stopwatch watch;
    EXPECT_EQ(GetPrinterStatus(450), -7);
    EXPECT_GE(watch.Elapsed(), 400);
    EXPECT_TRUE(HasListed("ESC v", 2));
    EXPECT_EQ(GetPrinterStatusEX(0), -7);
    EXPECT_TRUE(HasListed("ESC V", 1));
    EXPECT_EQ(PrintLine("it prints still"), 1);
    EXPECT_TRUE(HasListed("\"it prints still\""));
    EXPECT_EQ(Printer().Listed("ESC v"), 2u);
    EXPECT_EQ(Printer().Listed("ESC V"), 1u);
    EXPECT_EQ(Report().bytesReceived, 0u);
    EXPECT_EQ(heard.Count(), 0u);
}

TEST_P(Faults, ALateAnswerIsToldAllTheSame) {
    ASSERT_TRUE(Open(Plain(), {"--reply-delay", "350"}));
    EXPECT_EQ(GetPrinterStatus(200), -7);
    EXPECT_EQ(heard.Next(), Reply('S', "\x40"));
    EXPECT_EQ(GetPrinterStatus(10'000), 1);
}

TEST_P(Faults, AnAnswerInPiecesIsCutWhereThePrinterPauses) {
    const std::string model(200, 'M');
    ASSERT_TRUE(Open(Plain(), {"--split-replies", "--model", model}));
    GetPrinterModelName();
    const Notification first = heard.Next();
    EXPECT_EQ(first.kind, uint32_t{'D'});
    EXPECT_GE(first.data.size(), 1u);
    EXPECT_LT(first.data.size(), model.size());
    EXPECT_EQ(first.data, model.substr(0, first.data.size()));
}

TEST_P(Faults, AFramedConnectSurvivesAnswersInPieces) {
    StartPrinter({"--split-replies"});
    EXPECT_EQ(Connect(Printer(), Framed()), 1);
}

TEST_P(Faults, APrinterThatHangsUpLeavesAnErrorAndTheNextConnectWorks) {
    ASSERT_TRUE(Open(Plain(), {"--hang-up-after", "2000"}));
    AppendPadding(100'000);
    EXPECT_EQ(PrintUntilAnError(), 1);
    const NadrelLinkReport report = Report();
    EXPECT_LT(report.bytesTaken, report.bytesAsked);
    EXPECT_PRED1([this](uint32_t error) { return IsDead(error); }, report.lastError);
    EXPECT_EQ(GetPrinterStatus(200), -7);
    ExpectToCloseInTime();
    EXPECT_TRUE(Eventually([this] { return GetParam() == Medium::tcp || Printer().SerialPorts() == 2; }));
    ASSERT_EQ(Connect(Printer(), Plain()), 1);
    EXPECT_EQ(PrintLine("back"), 1);
    EXPECT_TRUE(HasListed("\"back\""));
    EXPECT_EQ(Report().errorCount, 0u);
}

TEST_P(Faults, APrinterThatDiesLeavesAnError) {
    ASSERT_TRUE(Open(Plain()));
    EXPECT_EQ(PrintLine("last words"), 1);
    EXPECT_TRUE(HasListed("\"last words\""));
    Printer().Kill();
    AppendPadding(1000);
    EXPECT_EQ(PrintUntilAnError(), 1);
    EXPECT_PRED1([this](uint32_t error) { return IsDead(error); }, Report().lastError);
    EXPECT_EQ(GetPrinterStatus(0), -7);
    ExpectToCloseInTime();
}

TEST_P(Faults, ASlowReaderGetsEverything) {
    ASSERT_TRUE(Open(Plain(), {"--read-rate", "4000"}));
    const Stopwatch watch;
    const std::string text(250, 'x');
    for (int line = 0; line < 8; ++line)
        TextSaveSpool(ToUtf16(text).c_str());
    PrintData();
    EXPECT_EQ(PrintSpool(1), 1);
    EXPECT_EQ(Report().bytesTaken, 2001u);
    EXPECT_EQ(Report().errorCount, 0u);
    EXPECT_TRUE(HasListed("(2000 bytes)"));
    EXPECT_TRUE(HasListed("LF"));
    EXPECT_GE(watch.Elapsed(), 400);
}

TEST_P(Faults, APrinterWithoutPaperSaysSo) {
    ASSERT_TRUE(Open(Plain(), {"--paper-out"}));
    EXPECT_EQ(GetPrinterStatus(5000), 1);
    EXPECT_EQ(heard.Next().data.front(), '\x41');
    EXPECT_EQ(Set_PrintOutStatus(1), 0);
    EXPECT_TRUE(HasListed("print-out reports on"));
    EXPECT_EQ(PrintLine("nothing to print on"), 1);
    EXPECT_EQ(heard.Next(), Reply('T', "01"));
}

TEST_P(Faults, ASendWaitsUntilThereIsPaperAgain) {
    ASSERT_TRUE(Open(Plain(), {"--paper-out"}));
    EXPECT_EQ(PrintLine("first"), 1);
    AppendPadding(400'000);
    auto sending = std::async(std::launch::async, [] {
        int32_t printed = 0;
        for (int times = 0; times < 16; ++times)
            printed += PrintSpool(0);
        return printed;
    });
    EXPECT_EQ(sending.wait_for(300ms), std::future_status::timeout);
    EXPECT_EQ(Printer().Listed("first"), 0u);
    Printer().Say("paper-in");
    EXPECT_EQ(sending.get(), 16);
    EXPECT_TRUE(HasListed("\"first\""));
    EXPECT_EQ(Report().bytesTaken, 16u * 400'000 + 6);
    EXPECT_EQ(Report().errorCount, 0u);
}

TEST_P(Faults, AFloodDisturbsNeitherPrintingNorAsking) {
    ASSERT_TRUE(Open(Plain(), {"--flood"}));
    EXPECT_TRUE(Eventually([] { return Report().bytesReceived > 100'000; }));
    EXPECT_EQ(PrintLine("through the flood"), 1);
    EXPECT_TRUE(HasListed("\"through the flood\""));
    EXPECT_EQ(GetPrinterStatus(5000), 1);
    const Notification told = heard.Next();
    EXPECT_EQ(told.kind, uint32_t{'T'});
    EXPECT_LE(told.length, 1024u);
    EXPECT_EQ(told.data, std::string(told.length, '0'));
    ExpectToCloseInTime();
}

TEST_P(Faults, APrinterThatAnswersWithoutBeingAskedDisturbsNothing) {
    ASSERT_TRUE(Open(Plain()));
    EXPECT_EQ(PrintLine("ready"), 1);
    EXPECT_TRUE(HasListed("\"ready\""));
    for (const char *noise : {"send 00", "send FF FF FF", "send C0", "send C1 7D", "send 1B", "send 02"})
        Printer().Say(noise);
    EXPECT_TRUE(Eventually([] { return Report().bytesReceived == 9; }));
    EXPECT_EQ(GetPrinterStatus(5000), 1);
    ExpectToCloseInTime();
}

namespace {

class SendLimit : public EndToEnd {};

} // namespace

// A pseudo-terminal keeps some tens of thousands of bytes before it takes no more.
TEST_F(SendLimit, OfASerialPortIsAHundredMillisecondsAByte) {
    ASSERT_TRUE(Open({Medium::serial, Form::plain}, {"--paper-out"}));
    EXPECT_EQ(PrintLine("first"), 1);
    InitPrinterStatus();
    PrintLineFeed(1);
    const Stopwatch watch;
    EXPECT_EQ(PrintUntilAnError(), 1);
    EXPECT_GE(watch.Elapsed(), 500);
    EXPECT_LT(watch.Elapsed(), 2000 * kSlowdown);
    const NadrelLinkReport report = Report();
    EXPECT_LT(report.bytesTaken, report.bytesAsked);
    EXPECT_LE(report.bytesAsked - report.bytesTaken, 5u);
    EXPECT_EQ(report.lastError, static_cast<uint32_t>(ETIMEDOUT));
    EXPECT_EQ(report.errorCount, 1u);
}

TEST_F(SendLimit, OfATcpLinkIsSetByTheHost) {
    EXPECT_EQ(SetSendTimeout(-1), 0);
    EXPECT_EQ(SetSendTimeout(300), 1);
    ASSERT_TRUE(Open({Medium::tcp, Form::plain}, {"--paper-out"}));
    EXPECT_EQ(PrintLine("first"), 1);
    const Bytes padding(400'000);
    EXPECT_EQ(ControlCommand(padding.data(), 400'000), 400'000);
    const Stopwatch watch;
    EXPECT_EQ(PrintUntilAnError(), 1);
    EXPECT_GE(watch.Elapsed(), 300);
    const NadrelLinkReport report = Report();
    EXPECT_LT(report.bytesTaken, report.bytesAsked);
    EXPECT_GT(report.bytesTaken + 400'000, report.bytesAsked);
    EXPECT_EQ(report.lastError, static_cast<uint32_t>(ETIMEDOUT));
    EXPECT_EQ(report.errorCount, 1u);
}

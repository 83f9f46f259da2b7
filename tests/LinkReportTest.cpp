#include "api/NadrelHost.h"
#include "link/ReceiveThread.h"
#include "link/ResponseParser.h"
#include "link/Write.h"
#include "tests/LibraryTest.h"

#include <cstring>

namespace nadrel {
namespace {

class LinkReportTest : public LibraryTest {
  protected:
    static NadrelLinkReport Report() {
        NadrelLinkReport report = {};
        report.size = sizeof report;
        EXPECT_EQ(1, GetLinkReport(&report));
        return report;
    }
};

TEST_F(LinkReportTest, RefusesANullPointer) {
    EXPECT_EQ(0, GetLinkReport(nullptr));
}

TEST_F(LinkReportTest, RefusesASizeItDoesNotKnowAndWritesNothing) {
    Counters.bytesAsked = 5;
    const uint32_t known = sizeof(NadrelLinkReport);
    for (const uint32_t size : {0u, known - 1, known + 1, 0xFFFFFFFFu}) {
        NadrelLinkReport report;
        std::memset(&report, 0xEE, sizeof report);
        report.size = size;
        NadrelLinkReport before = report;
        EXPECT_EQ(0, GetLinkReport(&report));
        EXPECT_EQ(0, std::memcmp(&before, &report, sizeof report));
    }
}

TEST_F(LinkReportTest, IsEmptyBeforeAnythingHappened) {
    const NadrelLinkReport report = Report();
    EXPECT_EQ(sizeof(NadrelLinkReport), report.size);
    EXPECT_EQ(0u, report.lastError);
    EXPECT_EQ(0u, report.errorCount);
    EXPECT_EQ(0u, report.bytesAsked);
    EXPECT_EQ(0u, report.bytesTaken);
    EXPECT_EQ(0u, report.bytesReceived);
    EXPECT_EQ(0u, report.bytesDropped);
    EXPECT_EQ(0u, report.notificationsPosted);
}

TEST_F(LinkReportTest, CountsWhatASerialPortTook) {
    OpenSerialLink();
    FillSpool(100);
    PrintSpool(0);
    CardCancel();
    EXPECT_EQ(101u, Report().bytesAsked);
    EXPECT_EQ(101u, Report().bytesTaken);
    EXPECT_EQ(0u, Report().errorCount);
}

TEST_F(LinkReportTest, CountsWhatASerialPortDidNotTake) {
    OpenSerialLink();
    FillSpool(100);
    os.Answer("WritePort", {.failed = true, .error = 110, .taken = 60}, 1);
    os.Answer("WritePort", {.failed = true, .error = 5, .taken = 0}, 2);
    PrintSpool(0);
    PrintSpool(0);
    PrintSpool(0);
    const NadrelLinkReport report = Report();
    EXPECT_EQ(300u, report.bytesAsked);
    EXPECT_EQ(160u, report.bytesTaken);
    EXPECT_EQ(2u, report.errorCount);
    EXPECT_EQ(5u, report.lastError);
}

TEST_F(LinkReportTest, CountsWhatASocketDidNotTake) {
    OpenWirelessLink();
    FillSpool(100);
    os.Answer("Send", {.failed = true, .error = 104, .taken = 40});
    PrintSpool(0);
    PrintSpool(0);
    const NadrelLinkReport report = Report();
    EXPECT_EQ(200u, report.bytesAsked);
    EXPECT_EQ(140u, report.bytesTaken);
    EXPECT_EQ(1u, report.errorCount);
    EXPECT_EQ(104u, report.lastError);
}

TEST_F(LinkReportTest, CountsTheFramedFormOfAJob) {
    OpenSerialLink(1);
    ResetCounters();
    FillSpool(1, 0x41);
    PrintSpool(0);
    EXPECT_EQ(12u, Report().bytesAsked);
}

TEST_F(LinkReportTest, CountsWhatWasReceivedAndDropped) {
    OpenSerialLink();
    for (int32_t i = 0; i < ReceiveRing::kMostQueued - 2; ++i)
        ReceiveQueue->Put('x');
    os.PrinterSends({1, 2, 3, 4, 5});
    os.RunThread(ReceiveThreadBody, 10);
    EXPECT_EQ(5u, Report().bytesReceived);
    EXPECT_EQ(3u, Report().bytesDropped);
}

TEST_F(LinkReportTest, CountsNotifications) {
    OpenSerialLink();
    Queue({0xC0, 0x06, 0xC0, 0x15});
    os.RunThread(ParserThreadBody, 500);
    EXPECT_EQ(2u, os.Notifications().size());
    EXPECT_EQ(2u, Report().notificationsPosted);
}

TEST_F(LinkReportTest, StandsAfterAClose) {
    OpenSerialLink();
    CardCancel();
    ClosePrinter();
    EXPECT_EQ(1u, Report().bytesAsked);
    EXPECT_EQ(1u, Report().bytesTaken);
}

TEST_F(LinkReportTest, BeginsAnewAtTheNextConnect) {
    OpenSerialLink();
    os.Fail("WritePort", 5);
    CardCancel();
    ClosePrinter();
    OpenWirelessLink();
    EXPECT_EQ(0u, Report().bytesAsked);
    EXPECT_EQ(0u, Report().errorCount);
    EXPECT_EQ(0u, Report().lastError);
}

TEST_F(LinkReportTest, StandsWhenAConnectIsRefused) {
    OpenSerialLink();
    CardCancel();
    EXPECT_EQ(-1, InitPrinter(u"COM1", 9600, 0));
    EXPECT_EQ(-1, ConnectSerialPrinter(u"COM1", 9600, 0, 0));
    EXPECT_EQ(-3, InitWlanPrinter(u"printer", 9100, 0, 0));
    EXPECT_EQ(-1, ConnectWirelessPrinter(u"printer", 9100, 0, 0));
    EXPECT_EQ(1u, Report().bytesAsked);
}

TEST_F(LinkReportTest, CountsNothingThatWasWrittenWithoutALink) {
    CardCancel();
    EXPECT_EQ(0u, Report().bytesAsked);
}

} // namespace
} // namespace nadrel

#include "link/ReceiveThread.h"
#include "link/ResponseParser.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;

class StatusTest : public LibraryTest {
  protected:
    void Framed() {
        OpenSerialLink();
        FramedMode = 1;
    }
};

TEST_F(StatusTest, WithoutALinkTheQueriesGiveMinus1AndAskNothing) {
    EXPECT_EQ(-1, GetPrinterStatus(1000));
    EXPECT_EQ(-1, GetPrinterStatusEX(1000));
    EXPECT_THAT(os.CallsOf({"Wait", "WritePort", "Send"}), IsEmpty());
    EXPECT_EQ(0, StatusPending);
    EXPECT_EQ(0, StatusCaptureByte);
}

TEST_F(StatusTest, AQueryTakesItsStepsInOrder) {
    OpenSerialLink();
    os.OnCall(
        "Wait", [] { StatusCaptureByte = 0x16; }, 2);
    EXPECT_EQ(1, GetPrinterStatus(1000));
    EXPECT_THAT(os.Calls(), ElementsAre("CreateTimedEvent()", "WritePort(3, 1B 76)", "Wait(200)",
                                        "WritePort(3, 1B 76)", "Wait(200)", "CloseTimedEvent()"));
    EXPECT_EQ(400u, os.Now());
}

TEST_F(StatusTest, TheExtendedQueryHasItsOwnLetter) {
    OpenSerialLink();
    os.OnCall("Wait", [] { StatusCaptureByte = 0x16; });
    EXPECT_EQ(1, GetPrinterStatusEX(1000));
    EXPECT_THAT(os.Calls(),
                ElementsAre("CreateTimedEvent()", "WritePort(3, 1B 56)", "Wait(200)", "CloseTimedEvent()"));
}

TEST_F(StatusTest, TheQueriesGoOverTcpAsWell) {
    OpenWirelessLink();
    EXPECT_EQ(-7, GetPrinterStatus(0));
    EXPECT_EQ(-7, GetPrinterStatusEX(0));
    EXPECT_THAT(os.CallsOf({"Send"}), ElementsAre("Send(3, 1B 76)", "Send(3, 1B 56)"));
}

TEST_F(StatusTest, OnAFramedLinkBothQueriesAreTheQueryFrame) {
    Framed();
    EXPECT_EQ(-7, GetPrinterStatus(0));
    EXPECT_EQ(-7, GetPrinterStatusEX(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 51 C1", "00 C0 51 C1"));
    EXPECT_EQ(1, StatusPending);
}

TEST_F(StatusTest, TheRequestIsOutstandingAndTheCaptureArmedBeforeTheFirstWrite) {
    OpenSerialLink();
    StatusCaptureByte = 0x16;
    os.OnCall("WritePort", [] {
        EXPECT_EQ(1, StatusPending);
        EXPECT_EQ(0xFF, StatusCaptureByte);
    });
    EXPECT_EQ(-7, GetPrinterStatus(200));
}

struct Attempts {
    int32_t timeout;
    size_t attempts;

    friend void PrintTo(const Attempts &within, std::ostream *out) { *out << within.timeout << " ms"; }
};

class StatusAttemptsTest : public StatusTest, public testing::WithParamInterface<Attempts> {};

INSTANTIATE_TEST_SUITE_P(Within, StatusAttemptsTest,
                         testing::Values(Attempts{0, 1}, Attempts{-5, 1}, Attempts{INT32_MIN, 1},
                                         Attempts{199, 1}, Attempts{200, 1}, Attempts{399, 1},
                                         Attempts{400, 2}, Attempts{450, 2}, Attempts{1000, 5}));

TEST_P(StatusAttemptsTest, AsksSoOftenAndGivesMinus7) {
    OpenSerialLink();
    EXPECT_EQ(-7, GetPrinterStatus(GetParam().timeout));
    EXPECT_THAT(WrittenHex(), SizeIs(GetParam().attempts));
    EXPECT_EQ(200 * GetParam().attempts, os.Now());
    EXPECT_EQ(1, StatusPending);
}

TEST_P(StatusAttemptsTest, ExtendedAsksSoOftenAndGivesMinus7) {
    OpenSerialLink();
    EXPECT_EQ(-7, GetPrinterStatusEX(GetParam().timeout));
    EXPECT_THAT(WrittenHex(), SizeIs(GetParam().attempts));
}

TEST_P(StatusAttemptsTest, AnAnswerInTheLastPauseCounts) {
    OpenSerialLink();
    os.OnCall(
        "Wait", [] { StatusCaptureByte = 0xFE; }, static_cast<int>(GetParam().attempts));
    EXPECT_EQ(1, GetPrinterStatus(GetParam().timeout));
    EXPECT_THAT(WrittenHex(), SizeIs(GetParam().attempts));
}

TEST_F(StatusTest, AnyByteBelowFFIsAnAnswer) {
    OpenSerialLink();
    for (const uint8_t byte : {uint8_t{0x00}, uint8_t{0x02}, uint8_t{0x1B}, uint8_t{0xC0}, uint8_t{0xFE}}) {
        os.OnCall("Wait", [byte] { StatusCaptureByte = byte; });
        EXPECT_EQ(1, GetPrinterStatus(200));
    }
    EXPECT_EQ(-7, GetPrinterStatus(200));
}

TEST_F(StatusTest, TheCaptureIsArmedOnlyOnce) {
    OpenSerialLink();
    os.OnCall(
        "WritePort", [] { StatusCaptureByte = 0x16; }, 2);
    EXPECT_EQ(1, GetPrinterStatus(1000));
    EXPECT_EQ(2u, os.CountOf("WritePort"));
}

TEST_F(StatusTest, AWriteThatFailsIsMadeAgainAtTheNextAttempt) {
    OpenSerialLink();
    os.FailAlways("WritePort", 1121);
    EXPECT_EQ(-7, GetPrinterStatus(600));
    EXPECT_EQ(3u, os.CountOf("WritePort"));
    EXPECT_EQ(1121u, LastLinkError);
}

TEST_F(StatusTest, AskingDoesNotUseTheSpool) {
    OpenSerialLink();
    FillSpool(409601 - 1);
    SpoolLength = 409601;
    EXPECT_EQ(-7, GetPrinterStatus(200));
    EXPECT_EQ(1u, os.CountOf("WritePort"));
    EXPECT_EQ(409601, SpoolLength);
}

TEST_F(StatusTest, APrinterThatAnswersWhileTheQueryWaitsIsHeardAndNotified) {
    OpenSerialLink();
    os.OnCall("Wait", [this] {
        os.PrinterSends({0x16}, 20);
        os.RunThread(ReceiveThreadBody, 50);
        os.RunThread(ParserThreadBody, 120);
    });
    EXPECT_EQ(1, GetPrinterStatus(1000));
    EXPECT_EQ(200u, os.Now());
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(0x00530001u, os.Notifications()[0].wParam);
    EXPECT_THAT(os.Notifications()[0].bytes, ElementsAre(0x16));
    EXPECT_EQ(0, StatusPending);
}

TEST_F(StatusTest, AStatusOf0IsAnAnswerThatIsNotNotified) {
    OpenSerialLink();
    os.OnCall("Wait", [this] {
        os.PrinterSends({0x00}, 20);
        os.RunThread(ReceiveThreadBody, 50);
        os.RunThread(ParserThreadBody, 120);
    });
    EXPECT_EQ(1, GetPrinterStatus(1000));
    EXPECT_THAT(os.Notifications(), IsEmpty());
    EXPECT_EQ(1, StatusPending);
}

TEST_F(StatusTest, ALateAnswerIsNotifiedAllTheSame) {
    OpenSerialLink();
    EXPECT_EQ(-7, GetPrinterStatus(200));
    os.PrinterSends({0x16});
    os.RunThread(ReceiveThreadBody, 10);
    os.RunThread(ParserThreadBody, 300);
    ASSERT_THAT(os.Notifications(), SizeIs(1));
    EXPECT_EQ(uint32_t{'S'}, os.Notifications()[0].Kind());
}

TEST_F(StatusTest, TheModelNameIsAskedFor) {
    OpenSerialLink();
    GetPrinterModelName();
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1B 59 FF)"));
    EXPECT_EQ(1, ModelNamePending);
}

TEST_F(StatusTest, TheFramedModelNameRequest) {
    Framed();
    GetPrinterModelName();
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 33 1B 59 FF E4 59 C1"));
    EXPECT_EQ(1, ModelNamePending);
}

TEST_F(StatusTest, TheFirmwareVersionIsAskedFor) {
    OpenSerialLink();
    GetFirmwareVersion();
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1B 00 01)"));
    EXPECT_EQ(1, FirmwarePending);
}

TEST_F(StatusTest, TheFramedFirmwareVersionRequest) {
    Framed();
    GetFirmwareVersion();
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 33 1B 00 01 1A 00 C1"));
    EXPECT_EQ(1, FirmwarePending);
}

TEST_F(StatusTest, NamesAndVersionsAreOutstandingOnlyBehindTheWrite) {
    OpenSerialLink();
    os.OnEveryCall("WritePort", [] {
        EXPECT_EQ(0, ModelNamePending);
        EXPECT_EQ(0, FirmwarePending);
    });
    GetPrinterModelName();
    ModelNamePending = 0;
    GetFirmwareVersion();
    EXPECT_EQ(1, FirmwarePending);
}

TEST_F(StatusTest, NamesAndVersionsAreOutstandingAlsoWithoutALinkOrWhenTheWriteFails) {
    GetPrinterModelName();
    GetFirmwareVersion();
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(1, ModelNamePending);
    EXPECT_EQ(1, FirmwarePending);
    OpenSerialLink();
    os.FailAlways("WritePort", 5);
    GetPrinterModelName();
    GetFirmwareVersion();
    EXPECT_EQ(1, ModelNamePending);
    EXPECT_EQ(1, FirmwarePending);
}

TEST_F(StatusTest, PrintOutReportsAreSwitchedOn) {
    OpenSerialLink();
    os.OnCall("WritePort", [] { EXPECT_EQ(1, PrintOutStatusArmed); });
    EXPECT_EQ(0, Set_PrintOutStatus(1));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1D 76 01)"));
    EXPECT_EQ(1, PrintOutStatusArmed);
}

TEST_F(StatusTest, PrintOutReportsAreSwitchedOffByAnythingElse) {
    OpenSerialLink();
    for (const uint32_t mode : {0u, 2u, 0x101u, 0xFFFFFFFFu}) {
        PrintOutStatusArmed = 1;
        os.OnCall("WritePort", [] { EXPECT_EQ(0, PrintOutStatusArmed); });
        EXPECT_EQ(0, Set_PrintOutStatus(mode));
        EXPECT_EQ("1D 76 00", WrittenHex().back());
        EXPECT_EQ(0, PrintOutStatusArmed);
    }
}

TEST_F(StatusTest, TheFramedPrintOutRequests) {
    Framed();
    EXPECT_EQ(0, Set_PrintOutStatus(1));
    EXPECT_EQ(0, Set_PrintOutStatus(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 33 1D 76 01 1C 76 C1",
                                          "00 C0 44 31 30 30 30 33 1D 76 00 1D 76 C1"));
}

TEST_F(StatusTest, ASpoolPastItsCapacityKeepsRequestsBack) {
    OpenSerialLink();
    SpoolLength = 409601;
    GetPrinterModelName();
    GetFirmwareVersion();
    EXPECT_EQ(-12, Set_PrintOutStatus(1));
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(0, ModelNamePending);
    EXPECT_EQ(0, FirmwarePending);
    EXPECT_EQ(0, PrintOutStatusArmed);
}

TEST_F(StatusTest, AFullSpoolKeepsNoRequestBack) {
    OpenSerialLink();
    SpoolLength = 409600;
    GetPrinterModelName();
    GetFirmwareVersion();
    EXPECT_EQ(0, Set_PrintOutStatus(1));
    EXPECT_THAT(WrittenHex(), ElementsAre("1B 59 FF", "1B 00 01", "1D 76 01"));
}

TEST_F(StatusTest, WithoutALinkSwitchingReportsGives0AndArms) {
    EXPECT_EQ(0, Set_PrintOutStatus(1));
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(1, PrintOutStatusArmed);
}

} // namespace
} // namespace nadrel

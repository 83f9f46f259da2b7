#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PrintingTest : public LibraryTest {
  protected:
    void SetSpool(const std::vector<uint8_t> &bytes) {
        std::copy(bytes.begin(), bytes.end(), SpoolBuffer.Write(0, static_cast<int32_t>(bytes.size())));
        SpoolLength = static_cast<int32_t>(bytes.size());
    }
};

TEST_F(PrintingTest, WithoutALinkGivesMinus11AndKeepsTheSpool) {
    SetSpool({0x1B, 0x40});
    EXPECT_EQ(-11, PrintSpool(1));
    EXPECT_EQ("1B 40", SpoolHex());
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(PrintingTest, WithoutALinkGivesMinus11AlsoForASpoolLengthBelowZero) {
    SpoolLength = -11;
    EXPECT_EQ(-11, PrintSpool(1));
    EXPECT_EQ(-11, SpoolLength);
}

TEST_F(PrintingTest, APlainLinkGetsTheSpoolAsItIs) {
    OpenSerialLink();
    SetSpool({0x1B, 0x40});
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1B 40)"));
}

TEST_F(PrintingTest, AWirelessLinkGetsTheSpoolAsItIs) {
    OpenWirelessLink();
    SetSpool({0x1B, 0x40, 0xC0, 0x00, 0x7D});
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(os.Calls(), ElementsAre("Send(3, 1B 40 C0 00 7D)"));
}

TEST_F(PrintingTest, AnEmptySpoolOnAPlainLinkIsAnEmptyWrite) {
    OpenSerialLink();
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3)"));
}

TEST_F(PrintingTest, AnEmptySpoolOnAWirelessLinkIsAnEmptySendThatDoesNotFail) {
    OpenWirelessLink();
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(os.Calls(), ElementsAre("Send(3)"));
    EXPECT_EQ(0u, Counters.errorCount);
    EXPECT_EQ(0u, LastLinkError);
}

TEST_F(PrintingTest, AFramedLinkGetsLengthAndCheckValue) {
    OpenSerialLink(1);
    SetSpool({0x41});
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 31 41 41 00 C1"));
}

TEST_F(PrintingTest, AFramedLinkGetsFrameBytesEscaped) {
    OpenWirelessLink(1);
    SetSpool({0xC0, 0x7D});
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 32 7D E0 7D 5D 7D E0 7D 5D C1"));
}

TEST_F(PrintingTest, AnEmptySpoolOnAFramedLinkIsAFrame) {
    OpenSerialLink(1);
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 30 00 00 C1"));
}

TEST_F(PrintingTest, AnyNonZeroFramedModeFrames) {
    OpenSerialLink();
    FramedMode = -4;
    SetSpool({0x41});
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 31 41 41 00 C1"));
}

TEST_F(PrintingTest, WithoutClearTheSameBytesAreSentTwice) {
    OpenSerialLink();
    SetSpool({0x1B, 0x40});
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("1B 40", "1B 40"));
    EXPECT_EQ("1B 40", SpoolHex());
}

TEST_F(PrintingTest, WithoutClearTheSpoolCanBeExtended) {
    OpenSerialLink();
    PrintData();
    PrintSpool(0);
    PrintLineFeed(2);
    PrintSpool(0);
    EXPECT_THAT(WrittenHex(), ElementsAre("0A", "0A 1B 64 02"));
}

TEST_F(PrintingTest, WithClearTheSpoolIsEmptyAndZeroAfterwards) {
    OpenSerialLink();
    FillSpool(5000);
    EXPECT_EQ(1, PrintSpool(-1));
    EXPECT_EQ(0, SpoolLength);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(PrintingTest, TheSpoolIsClearedAfterItWasSent) {
    OpenSerialLink();
    SetSpool({0x1B, 0x40});
    os.OnCall("WritePort", [] { EXPECT_EQ("1B 40", SpoolHex()); });
    EXPECT_EQ(1, PrintSpool(1));
    EXPECT_EQ(0, SpoolLength);
}

TEST_F(PrintingTest, AWriteThatFailsGives1AndClearsAllTheSame) {
    OpenSerialLink();
    SetSpool({0x1B, 0x40});
    os.Fail("WritePort", 1121);
    EXPECT_EQ(1, PrintSpool(1));
    EXPECT_EQ(1121u, LastLinkError);
    EXPECT_EQ(0, SpoolLength);
}

TEST_F(PrintingTest, ChangesNothingElse) {
    OpenSerialLink();
    PageModeFlag = 1;
    MacroStartMark = 5;
    StatusPending = 1;
    SetSpool({0x1B, 0x40});
    PrintSpool(1);
    EXPECT_EQ(1, PageModeFlag);
    EXPECT_EQ(5, MacroStartMark);
    EXPECT_EQ(1, StatusPending);
    EXPECT_EQ(1, SerialLinkOpen);
}

TEST_F(PrintingTest, AnEvenSpoolTakesNothingBehindItIntoTheCheckValueWhileThatIsZero) {
    OpenSerialLink(1);
    SetSpool({0x11, 0x22, 0x44, 0x88});
    PrintSpool(0);
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 34 11 22 44 88 55 AA C1"));
}

// 1D 21 11 1B 45 01 stand behind the two bytes of the spool; the pair behind an even spool, 1D 21, counts.
TEST_F(PrintingTest, WhatARefusedTextLeavesBehindAnEvenSpoolEntersTheCheckValue) {
    OpenSerialLink(1);
    SetSpool({0x41, 0x42});
    EXPECT_EQ(-12, SaveSpool(std::u16string(10000, u'x').c_str(), 3, 1));
    EXPECT_EQ(2, SpoolLength);
    PrintSpool(0);
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 32 41 42 5C 63 C1"));
}

TEST_F(PrintingTest, WhatARefusedTextLeavesBehindAnOddSpoolEntersTheOddCheckByte) {
    OpenSerialLink(1);
    SetSpool({0x41});
    EXPECT_EQ(-12, SaveSpool(std::u16string(10000, u'x').c_str(), 3, 1));
    EXPECT_EQ(1, SpoolLength);
    PrintSpool(0);
    EXPECT_THAT(WrittenHex(), ElementsAre("00 C0 44 31 30 30 30 31 41 41 1D C1"));
}

TEST_F(PrintingTest, ALengthOfFiveDigitsCarriesItsFirstFour) {
    OpenSerialLink(1);
    FillSpool(12345, 0x20);
    EXPECT_EQ(1, PrintSpool(0));
    const scripted::Bytes sent = os.Written().at(0);
    EXPECT_EQ(12345u + 11, sent.size());
    EXPECT_EQ("00 C0 44 31 31 32 33 34 20", HexOf({sent.begin(), sent.begin() + 9}));
}

TEST_F(PrintingTest, AFrameOfExactly409600BytesIsSent) {
    OpenSerialLink(1);
    FillSpool(409600 - 11, 0x00);
    EXPECT_EQ(1, PrintSpool(1));
    EXPECT_EQ(409600u, os.Written().at(0).size());
    EXPECT_EQ(0, SpoolLength);
}

TEST_F(PrintingTest, AFrameOfMoreGivesMinus13AndKeepsTheSpool) {
    OpenSerialLink(1);
    FillSpool(409600 - 10, 0x00);
    EXPECT_EQ(-13, PrintSpool(1));
    EXPECT_EQ(409600 - 10, SpoolLength);
    EXPECT_THAT(os.Written(), IsEmpty());
    EXPECT_EQ(0u, os.CountOf("WritePort"));
}

TEST_F(PrintingTest, EscapesCountForTheLengthOfAFrame) {
    OpenSerialLink(1);
    FillSpool(204800, 0xC0);
    EXPECT_EQ(-13, PrintSpool(1));
    EXPECT_EQ(204800, SpoolLength);
    EXPECT_THAT(os.Written(), IsEmpty());
}

TEST_F(PrintingTest, APlainSpoolPastTheCapacityIsSentWhole) {
    OpenSerialLink();
    FillSpool(409600, 0x20);
    EXPECT_EQ(409600 + 2 - 1, EnterSCRMode());
    EXPECT_EQ(1, PrintSpool(1));
    EXPECT_EQ(409602u, os.Written().at(0).size());
    EXPECT_EQ(0, SpoolLength);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

// The check value reaches two bytes behind an even spool; here they would lie outside the storage.
TEST_F(PrintingTest, AFullStorageOnAFramedLinkIsRefusedWithoutReadingBehindIt) {
    OpenSerialLink(1);
    FillSpool(409600, 0x20);
    EXPECT_EQ(409605, SecuredCardCommend(std::string(4091, 'x').c_str()));
    EXPECT_EQ(409600 + 4096, SpoolLength);
    EXPECT_EQ(-13, PrintSpool(1));
    EXPECT_EQ(409600 + 4096, SpoolLength);
    EXPECT_THAT(os.Written(), IsEmpty());
}

TEST_F(PrintingTest, AFullStorageOnAPlainLinkIsSentWhole) {
    OpenSerialLink();
    FillSpool(409600, 0x20);
    SecuredCardCommend(std::string(4091, 'x').c_str());
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_EQ(409600u + 4096, os.Written().at(0).size());
}

TEST_F(PrintingTest, ASpoolLengthBelowZeroSendsNothingAndGives0) {
    for (const int32_t framed : {0, 1}) {
        OpenSerialLink(framed);
        SpoolLength = -11;
        EXPECT_EQ(0, PrintSpool(1));
        EXPECT_EQ(-11, SpoolLength);
        EXPECT_THAT(os.Calls(), IsEmpty());
        ClosePrinter();
        os.Reset();
    }
}

TEST_F(PrintingTest, SendsWhatStoodInTheSpoolWhenItWasCalled) {
    OpenSerialLink();
    SetSpool({0x41, 0x42});
    os.OnCall("WritePort", [] { PrintData(); });
    EXPECT_EQ(1, PrintSpool(0));
    EXPECT_THAT(WrittenHex(), ElementsAre("41 42"));
    EXPECT_EQ("41 42 0A", SpoolHex());
}

// The write is one sending call, the print around it another that lasts until the spool is cleared.
TEST_F(PrintingTest, IsSendingUntilTheSpoolIsCleared) {
    OpenSerialLink();
    SetSpool({0x41});
    os.OnCall("WritePort", [] { EXPECT_EQ(2, SendingCalls); });
    EXPECT_EQ(1, PrintSpool(1));
    EXPECT_EQ(0, SendingCalls);
}

} // namespace
} // namespace nadrel

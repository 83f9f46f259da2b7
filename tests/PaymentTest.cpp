#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PaymentTest : public LibraryTest {
  protected:
    PaymentTest() { OpenSerialLink(); }

    // The twelve digits as they were sent, of a request whose other fields are in order.
    std::string FirstField(const char16_t *first) {
        EXPECT_EQ(1, SetPaymentReq(1, first, u"20160101", u"123000"));
        const scripted::Bytes record = os.Written().back();
        return HexOf({record.begin() + 3, record.begin() + 9});
    }
};

TEST_F(PaymentTest, ATerminalIdentifierIsSentWithItsEightCharacters) {
    EXPECT_EQ(1, SetTermialID(u"AB12cd34"));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1B 6D 41 42 31 32 63 64 33 34)"));
    EXPECT_EQ(0, SpoolLength);
}

TEST_F(PaymentTest, ATerminalIdentifierIsReducedToLowBytes) {
    EXPECT_EQ(1, SetTermialID(u"\u0141\u20AC\u00FF\u0100\u00C0\u00C1}z"));
    EXPECT_THAT(WrittenHex(), ElementsAre("1B 6D 41 AC FF 00 C0 C1 7D 7A"));
}

TEST_F(PaymentTest, ATerminalIdentifierOfAnotherLengthGivesThatLength) {
    const char16_t *const identifiers[] = {u"", u"1", u"1234567", u"123456789", u"1234567890123456"};
    const int32_t lengths[] = {0, 1, 7, 9, 16};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(lengths[i], SetTermialID(identifiers[i]));
    EXPECT_EQ(0, SetTermialID(nullptr));
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(PaymentTest, ARequestIsARecordOfSixteenBytes) {
    EXPECT_EQ(1, SetPaymentReq(1, u"1000", u"20160101", u"123000"));
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, 1B 6E 01 00 00 00 00 10 00 20 16 01 01 12 30 00)"));
    EXPECT_EQ(0, SpoolLength);
}

TEST_F(PaymentTest, OnlyTheLowByteOfTheTypeCounts) {
    const struct {
        uint32_t type;
        int sent;
    } types[] = {{0, 0}, {1, 1}, {2, 1}, {0xFF, 1}, {0x100, 0}, {0x101, 1}, {0xFFFFFF00, 0}, {0xFFFFFFFF, 1}};
    for (const auto &one : types) {
        EXPECT_EQ(1, SetPaymentReq(one.type, u"", u"00000000", u"000000"));
        EXPECT_EQ(one.sent, os.Written().back()[2]) << one.type;
    }
}

TEST_F(PaymentTest, TheFirstFieldIsAlignedToTheRight) {
    EXPECT_EQ("00 00 00 00 00 00", FirstField(u""));
    EXPECT_EQ("00 00 00 00 00 01", FirstField(u"1"));
    EXPECT_EQ("00 00 00 00 00 12", FirstField(u"12"));
    EXPECT_EQ("00 00 00 00 01 23", FirstField(u"123"));
    EXPECT_EQ("00 00 00 00 12 34", FirstField(u"1234"));
    EXPECT_EQ("00 00 00 01 23 45", FirstField(u"12345"));
    EXPECT_EQ("00 00 00 12 34 56", FirstField(u"123456"));
    EXPECT_EQ("00 00 01 23 45 67", FirstField(u"1234567"));
    EXPECT_EQ("00 00 12 34 56 78", FirstField(u"12345678"));
    EXPECT_EQ("00 01 23 45 67 89", FirstField(u"123456789"));
    EXPECT_EQ("00 12 34 56 78 90", FirstField(u"1234567890"));
    EXPECT_EQ("01 23 45 67 89 01", FirstField(u"12345678901"));
    EXPECT_EQ("12 34 56 78 90 12", FirstField(u"123456789012"));
}

TEST_F(PaymentTest, NullIsAnEmptyField) {
    EXPECT_EQ("00 00 00 00 00 00", FirstField(nullptr));
    os.ForgetCalls();
    EXPECT_EQ(0, SetPaymentReq(1, u"1", nullptr, u"123000"));
    EXPECT_EQ(-4, SetPaymentReq(1, u"1", u"20160101", nullptr));
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(PaymentTest, WhatIsNoDigitCountsWithTheLowFourBitsOfItsDistanceFromZero) {
    EXPECT_EQ("00 00 00 AF 01 F1", FirstField(u":?@A/a"));
    EXPECT_EQ("00 00 00 00 1F 0E", FirstField(u"\u0141\uFFFF\u0030."));
    EXPECT_EQ(1, SetPaymentReq(1, u"", u"ABCDEFGH", u"abcdef"));
    EXPECT_EQ("1B 6E 01 00 00 00 00 00 00 12 34 56 78 12 34 56", WrittenHex().back());
}

TEST_F(PaymentTest, AFirstFieldOfMoreThan12GivesMinus1) {
    EXPECT_EQ(-1, SetPaymentReq(1, u"1234567890123", u"20160101", u"123000"));
    EXPECT_EQ(-1, SetPaymentReq(1, std::u16string(100000, u'1').c_str(), u"20160101", u"123000"));
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(PaymentTest, ASecondFieldOfAnotherLengthGivesThatLength) {
    EXPECT_EQ(0, SetPaymentReq(1, u"1", u"", u"123000"));
    EXPECT_EQ(7, SetPaymentReq(1, u"1", u"2016010", u"123000"));
    EXPECT_EQ(9, SetPaymentReq(1, u"1", u"201601011", u"123000"));
    EXPECT_EQ(1, SetPaymentReq(1, u"1", u"2", u"123000")) << "a length of 1 looks like success";
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(PaymentTest, AThirdFieldOfAnotherLengthGivesMinus4) {
    for (const char16_t *third : {u"", u"12300", u"1230000"})
        EXPECT_EQ(-4, SetPaymentReq(1, u"1", u"20160101", third));
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(PaymentTest, TheFieldsAreCheckedInOrder) {
    EXPECT_EQ(-1, SetPaymentReq(1, u"1234567890123", u"1", u"1"));
    EXPECT_EQ(5, SetPaymentReq(1, u"1", u"12345", u"1"));
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(PaymentTest, TheRecordsAreNeverFramed) {
    FramedMode = 1;
    EXPECT_EQ(1, SetTermialID(u"12345678"));
    EXPECT_EQ(1, SetPaymentReq(0, u"", u"00000000", u"000000"));
    EXPECT_THAT(WrittenHex(), ElementsAre("1B 6D 31 32 33 34 35 36 37 38",
                                          "1B 6E 00 00 00 00 00 00 00 00 00 00 00 00 00 00"));
}

TEST_F(PaymentTest, TheRecordsGoOverTcpAsWell) {
    ClosePrinter();
    OpenWirelessLink();
    EXPECT_EQ(1, SetTermialID(u"12345678"));
    EXPECT_EQ(1u, os.CountOf("Send"));
    EXPECT_THAT(WrittenHex(), ElementsAre("1B 6D 31 32 33 34 35 36 37 38"));
}

TEST_F(PaymentTest, TheResultSaysNothingOfTheLink) {
    os.FailAlways("WritePort", 1121);
    EXPECT_EQ(1, SetTermialID(u"12345678"));
    EXPECT_EQ(1, SetPaymentReq(1, u"1000", u"20160101", u"123000"));
    ClosePrinter();
    os.ForgetCalls();
    EXPECT_EQ(1, SetTermialID(u"12345678"));
    EXPECT_EQ(1, SetPaymentReq(1, u"1000", u"20160101", u"123000"));
    EXPECT_THAT(os.Calls(), IsEmpty());
}

} // namespace
} // namespace nadrel

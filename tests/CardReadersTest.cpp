#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A request that goes straight to the link, in both forms.
struct Sent {
    std::string name;
    int32_t (*request)();
    std::string plain;
    std::string framed;

    friend void PrintTo(const Sent &sent, std::ostream *out) { *out << sent.name; }
};

int32_t MsrMode(int32_t track) {
    return EnterMSRMode(track);
}

const Sent kSent[] = {
    {"EnterMsrModeTrack0", [] { return MsrMode(0); }, "1B 4D 43",
     "00 C0 44 31 30 30 30 33 1B 4D 43 58 4D C1"},
    {"EnterMsrModeTrack1", [] { return MsrMode(1); }, "1B 4D 44",
     "00 C0 44 31 30 30 30 33 1B 4D 44 5F 4D C1"},
    {"EnterMsrModeTrack2", [] { return MsrMode(2); }, "1B 4D 45",
     "00 C0 44 31 30 30 30 33 1B 4D 45 5E 4D C1"},
    {"EnterMsrModeTrack3", [] { return MsrMode(3); }, "1B 4D 46",
     "00 C0 44 31 30 30 30 33 1B 4D 46 5D 4D C1"},
    {"EnterMsrModeTrack4", [] { return MsrMode(4); }, "1B 4D 47",
     "00 C0 44 31 30 30 30 33 1B 4D 47 5C 4D C1"},
    {"EnterMsrModeTrack5", [] { return MsrMode(5); }, "1B 4D 00",
     "00 C0 44 31 30 30 30 33 1B 4D 00 1B 4D C1"},
    {"EnterMsrModeTrackMinus1", [] { return MsrMode(-1); }, "1B 4D 00",
     "00 C0 44 31 30 30 30 33 1B 4D 00 1B 4D C1"},
    {"EnterMsrModeTrack256", [] { return MsrMode(256); }, "1B 4D 00",
     "00 C0 44 31 30 30 30 33 1B 4D 00 1B 4D C1"},
    {"CancelMsrMode", [] { return CancelMSRMode(); }, "04", "00 C0 44 31 30 30 30 31 04 04 00 C1"},
    {"CardCancel", [] { return CardCancel(); }, "04", "00 C0 44 31 30 30 30 31 04 04 00 C1"},
    {"CardReadOn", [] { return CardRead(1); }, "04 1B 4D 44", "00 C0 44 31 30 30 30 34 04 1B 4D 44 49 5F C1"},
    {"CardReadSeven", [] { return CardRead(7); }, "04 1B 4D 44",
     "00 C0 44 31 30 30 30 34 04 1B 4D 44 49 5F C1"},
    {"CardReadMinus1", [] { return CardRead(-1); }, "04 1B 4D 44",
     "00 C0 44 31 30 30 30 34 04 1B 4D 44 49 5F C1"},
    {"CardReadOff", [] { return CardRead(0); }, "04 1B 4D 43",
     "00 C0 44 31 30 30 30 34 04 1B 4D 43 49 58 C1"},
    {"CardReadMOn", [] { return CardRead_M(1); }, "02 43 31 31 00 00 03",
     "00 C0 44 31 30 30 30 37 02 43 31 31 00 00 03 30 72 C1"},
    {"CardReadMMinus1", [] { return CardRead_M(-1); }, "02 43 31 31 00 00 03",
     "00 C0 44 31 30 30 30 37 02 43 31 31 00 00 03 30 72 C1"},
    {"CardReadMOff", [] { return CardRead_M(0); }, "02 44 31 31 00 00 03",
     "00 C0 44 31 30 30 30 37 02 44 31 31 00 00 03 30 75 C1"},
    {"SecuredCardCancelNeverFramed", [] { return SecuredCardCancel(); }, "1B 4D 58", "1B 4D 58"},
};

class CardReadersTest : public LibraryTest {};

class CardRequestTest : public LibraryTest, public testing::WithParamInterface<Sent> {};

INSTANTIATE_TEST_SUITE_P(Of, CardRequestTest, testing::ValuesIn(kSent),
                         [](const auto &sent) { return sent.param.name; });

TEST_P(CardRequestTest, GoesStraightToASerialLink) {
    OpenSerialLink();
    EXPECT_EQ(0, GetParam().request());
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, " + GetParam().plain + ")"));
    EXPECT_EQ(0, SpoolLength);
}

TEST_P(CardRequestTest, GoesStraightToAWirelessLink) {
    OpenWirelessLink();
    EXPECT_EQ(0, GetParam().request());
    EXPECT_THAT(os.Calls(), ElementsAre("Send(3, " + GetParam().plain + ")"));
}

TEST_P(CardRequestTest, GoesFramedToAFramedLink) {
    OpenSerialLink(1);
    EXPECT_EQ(0, GetParam().request());
    EXPECT_THAT(os.Calls(), ElementsAre("WritePort(3, " + GetParam().framed + ")"));
}

TEST_P(CardRequestTest, SendsNothingWithoutALink) {
    EXPECT_EQ(GetParam().name.find("EnterMsrMode") == 0 ? -11 : 0, GetParam().request());
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_P(CardRequestTest, Gives0WhenTheLinkDoesNotTakeIt) {
    OpenSerialLink();
    os.Fail("WritePort", 1121);
    EXPECT_EQ(0, GetParam().request());
    EXPECT_EQ(1121u, LastLinkError);
}

TEST_P(CardRequestTest, SetsNoRequestFlag) {
    OpenSerialLink();
    GetParam().request();
    EXPECT_EQ(0, ModelNamePending);
    EXPECT_EQ(0, StatusPending);
    EXPECT_EQ(0, FirmwarePending);
    EXPECT_EQ(0, PrintOutStatusArmed);
}

TEST_P(CardRequestTest, OnlySecuredCardCancelIsKeptBackByASpoolPastItsCapacity) {
    OpenSerialLink();
    SpoolLength = 409601;
    const bool keptBack = GetParam().name == "SecuredCardCancelNeverFramed";
    EXPECT_EQ(keptBack ? -12 : 0, GetParam().request());
    EXPECT_EQ(keptBack ? 0u : 1u, os.CountOf("WritePort"));
    SpoolLength = 409600;
    EXPECT_EQ(0, GetParam().request());
    EXPECT_EQ(keptBack ? 1u : 2u, os.CountOf("WritePort"));
}

TEST_F(CardReadersTest, ScrModeIsAppendedAndGivesThePositionOfItsLastByte) {
    EXPECT_EQ(1, EnterSCRMode());
    EXPECT_EQ("1B 4E", SpoolHex());
    EXPECT_EQ(4, CancelSCRMode());
    EXPECT_EQ("1B 4E 7E 04 7E", SpoolHex());
}

TEST_F(CardReadersTest, ScrModeIsSentWithTheNextPrintOnly) {
    OpenSerialLink();
    EnterSCRMode();
    CancelSCRMode();
    SecuredCardCommend("A");
    EXPECT_THAT(os.Calls(), IsEmpty());
    EXPECT_EQ(1, PrintSpool(1));
    EXPECT_THAT(WrittenHex(), ElementsAre("1B 4E 7E 04 7E 1B 4D 53 00 01 41"));
}

TEST_F(CardReadersTest, ASecuredCardCommandGivesThePositionOfItsText) {
    EXPECT_EQ(5, SecuredCardCommend("0123456789"));
    EXPECT_EQ("1B 4D 53 00 0A 30 31 32 33 34 35 36 37 38 39", SpoolHex());
    EXPECT_EQ(20, SecuredCardCommend("A"));
    EXPECT_EQ(21, SpoolLength);
}

TEST_F(CardReadersTest, ASecuredCardCommandIsNotConverted) {
    SecuredCardCommend("\x01\xFF\x80");
    EXPECT_EQ("1B 4D 53 00 03 01 FF 80", SpoolHex());
}

TEST_F(CardReadersTest, AnEmptyOrNullSecuredCardCommandIsAppendedWithoutText) {
    EXPECT_EQ(5, SecuredCardCommend(""));
    EXPECT_EQ(10, SecuredCardCommend(nullptr));
    EXPECT_EQ("1B 4D 53 00 00 1B 4D 53 00 00", SpoolHex());
}

TEST_F(CardReadersTest, TheLengthOfASecuredCardCommandIsSplitBy255) {
    const struct {
        size_t length;
        const char *header;
    } lengths[] = {{1, "1B 4D 53 00 01"},   {254, "1B 4D 53 00 FE"}, {255, "1B 4D 53 01 00"},
                   {256, "1B 4D 53 00 00"}, {257, "1B 4D 53 00 01"}, {510, "1B 4D 53 00 FE"},
                   {511, "1B 4D 53 01 00"}, {512, "1B 4D 53 00 00"}, {66000, "1B 4D 53 00 D0"}};
    for (const auto &one : lengths) {
        ClearSpool();
        const std::string text(one.length, 'y');
        EXPECT_EQ(5, SecuredCardCommend(text.c_str()));
        const std::vector<uint8_t> spool = SpoolBytes();
        ASSERT_EQ(5 + one.length, spool.size());
        EXPECT_EQ(one.header, HexOf({spool.begin(), spool.begin() + 5}));
        EXPECT_EQ(BytesOf(text), std::vector<uint8_t>(spool.begin() + 5, spool.end()));
    }
}

TEST_F(CardReadersTest, AppendingNeedsNoLink) {
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(1, EnterSCRMode());
    EXPECT_EQ(2, SpoolLength);
}

TEST_F(CardReadersTest, ASpoolPastItsCapacityTakesNothing) {
    FillSpool(409600);
    SpoolLength = 409601;
    EXPECT_EQ(-12, EnterSCRMode());
    EXPECT_EQ(-12, CancelSCRMode());
    EXPECT_EQ(-12, SecuredCardCommend("A"));
    EXPECT_EQ(409601, SpoolLength);
}

TEST_F(CardReadersTest, AFullSpoolStillTakesACommand) {
    FillSpool(409600);
    EXPECT_EQ(409601, EnterSCRMode());
    EXPECT_EQ(409602, SpoolLength);
    FillSpool(409600);
    EXPECT_EQ(409602, CancelSCRMode());
    FillSpool(409600);
    EXPECT_EQ(409605, SecuredCardCommend("AB"));
    EXPECT_EQ("1B 4D 53 00 02 41 42", scripted::ToHex(SpoolBuffer.At(409600), 7));
}

TEST_F(CardReadersTest, ATextThatWouldLeaveTheStorageIsRefusedWhole) {
    FillSpool(409600);
    EXPECT_EQ(-12, SecuredCardCommend(std::string(4092, 'y').c_str()));
    EXPECT_EQ(409600, SpoolLength);
    EXPECT_EQ(0, std::count(SpoolBuffer.At(409600), SpoolBuffer.At(SpoolStorage::kEnd), uint8_t{'y'}));
    EXPECT_EQ(409605, SecuredCardCommend(std::string(4091, 'y').c_str()));
    EXPECT_EQ(409600 + 4096, SpoolLength);
}

TEST_F(CardReadersTest, AnEndlessTextIsRefusedWhole) {
    const std::string text(2000000, 'y');
    EXPECT_EQ(-12, SecuredCardCommend(text.c_str()));
    EXPECT_EQ(0, SpoolLength);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(CardReadersTest, AppendsAtANegativeSpoolLength) {
    SetPrintPosition(0, 0);
    ASSERT_EQ(-11, SpoolLength);
    EXPECT_EQ(-10, EnterSCRMode());
    EXPECT_EQ(-9, SpoolLength);
    EXPECT_EQ("1B 4E", scripted::ToHex(SpoolBuffer.At(-11), 2));
}

} // namespace
} // namespace nadrel

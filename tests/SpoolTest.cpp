#include "tests/SpoolFixture.h"

#include <string>

namespace nadrel {

namespace {

class ControlCommandTest : public SpoolFixture {};
class SpoolTest : public SpoolFixture {};

const uint8_t kFive[] = {0x1B, 0x40, 0x00, 0xFF, 0x0A};

} // namespace

TEST_F(SpoolTest, ResultCodesAreTheNumbersThatHostsCompareWith) {
    EXPECT_EQ(NADREL_SUCCESS, 1);
    EXPECT_EQ(ERR_ALREADY_CONNECTED, -1);
    EXPECT_EQ(ERR_OPEN_PORT, -2);
    EXPECT_EQ(ERR_SET_COMM_STATE, -3);
    EXPECT_EQ(ERR_SET_TIMEOUTS, -4);
    EXPECT_EQ(ERR_NO_ANSWER, -5);
    EXPECT_EQ(ERR_NOT_CONNECTED, -11);
    EXPECT_EQ(ERR_SPOOL_LIMIT, -12);
    EXPECT_EQ(ERR_FRAME_LIMIT, -13);
}

TEST_F(SpoolTest, BeginsEmptyAndAllZero) {
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(SpoolTest, GetPortHandleIsTheInvalidHandleWithoutASerialPort) {
    EXPECT_EQ(GetPortHandle(), NADREL_INVALID_HANDLE);
    EXPECT_EQ(GetPortHandle(), ~NadrelHandle{0});
    os.SetNextHandle(7);
    OpenSerialLink();
    EXPECT_EQ(GetPortHandle(), 7);
}

TEST_F(SpoolTest, ClearSpoolEmptiesTheSpoolWithALink) {
    OpenSerialLink();
    SaveSpool(u"text", 0, 0);
    ClearSpool();
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(SpoolTest, ClearSpoolEmptiesTheSpoolWithoutALink) {
    PrintData();
    ClearSpool();
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(SpoolTest, ClearSpoolZeroesBothMarginsAsWell) {
    SpoolLength = kStorageFirst;
    SetLineSpace(1);
    SpoolLength = kFull;
    SetLineSpace(2);
    SpoolLength = kStorageEnd - 7;
    Initialize_Macro();
    ASSERT_EQ(SpoolLength, kStorageEnd);
    ClearSpool();
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(SpoolTest, ClearSpoolPutsTheMinusElevenOfARefusalBackToZero) {
    SetPrintPosition(0, 0);
    ASSERT_EQ(SpoolLength, -11);
    SetLineSpace(30);
    EXPECT_EQ(SpoolLength, -8);
    ClearSpool();
    EXPECT_EQ(SpoolLength, 0);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(SpoolTest, ClearSpoolZeroesWhatARefusedTextLeftBehind) {
    OpenSerialLink();
    SaveSpool(std::u16string(10000, u'A').c_str(), 0, 0);
    ASSERT_FALSE(IsAllZero(SpoolBuffer));
    ClearSpool();
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(SpoolTest, ClearSpoolLeavesPageModeAndMacroMark) {
    SetPageMode();
    SetMarco_Start();
    ClearSpool();
    EXPECT_EQ(PageModeFlag, 1);
    EXPECT_EQ(MacroStartMark, 2);
}

TEST_F(ControlCommandTest, AppendsTheBytesAndGivesTheNewLength) {
    OpenSerialLink();
    EXPECT_EQ(ControlCommand(kFive, 5), 5);
    EXPECT_EQ(ControlCommand(kFive, 2), 7);
    EXPECT_EQ(SpoolHex(), "1B 40 00 FF 0A 1B 40");
}

TEST_F(ControlCommandTest, TakesAWirelessLinkAsWell) {
    OpenWirelessLink();
    EXPECT_EQ(ControlCommand(kFive, 5), 5);
}

TEST_F(ControlCommandTest, WithoutALinkGivesMinusElevenAndDoesNothing) {
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(ControlCommand(kFive, 5), -11); }));
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(ControlCommand(nullptr, -1), -11); }));
}

TEST_F(ControlCommandTest, OfNoBytesGivesTheLengthAsItIs) {
    OpenSerialLink();
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(ControlCommand(kFive, 0), 1); }));
}

TEST_F(ControlCommandTest, GivesZeroForANullPointerAndChangesNothing) {
    OpenSerialLink();
    PrintData();
    for (const int32_t count : {0, 1, 409600, INT32_MAX})
        EXPECT_TRUE(ChangesNothing([=] { EXPECT_EQ(ControlCommand(nullptr, count), 0); })) << count;
}

TEST_F(ControlCommandTest, GivesZeroForANegativeCountAndChangesNothing) {
    OpenSerialLink();
    PrintData();
    for (const int32_t count : {-1, -2, -4096, INT32_MIN})
        EXPECT_TRUE(ChangesNothing([=] { EXPECT_EQ(ControlCommand(kFive, count), 0); })) << count;
}

TEST_F(ControlCommandTest, FillsTheSpoolToItsLastByteAndNoFurther) {
    OpenSerialLink();
    SpoolLength = kFull - 5;
    EXPECT_EQ(ControlCommand(kFive, 5), kFull);
    EXPECT_EQ(HexAt(kFull - 5, 6), "1B 40 00 FF 0A 00");
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(ControlCommand(kFive, 1), -12); }));
}

TEST_F(ControlCommandTest, BeyondTheSpoolIsRefusedWholeWithMinusTwelve) {
    OpenSerialLink();
    for (const int32_t position : {kFull - 4, kFull, kFull + 1, kStorageEnd, INT32_MAX}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(ControlCommand(kFive, 5), -12); })) << position;
    }
}

TEST_F(ControlCommandTest, RefusesAnyCountThatTheSpoolHasNoRoomFor) {
    OpenSerialLink();
    const std::vector<uint8_t> bytes(409601, 0x55);
    EXPECT_TRUE(ChangesNothing([&] { EXPECT_EQ(ControlCommand(bytes.data(), 409601), -12); }));
    EXPECT_TRUE(ChangesNothing([&] { EXPECT_EQ(ControlCommand(bytes.data(), INT32_MAX), -12); }));
}

TEST_F(ControlCommandTest, TakesAWholeSpoolAtOnce) {
    OpenSerialLink();
    const std::vector<uint8_t> bytes(409600, 0x55);
    EXPECT_EQ(ControlCommand(bytes.data(), 409600), 409600);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), SpoolBuffer.At(0)));
}

TEST_F(ControlCommandTest, FromInFrontOfTheSpoolMayEndAtItsLastByte) {
    OpenSerialLink();
    const std::vector<uint8_t> bytes(409611, 0x55);
    SpoolLength = -11;
    EXPECT_EQ(ControlCommand(bytes.data(), 409611), 409600);
    StartAt(-11);
    EXPECT_TRUE(ChangesNothing([&] { EXPECT_EQ(ControlCommand(bytes.data(), 409612), -12); }));
}

TEST_F(ControlCommandTest, GivesZeroForMemoryThatCannotBeReadAndChangesNothing) {
    OpenSerialLink();
    PrintData();
    os.Fail("MemoryIsReadable", 14);
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(ControlCommand(kFive, 5), 0); }));
    EXPECT_EQ(ControlCommand(kFive, 5), 6);
}

TEST_F(ControlCommandTest, AsksTheSystemOnceForAllTheBytesItCopies) {
    OpenSerialLink();
    ControlCommand(kFive, 5);
    EXPECT_EQ(os.Calls(), std::vector<std::string>{"MemoryIsReadable(5)"});
}

TEST_F(ControlCommandTest, AloneAsksWhetherMemoryIsReadable) {
    OpenSerialLink();
    SetPrintPosition(1, 2);
    SelectForTTF(u"font");
    PrintSpoolForTTF(u"text", 1, 2);
    SaveSpool(u"text", 0, 0);
    OneDimensionBarcodeSaveSpool(73, 2, 80, 1, u"12");
    BarcodeSaveSpool(73, 2, 80, 1, u"12", 384, 100, 0);
    PrintData();
    EXPECT_EQ(os.CountOf("MemoryIsReadable"), 0U);
}

} // namespace nadrel

#include "tests/SpoolFixture.h"

#include "platform/linux/AnsiCodePage.h"

#include <string>

namespace nadrel {

namespace {

std::u16string Letters(size_t count) {
    return std::u16string(count, u'A');
}

class SaveSpoolTest : public SpoolFixture {
  protected:
    void TearDown() override { platform::SetAnsiCodePage(1252); }
};

struct FontRow {
    int32_t font;
    int32_t bold;
    const char *bytes; // for the text A
};

void PrintTo(const FontRow &row, std::ostream *out) {
    *out << "font " << row.font << ", bold " << row.bold;
}

class SaveSpoolFont : public SpoolFixture, public testing::WithParamInterface<FontRow> {};

} // namespace

TEST_P(SaveSpoolFont, ChoosesTheSizeByte) {
    OpenSerialLink();
    const int32_t length = SaveSpool(u"A", GetParam().font, GetParam().bold);
    EXPECT_EQ(SpoolHex(), GetParam().bytes);
    EXPECT_EQ(length, SpoolLength);
}

INSTANTIATE_TEST_SUITE_P(
    Fonts, SaveSpoolFont,
    testing::Values(FontRow{0, 0, "1D 21 00 1B 45 00 41"}, FontRow{1, 0, "1D 21 10 1B 45 00 41"},
                    FontRow{2, 0, "1D 21 01 1B 45 00 41"}, FontRow{3, 0, "1D 21 11 1B 45 00 41"},
                    FontRow{4, 0, "1D 21 1B 45 00 41"}, FontRow{7, 1, "1D 21 1B 45 01 41"},
                    FontRow{-1, 0, "1D 21 1B 45 00 41"}, FontRow{256, 0, "1D 21 1B 45 00 41"},
                    FontRow{INT32_MAX, 0, "1D 21 1B 45 00 41"}, FontRow{INT32_MIN, 0, "1D 21 1B 45 00 41"}));

INSTANTIATE_TEST_SUITE_P(Bold, SaveSpoolFont,
                         testing::Values(FontRow{0, 1, "1D 21 00 1B 45 01 41"},
                                         FontRow{0, 2, "1D 21 00 1B 45 01 41"},
                                         FontRow{0, -1, "1D 21 00 1B 45 01 41"},
                                         FontRow{0, 256, "1D 21 00 1B 45 01 41"},
                                         FontRow{0, INT32_MIN, "1D 21 00 1B 45 01 41"}));

TEST_F(SaveSpoolTest, AppendsFontEmphasisAndTextWithoutALineFeed) {
    OpenSerialLink();
    EXPECT_EQ(SaveSpool(u"Total", 3, 1), 11);
    EXPECT_EQ(SpoolHex(), "1D 21 11 1B 45 01 54 6F 74 61 6C");
    EXPECT_EQ(SaveSpool(u"5", 0, 0), 18);
    EXPECT_EQ(SpoolHex(), "1D 21 11 1B 45 01 54 6F 74 61 6C 1D 21 00 1B 45 00 35");
}

TEST_F(SaveSpoolTest, ConvertsItsText) {
    OpenSerialLink();
    EXPECT_EQ(SaveSpool(u"é €中", 0, 0), 10);
    EXPECT_EQ(SpoolHex(), "1D 21 00 1B 45 00 E9 20 80 3F");
}

TEST_F(SaveSpoolTest, OfAnEmptyTextAppendsFontAndEmphasis) {
    OpenSerialLink();
    EXPECT_EQ(SaveSpool(u"", 1, 1), 6);
    EXPECT_EQ(SpoolHex(), "1D 21 10 1B 45 01");
}

TEST_F(SaveSpoolTest, TakesAWirelessLinkAsWell) {
    OpenWirelessLink();
    EXPECT_EQ(SaveSpool(u"A", 0, 0), 7);
}

TEST_F(SaveSpoolTest, WithoutALinkGivesMinusElevenAndLeavesTheSpoolLengthUntouched) {
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(SaveSpool(u"A", 0, 0), -11); }));
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(SaveSpool(nullptr, 0, 0), -11); }));
}

TEST_F(SaveSpoolTest, GivesZeroForANullTextAndChangesNothing) {
    OpenSerialLink();
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(SaveSpool(nullptr, 0, 0), 0); }));
}

TEST_F(SaveSpoolTest, SendsTheWholeLengthOfATextWithoutAnEightBitMask) {
    OpenSerialLink();
    for (const size_t length : {255U, 256U, 257U, 300U, 511U, 512U}) {
        StartAt(0);
        EXPECT_EQ(SaveSpool(Letters(length).c_str(), 0, 0), static_cast<int32_t>(6 + length));
        EXPECT_EQ(SpoolHex(), Joined("1D 21 00 1B 45 00", Repeated("41", length)));
    }
}

TEST_F(SaveSpoolTest, ThatEndsAtExactly9999BytesSucceeds) {
    OpenSerialLink();
    EXPECT_EQ(SaveSpool(Letters(9993).c_str(), 0, 0), 9999);
    EXPECT_EQ(SpoolLength, 9999);
}

TEST_F(SaveSpoolTest, ThatWouldEndAt10000BytesGivesMinusTwelveAndTheLengthFromBefore) {
    OpenSerialLink();
    PrintData();
    EXPECT_EQ(SaveSpool(Letters(9993).c_str(), 0, 0), -12);
    EXPECT_EQ(SpoolLength, 1);
    EXPECT_EQ(SaveSpool(Letters(9992).c_str(), 0, 0), 9999);
}

TEST_F(SaveSpoolTest, WithAnUnknownFontMayEndAtExactly9999Bytes) {
    OpenSerialLink();
    EXPECT_EQ(SaveSpool(Letters(9994).c_str(), 7, 0), 9999);
    StartAt(0);
    EXPECT_EQ(SaveSpool(Letters(9995).c_str(), 7, 0), -12);
}

TEST_F(SaveSpoolTest, CountsConvertedBytesAgainstTheLimit) {
    OpenSerialLink();
    platform::SetAnsiCodePage(932);
    EXPECT_EQ(SaveSpool(std::u16string(4996, u'\u3042').c_str(), 0, 0), 9998);
    StartAt(0);
    EXPECT_EQ(SaveSpool(std::u16string(4997, u'\u3042').c_str(), 0, 0), -12);
}

TEST_F(SaveSpoolTest, RefusedWithAnUnknownFontTakesOneByteOfWhatStoodBefore) {
    OpenSerialLink();
    InitPrinterStatus();
    SetLineSpace(9);
    EXPECT_EQ(SaveSpool(Letters(10000).c_str(), 7, 0), -12);
    EXPECT_EQ(SpoolLength, 4);
    EXPECT_EQ(SpoolHex(), "1B 40 1B 33");
}

TEST_F(SaveSpoolTest, RefusedWithAnUnknownFontOnAnEmptySpoolLeavesMinusOne) {
    OpenSerialLink();
    EXPECT_EQ(SaveSpool(Letters(10000).c_str(), 7, 0), -12);
    EXPECT_EQ(SpoolLength, -1);
    PrintData();
    EXPECT_EQ(HexAt(-1, 1), "0A");
    EXPECT_EQ(SpoolLength, 0);
}

TEST_F(SaveSpoolTest, RefusedLeavesItsSixBytesBehindTheLengthAndNothingElse) {
    OpenSerialLink();
    PrintData();
    EXPECT_EQ(SaveSpool(Letters(10000).c_str(), 2, 1), -12);
    EXPECT_EQ(SpoolHex(), "0A");
    EXPECT_EQ(HexAt(0, 8), "0A 1D 21 01 1B 45 01 00");
    StartAt(0);
    std::vector<uint8_t> expected = Storage();
    SaveSpool(Letters(10000).c_str(), 2, 1);
    const uint8_t six[] = {0x1D, 0x21, 0x01, 0x1B, 0x45, 0x01};
    std::copy(std::begin(six), std::end(six), expected.begin() - kStorageFirst);
    EXPECT_TRUE(Storage() == expected);
}

TEST_F(SaveSpoolTest, OverwritesWhatARefusedOneLeftBehind) {
    OpenSerialLink();
    SaveSpool(Letters(10000).c_str(), 2, 1);
    SetLineSpace(9);
    EXPECT_EQ(SpoolHex(), "1B 33 09");
    EXPECT_EQ(HexAt(0, 7), "1B 33 09 1B 45 01 00");
}

TEST_F(SaveSpoolTest, RefusedIsNotPrinted) {
    OpenSerialLink();
    PrintData();
    SaveSpool(Letters(10000).c_str(), 2, 1);
    EXPECT_EQ(PrintSpool(1), 1);
    EXPECT_EQ(WrittenHex().back(), "0A");
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(SaveSpoolTest, FarAboveTheLimitIsRefusedAndRewindsAllTheSame) {
    OpenSerialLink();
    for (const int32_t position : {9994, 10000, kFull, kFull + 1, kStorageEnd - 6}) {
        StartAt(position);
        EXPECT_EQ(SaveSpool(u"A", 0, 0), -12) << position;
        EXPECT_EQ(SpoolLength, position);
        EXPECT_EQ(HexAt(position, 6), "1D 21 00 1B 45 00");
        EXPECT_EQ(SaveSpool(u"A", 9, 0), -12) << position;
        EXPECT_EQ(SpoolLength, position - 1);
    }
}

TEST_F(SaveSpoolTest, ThatWouldLeaveTheStorageIsRefusedWhole) {
    OpenSerialLink();
    for (const int32_t position :
         {kStorageFirst - 1, INT32_MIN, kStorageEnd - 5, kStorageEnd, kStorageEnd + 1, INT32_MAX}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(SaveSpool(u"A", 0, 0), -12); })) << position;
    }
}

TEST_F(SaveSpoolTest, BeginsInFrontOfTheSpoolFromANegativeLength) {
    OpenSerialLink();
    SpoolLength = -11;
    EXPECT_EQ(SaveSpool(u"AB", 0, 0), -3);
    EXPECT_EQ(HexAt(-11, 8), "1D 21 00 1B 45 00 41 42");
}

} // namespace nadrel

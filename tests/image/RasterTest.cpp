#include "tests/image/PictureTest.h"

#include <limits>

namespace nadrel {

namespace {

// Every link that a host can have open.
class RasterTest : public PictureTest {
  protected:
    void SetUp() override { OpenSerialLink(); }
};

class RasterWithoutLinkTest : public PictureTest {};

constexpr int32_t kMost = std::numeric_limits<int32_t>::max();
constexpr int32_t kLeast = std::numeric_limits<int32_t>::min();

BmpBuilder OneByte(uint8_t stored) {
    return BmpBuilder::OneBit(8, 1, [=](int32_t x, int32_t) { return stored >> (7 - x) & 1; });
}

BmpBuilder White(int32_t width, int32_t height) {
    return BmpBuilder::Colour(width, height, [](int32_t, int32_t) { return kWhite; });
}

std::string Zeros(size_t count) {
    return HexOf(std::vector<uint8_t>(count));
}

// The number of times that `part` stands in `hex`.
size_t CountOf(const std::string &part, const std::string &hex) {
    size_t count = 0;
    for (size_t at = hex.find(part); at != std::string::npos; at = hex.find(part, at + 1))
        ++count;
    return count;
}

} // namespace

TEST_F(RasterTest, BmpSaveSpoolOfEightDotsAppends120Bytes) {
    Give(OneByte(0xA5));
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), 120);
    EXPECT_EQ(SpoolLength, 120);
    EXPECT_EQ(SpoolHex(),
              "1D 50 B4 B4 1B 33 18 1B 4F 00 00 00 00 1B 58 34 04 01 A5 " + Zeros(95) + " 1B 33 01 0A 1B 32");
}

TEST_F(RasterTest, NormalBmpSaveSpoolOfEightDotsAppends114BytesWithTheBitsInverted) {
    Give(OneByte(0xA5));
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 33 18 1B 58 34 04 01 5A " + Zeros(95) + " 1B 33 01 0A 1B 32");
}

TEST_F(RasterTest, CompressedBmpSaveSpoolOfEightDotsAppends19Bytes) {
    Give(OneByte(0x00));
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 58 33 04 18 81 FF 83 00 00 00 1B 58 32 18");
}

TEST_F(RasterTest, CommandsAreAppendedBehindWhatIsThere) {
    Give(OneByte(0x00));
    PrintData();
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), 121);
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, 121 + 114);
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, 121 + 114 + 19);
    EXPECT_EQ(SpoolHex().substr(0, 14), "0A 1D 50 B4 B4");
}

TEST_F(RasterTest, AWirelessLinkServesAsWell) {
    ClosePrinter();
    OpenWirelessLink();
    Give(OneByte(0x00));
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), 120);
}

TEST_F(RasterTest, PositionGrowsByTheLinesOfEachBand) {
    Give(BmpBuilder::OneBit(100, 50, [](int32_t, int32_t) { return 0; }));
    const int32_t band = 6 + 5 + 16 * 24 + 1;
    EXPECT_EQ(BmpSaveSpool(kName, 0x0102, 0x0304), 7 + 3 * band + 3 + 2);
    const auto at = [](int32_t position, int32_t count) {
        return scripted::ToHex(SpoolBuffer.At(position), static_cast<size_t>(count));
    };
    EXPECT_EQ(at(7, 11), "1B 4F 02 01 04 03 1B 58 34 10 18");
    EXPECT_EQ(at(7 + band - 1, 7), "0A 1B 4F 02 01 1C 03");
    EXPECT_EQ(at(7 + 2 * band, 11), "1B 4F 02 01 34 03 1B 58 34 10 02");
    EXPECT_EQ(at(7 + 3 * band - 1, 6), "1B 33 02 0A 1B 32");
}

TEST_F(RasterTest, FiftyLinesAreBandsOf24And24And2) {
    Give(BmpBuilder::OneBit(100, 50, [](int32_t, int32_t) { return 1; }));
    const std::string whole = "1B 58 34 10 18 " + Zeros(16 * 24) + " 0A ";
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 33 18 " + whole + whole + "1B 58 34 10 02 " + Zeros(16 * 24) +
                              " 1B 33 02 0A 1B 32");
    ClearSpool();
    CompressedBmpSaveSpool(kName);
    // 384 zeros are six runs of 58 and one of 36; 32 are one run.
    const std::string band = "1B 58 33 10 18 FA 00 FA 00 FA 00 FA 00 FA 00 FA 00 E4 00 1B 58 32 18 ";
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 " + band + band + "1B 58 33 10 18 E0 00 1B 58 32 18");
}

TEST_F(RasterTest, PositionsAreCutToSixteenBitsOfTheSignedValue) {
    Give(OneByte(0x00));
    BmpSaveSpool(kName, -1, 65536 + 258);
    EXPECT_EQ(SpoolHex().substr(21, 17), "1B 4F FF 00 02 01");
}

TEST_F(RasterTest, PositionsAtTheEndOfTheNumbersGoOnAtTheirBeginning) {
    Give(BmpBuilder::OneBit(8, 30, [](int32_t, int32_t) { return 0; }));
    BmpSaveSpool(kName, kLeast, kMost);
    EXPECT_EQ(SpoolHex().substr(21, 17), "1B 4F 00 00 FF FF");
    // 24 lines on: -2147483625, which is -8388607 x 256 - 233.
    EXPECT_EQ(CountOf("0A 1B 4F 00 00 17 01 1B 58", SpoolHex()), 1U);
}

TEST_F(RasterTest, AHeightOfWholeBandsHasNoShortOne) {
    Give(BmpBuilder::OneBit(8, 48, [](int32_t, int32_t) { return 1; }));
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 33 18 1B 58 34 04 18 " + Zeros(96) + " 0A 1B 58 34 04 18 " +
                              Zeros(96) + " 0A 1B 32");
}

TEST_F(RasterTest, BmpSaveSpoolDropsTheColumnsBehindWholeBytes) {
    Give(BmpBuilder::OneBit(12, 1, [](int32_t, int32_t) { return 1; }));
    BmpSaveSpool(kName, 0, 0);
    EXPECT_EQ(SpoolHex().substr(13 * 3, 29), "1B 58 34 04 01 FF 00 00 00 00");
}

TEST_F(RasterTest, NormalBmpSaveSpoolKeepsTheColumnsBehindWholeBytes) {
    Give(BmpBuilder::OneBit(12, 1, [](int32_t x, int32_t) { return x == 9; }));
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex().substr(7 * 3, 29), "1B 58 34 04 01 FF B0 00 00 00");
}

TEST_F(RasterTest, OneBitPicturesArePrintedFromTheirTopRowDown) {
    Give(BmpBuilder::OneBit(8, 3, [](int32_t x, int32_t y) { return x == y; }));
    BmpSaveSpool(kName, 0, 0);
    EXPECT_EQ(SpoolHex().substr(18 * 3, 35), "80 00 00 00 40 00 00 00 20 00 00 00");
}

TEST_F(RasterTest, ThePaletteOfAOneBitFileIsNotConsulted) {
    BmpBuilder file = OneByte(0x3C);
    file.colourTable = {255, 255, 255, 0, 0, 0, 0, 0};
    Give(file);
    BmpSaveSpool(kName, 0, 0);
    EXPECT_EQ(SpoolHex().substr(18 * 3, 2), "3C");
    ClearSpool();
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex().substr(12 * 3, 2), "C3");
    ClearSpool();
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex().substr(9 * 3, 5), "81 C3");
}

TEST_F(RasterTest, AWhitePictureHasNoDots) {
    Give(White(33, 24));
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 33 18 1B 58 34 08 18 " + Zeros(8 * 24) + " 0A 1B 32");
}

TEST_F(RasterTest, ABlackPixelIsADot) {
    Give(BmpBuilder::Colour(10, 2, [](int32_t x, int32_t y) { return x == 8 + y ? kBlack : kWhite; }));
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex().substr(12 * 3, 23), "00 80 00 00 00 40 00 00");
}

TEST_F(RasterTest, GreyPixelsAreDithered) {
    Give(BmpBuilder::Colour(8, 1, [](int32_t, int32_t) { return Pixel{60, 60, 60}; }));
    NormalBmpSaveSpool(kName);
    // 60 corrected is 124: black, 46 to the right: 170, white, -32: 92, black, 34: 158, white, ...
    EXPECT_EQ(SpoolHex().substr(12 * 3, 2), "AA");
}

TEST_F(RasterTest, AWhitePictureOf48LinesIsTwoRepeatChainsAndAnEmptyBand) {
    Give(White(64, 48));
    CompressedBmpSaveSpool(kName);
    // 192 bytes are three runs of 58 and one of 18.
    const std::string band = "1B 58 33 08 18 FA 00 FA 00 FA 00 D2 00 1B 58 32 18 ";
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 " + band + band + "1B 58 33 08 18 1B 58 32 18");
}

TEST_F(RasterTest, CompressedLinesAreThoseOfTheNormalForm) {
    Give(BmpBuilder::OneBit(12, 1, [](int32_t x, int32_t) { return x == 9; }));
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 58 33 04 18 82 FF B0 82 00 00 1B 58 32 18");
}

TEST_F(RasterTest, LineBytesAreSentAsOneByteWithoutATest) {
    Give(BmpBuilder::OneBit(256 * 8 + 8, 1, [](int32_t, int32_t) { return 0; }));
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), 7 + 6 + 5 + 260 * 24 + 3 + 1 + 2);
    EXPECT_EQ(SpoolHex().substr(13 * 3, 14), "1B 58 34 04 01");
    ClearSpool();
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex().substr(4 * 3, 14), "1B 58 33 04 18");
}

TEST_F(RasterTest, OtherDepthsAppendNothing) {
    for (const uint16_t depth : std::initializer_list<uint16_t>{0, 4, 8, 16, 32}) {
        BmpBuilder file = OneByte(0);
        file.bitCount = depth;
        Give(file);
        PrintData();
        EXPECT_EQ(BmpSaveSpool(kName, 0, 0), SpoolLength);
        NormalBmpSaveSpool(kName);
        CompressedBmpSaveSpool(kName);
    }
    EXPECT_EQ(SpoolHex(), "0A 0A 0A 0A 0A");
}

TEST_F(RasterTest, PicturesStoredFromTheTopHaveOnlyTheCommandsAroundTheBands) {
    BmpBuilder file = White(8, 30);
    file.height = -30;
    Give(file);
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), 9);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 33 18 1B 32");
    ClearSpool();
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 33 18 1B 32");
    ClearSpool();
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 58 33 04 18 1B 58 32 18");
}

TEST_F(RasterTest, APictureWithoutRowsHasOnlyTheCommandsAroundTheBands) {
    Give(White(8, 0));
    BmpSaveSpool(kName, 0, 0);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 33 18 1B 32");
    ClearSpool();
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 58 33 04 18 1B 58 32 18");
}

TEST_F(RasterTest, APictureWithoutColumnsHasBandsWithoutDots) {
    Give(White(0, 25));
    BmpSaveSpool(kName, 1, 2);
    EXPECT_EQ(SpoolHex(),
              "1D 50 B4 B4 1B 33 18 1B 4F 01 00 02 00 1B 58 34 00 18 0A 1B 4F 01 00 1A 00 1B 58 34 00 01 1B "
              "33 01 0A 1B 32");
    ClearSpool();
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex(), "1D 50 B4 B4 1B 58 33 00 18 1B 58 32 18 1B 58 33 00 18 1B 58 32 18");
}

TEST_F(RasterTest, AFileThatCannotBeLoadedIsMinusOneAndAppendsNothing) {
    PrintData();
    EXPECT_EQ(BmpSaveSpool(u"none.bmp", 0, 0), -1);
    EXPECT_EQ(BmpSaveSpool(nullptr, 0, 0), -1);
    NormalBmpSaveSpool(u"none.bmp");
    NormalBmpSaveSpool(nullptr);
    CompressedBmpSaveSpool(u"none.bmp");
    CompressedBmpSaveSpool(nullptr);
    EXPECT_EQ(SpoolHex(), "0A");
}

TEST_F(RasterWithoutLinkTest, SpoolLengthIsNotConnectedWhenTheFileLoads) {
    Give(OneByte(0));
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), ERR_NOT_CONNECTED);
    EXPECT_EQ(SpoolLength, ERR_NOT_CONNECTED);
    ClearSpool();
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, ERR_NOT_CONNECTED);
    ClearSpool();
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, ERR_NOT_CONNECTED);
    ClearSpool();
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

TEST_F(RasterWithoutLinkTest, SpoolLengthStaysWhenTheFileDoesNotLoad) {
    PrintData();
    EXPECT_EQ(BmpSaveSpool(u"none.bmp", 0, 0), -1);
    NormalBmpSaveSpool(u"none.bmp");
    CompressedBmpSaveSpool(u"none.bmp");
    EXPECT_EQ(SpoolHex(), "0A");
}

TEST_F(RasterWithoutLinkTest, OtherDepthsStoreNotConnectedAsWell) {
    BmpBuilder file = OneByte(0);
    file.bitCount = 8;
    Give(file);
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), ERR_NOT_CONNECTED);
    EXPECT_EQ(SpoolLength, ERR_NOT_CONNECTED);
}

TEST_F(RasterWithoutLinkTest, PicturesThatWouldNotFitStoreNotConnected) {
    Give(OneByte(0));
    SpoolLength = kSpoolEnd;
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), ERR_NOT_CONNECTED);
    EXPECT_EQ(SpoolLength, ERR_NOT_CONNECTED);
}

TEST_F(RasterTest, ASpoolLengthBelowZeroIsAppendedAt) {
    Give(OneByte(0));
    SpoolLength = ERR_NOT_CONNECTED;
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), 120 - 11);
    EXPECT_EQ(scripted::ToHex(SpoolBuffer.At(-11), 4), "1D 50 B4 B4");
}

TEST_F(RasterTest, WhatJustFitsIsAppended) {
    Give(OneByte(0));
    SpoolLength = kSpoolEnd - 120;
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), kSpoolEnd);
    SpoolLength = kSpoolEnd - 114;
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, kSpoolEnd);
    SpoolLength = kSpoolEnd - 19;
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, kSpoolEnd);
}

TEST_F(RasterTest, WhatDoesNotFitIsRefusedWhole) {
    Give(OneByte(0));
    for (const int32_t missing : {1, 2, 60, 113, 119, 120, 121, 4096}) {
        const int32_t length = std::max(kSpoolEnd - 120 + missing, kSpoolEnd - 113);
        SpoolLength = length;
        const std::vector<uint8_t> before = Storage();
        EXPECT_EQ(BmpSaveSpool(kName, 0, 0), ERR_SPOOL_LIMIT);
        NormalBmpSaveSpool(kName);
        EXPECT_EQ(SpoolLength, length);
        EXPECT_EQ(Storage(), before);
    }
    for (int32_t room = 18; room >= 0; --room) {
        SpoolLength = kSpoolEnd - room;
        const std::vector<uint8_t> before = Storage();
        CompressedBmpSaveSpool(kName);
        EXPECT_EQ(SpoolLength, kSpoolEnd - room);
        EXPECT_EQ(Storage(), before);
    }
}

TEST_F(RasterTest, APictureLongerThanTheSpoolIsRefusedWhole) {
    Give(BmpBuilder::OneBit(576, 6000,
                            [](int32_t x, int32_t y) { return (x * x + x * y * 7 + y * y) / 3 & 1; }));
    PrintData();
    const std::vector<uint8_t> before = Storage();
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), ERR_SPOOL_LIMIT);
    NormalBmpSaveSpool(kName);
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, 1);
    EXPECT_EQ(Storage(), before);
}

TEST_F(RasterTest, APictureLongerThanTheSpoolFitsWhereItCompresses) {
    Give(BmpBuilder::OneBit(576, 6000, [](int32_t, int32_t) { return 1; }));
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), ERR_SPOOL_LIMIT);
    CompressedBmpSaveSpool(kName);
    // 1728 zeros a band: 29 runs of 58 and one of 46.
    EXPECT_EQ(SpoolLength, 4 + 250 * (9 + 2 * 30) + 9);
}

TEST_F(RasterTest, WhatStandsBehindTheSpoolsEndSurvivesARefusal) {
    Give(OneByte(0));
    FillSpool(9990);
    SaveSpool(u"too long for it", 0, 0); // leaves its first six bytes behind the end
    files.Fail(5);
    const std::vector<uint8_t> before = Storage();
    EXPECT_EQ(BmpSaveSpool(kName, 0, 0), -1);
    EXPECT_EQ(Storage(), before);
    EXPECT_EQ(SpoolLength, 9990);
}

TEST_F(RasterTest, CompressedBmpSaveSpoolDoesNothingPastTheCapacity) {
    Give(OneByte(0));
    SpoolLength = kSpoolEnd + 1;
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(files.Calls(), Calls{});
    EXPECT_EQ(SpoolLength, kSpoolEnd + 1);
}

TEST_F(RasterWithoutLinkTest, CompressedBmpSaveSpoolTestsTheCapacityBeforeTheLink) {
    Give(OneByte(0));
    SpoolLength = kSpoolEnd + 1;
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, kSpoolEnd + 1);
}

TEST_F(RasterTest, AFileThatCannotBeReadToItsEndIsMinusOne) {
    Give(OneByte(0));
    PrintData();
    for (const int nth : {1, 2, 3, 4, 5}) {
        files.Fail(nth);
        EXPECT_EQ(BmpSaveSpool(kName, 0, 0), -1);
        files.Fail(nth);
        NormalBmpSaveSpool(kName);
        files.Fail(nth);
        CompressedBmpSaveSpool(kName);
        EXPECT_EQ(files.StillOpen(), 0);
    }
    EXPECT_EQ(SpoolHex(), "0A");
}

// Of the blocks a picture needs, one after the other; the tests' own bookkeeping needs smaller ones.
TEST_F(RasterTest, WithoutMemoryTheResultIsZeroAndNothingIsAppended) {
    if (!allocation::CanFail())
        GTEST_SKIP() << "the sanitizer's runtime allocates";
    const auto failEach = [](auto print) {
        int points = 0;
        for (bool failed = true; failed; ++points) {
            ClearSpool();
            PrintData();
            allocation::FailNth(points + 1, 400, std::numeric_limits<size_t>::max());
            const int32_t result = print();
            failed = SpoolLength == 1;
            EXPECT_EQ(result, failed ? 0 : SpoolLength);
        }
        allocation::Allow();
        return points - 1;
    };
    for (const int32_t width : {500, 17000}) {
        Give(White(width, 1));
        EXPECT_GE(failEach([] { return BmpSaveSpool(kName, 0, 0); }), 3) << width;
        EXPECT_GE(failEach([] { return NormalBmpSaveSpool(kName), SpoolLength > 1 ? SpoolLength : 0; }), 3);
        EXPECT_GE(failEach([] { return CompressedBmpSaveSpool(kName), SpoolLength > 1 ? SpoolLength : 0; }),
                  3);
    }
}

TEST_F(RasterWithoutLinkTest, LoadLogoSaveSpoolAppendsTheLogosNumber) {
    LoadLogoSaveSpool(0);
    LoadLogoSaveSpool(7);
    LoadLogoSaveSpool(255);
    EXPECT_EQ(SpoolHex(), "1B 66 00 1B 66 07 1B 66 FF");
}

TEST_F(RasterWithoutLinkTest, LoadLogoSaveSpoolSendsZeroForAnyOtherNumber) {
    for (const int32_t n : {-1, 256, 300, kLeast, kMost}) {
        ClearSpool();
        LoadLogoSaveSpool(n);
        EXPECT_EQ(SpoolHex(), "1B 66 00") << n;
    }
}

TEST_F(RasterWithoutLinkTest, LoadLogoSaveSpoolAppendsNothingPastTheCapacity) {
    SpoolLength = kSpoolEnd + 1;
    LoadLogoSaveSpool(1);
    EXPECT_EQ(SpoolLength, kSpoolEnd + 1);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
    SpoolLength = kSpoolEnd;
    LoadLogoSaveSpool(1);
    EXPECT_EQ(SpoolLength, kSpoolEnd + 3);
}

} // namespace nadrel

#include "tests/SpoolFixture.h"

#include "platform/linux/AnsiCodePage.h"
#include "spool/Spool.h"

#include <string>

namespace nadrel {

INSTANTIATE_TEST_SUITE_P(Feeds, CommandBytes,
                         testing::Values(DirectRow{SPOOL_CALL(PrintData()), "0A"},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(0)), "1B 4A 00"},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(1)), "1B 4A 01"},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(255)), "1B 4A FF"},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(256)), ""},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(-1)), ""},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(INT32_MAX)), ""},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(INT32_MIN)), ""},
                                         DirectRow{SPOOL_CALL(PrintLineFeed(0)), "1B 64 00"},
                                         DirectRow{SPOOL_CALL(PrintLineFeed(3)), "1B 64 03"},
                                         DirectRow{SPOOL_CALL(PrintLineFeed(255)), "1B 64 FF"},
                                         DirectRow{SPOOL_CALL(PrintLineFeed(256)), ""},
                                         DirectRow{SPOOL_CALL(PrintLineFeed(-1)), ""},
                                         DirectRow{SPOOL_CALL(PrintLineFeed(INT32_MIN)), ""}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(Spacing, CommandBytes,
                         testing::Values(DirectRow{SPOOL_CALL(InitPrinterStatus()), "1B 40"},
                                         DirectRow{SPOOL_CALL(SetDefaultLineSpace()), "1B 32"},
                                         DirectRow{SPOOL_CALL(SetLineSpace(0)), "1B 33 00"},
                                         DirectRow{SPOOL_CALL(SetLineSpace(30)), "1B 33 1E"},
                                         DirectRow{SPOOL_CALL(SetLineSpace(255)), "1B 33 FF"},
                                         DirectRow{SPOOL_CALL(SetLineSpace(256)), ""},
                                         DirectRow{SPOOL_CALL(SetLineSpace(-1)), ""},
                                         DirectRow{SPOOL_CALL(SetLineSpace(INT32_MIN)), ""},
                                         DirectRow{SPOOL_CALL(SetCharSpace(0)), "1B 20 00"},
                                         DirectRow{SPOOL_CALL(SetCharSpace(255)), "1B 20 FF"},
                                         DirectRow{SPOOL_CALL(SetCharSpace(256)), ""},
                                         DirectRow{SPOOL_CALL(SetCharSpace(-1)), ""},
                                         DirectRow{SPOOL_CALL(SetCharSpace(INT32_MAX)), ""}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(CodeTables, CommandBytes,
                         testing::Values(DirectRow{SPOOL_CALL(SetCharCodeTable(0, 0)), "1B 74 00"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(5, 0)), "1B 74 05"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(6, 0)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(255, 0)), "1B 74 FF"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(254, 0)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(-1, 0)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(0, 1)), "1B 74 00"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(5, 1)), "1B 74 05"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(6, 1)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(50, 1)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(255, 1)), "1B 74 FF"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(0, 2)), "1B 74 00"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(50, 2)), "1B 74 32"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(51, 2)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(255, 2)), "1B 74 FF"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(256, 2)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(-1, 2)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(INT32_MIN, 2)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(0, 3)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(255, 3)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(0, 256)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(0, UINT32_MAX)), ""},
                                         DirectRow{SPOOL_CALL(SetCharCodeTableEX(0)), "1B 74 00"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTableEX(51)), "1B 74 33"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTableEX(0x1234)), "1B 74 34"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTableEX(256)), "1B 74 00"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTableEX(UINT32_MAX)), "1B 74 FF"}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(
    Styles, CommandBytes,
    testing::Values(
        DirectRow{SPOOL_CALL(SetFontSize(0)), "1B 21 00"}, DirectRow{SPOOL_CALL(SetFontSize(1)), "1B 21 01"},
        DirectRow{SPOOL_CALL(SetFontSize(2)), "1B 21 02"}, DirectRow{SPOOL_CALL(SetFontSize(3)), ""},
        DirectRow{SPOOL_CALL(SetFontSize(-1)), ""}, DirectRow{SPOOL_CALL(SetFontSize(256)), ""},
        DirectRow{SPOOL_CALL(SetTextStyle(0, 0, 0, 0, 0)), "1B 2D 00 1B 45 00 1D 21 00 1D 42 00"},
        DirectRow{SPOOL_CALL(SetTextStyle(1, 5, 1, 1, 0)), "1B 2D 01 1B 45 01 1D 21 11 1D 42 00"},
        DirectRow{SPOOL_CALL(SetTextStyle(3, 0, 8, -1, 7)), "1B 2D 00 1B 45 00 1D 21 00 1D 42 01"},
        DirectRow{SPOOL_CALL(SetTextStyle(2, 1, 7, 7, 1)), "1B 2D 02 1B 45 01 1D 21 77 1D 42 01"},
        DirectRow{SPOOL_CALL(SetTextStyle(257, 256, 7, 0, 256)), "1B 2D 00 1B 45 01 1D 21 70 1D 42 01"},
        DirectRow{SPOOL_CALL(SetTextStyle(UINT32_MAX, UINT32_MAX, 0, 7, UINT32_MAX)),
                  "1B 2D 00 1B 45 01 1D 21 07 1D 42 01"},
        DirectRow{SPOOL_CALL(SetTextStyle(0, 0, -1, 3, 0)), "1B 2D 00 1B 45 00 1D 21 03 1D 42 00"},
        DirectRow{SPOOL_CALL(SetTextStyle(0, 0, 3, 8, 0)), "1B 2D 00 1B 45 00 1D 21 30 1D 42 00"},
        DirectRow{SPOOL_CALL(SetTextStyle(0, 0, INT32_MAX, INT32_MIN, 0)),
                  "1B 2D 00 1B 45 00 1D 21 00 1D 42 00"}),
    RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(Layout, CommandBytes,
                         testing::Values(DirectRow{SPOOL_CALL(SetUpsideDown(0)), "1B 7B 00"},
                                         DirectRow{SPOOL_CALL(SetUpsideDown(1)), "1B 7B 01"},
                                         DirectRow{SPOOL_CALL(SetUpsideDown(256)), "1B 7B 01"},
                                         DirectRow{SPOOL_CALL(SetUpsideDown(0)), "1B 7B", true},
                                         DirectRow{SPOOL_CALL(SetUpsideDown(1)), "1B 7B", true},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(0)), "1B 24 00 00"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(300)), "1B 24 2C 01"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(65535)), "1B 24 FF FF"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(65536)), "1B 24 00 00"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(70000)), "1B 24 70 11"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(-1)), "1B 24 FF 00"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(-256)), "1B 24 00 FF"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(-300)), "1B 24 D4 FF"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(INT32_MAX)), "1B 24 FF FF"},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(INT32_MIN)), "1B 24 00 00"},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(0)), "1B 61 00"},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(1)), "1B 61 01"},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(2)), "1B 61 02"},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(3)), "1B 61 03"},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(4)), ""},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(-1)), ""},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(256)), ""}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(CuttingAndMarks, CommandBytes,
                         testing::Values(DirectRow{SPOOL_CALL(CutPaper(0)), "1D 56 00"},
                                         DirectRow{SPOOL_CALL(CutPaper(1)), "1D 56 01"},
                                         DirectRow{SPOOL_CALL(CutPaper(2)), "1D 56 00"},
                                         DirectRow{SPOOL_CALL(CutPaper(257)), "1D 56 00"},
                                         DirectRow{SPOOL_CALL(CutPaper(UINT32_MAX)), "1D 56 00"},
                                         DirectRow{SPOOL_CALL(FeedToMark()), "1B 7A 1B 79"},
                                         DirectRow{SPOOL_CALL(SetPositionFromMark(0)), "1B 50 00 00"},
                                         DirectRow{SPOOL_CALL(SetPositionFromMark(300)), "1B 50 2C 01"},
                                         DirectRow{SPOOL_CALL(SetPositionFromMark(-1)), "1B 50 FF 00"},
                                         DirectRow{SPOOL_CALL(SetPositionFromMark(-257)), "1B 50 FF FF"},
                                         DirectRow{SPOOL_CALL(SetMarkUseMode(0)), "1D 73 00"},
                                         DirectRow{SPOOL_CALL(SetMarkUseMode(1)), "1D 73 01"},
                                         DirectRow{SPOOL_CALL(SetMarkUseMode(2)), "1D 73 01"},
                                         DirectRow{SPOOL_CALL(SetMarkUseMode(256)), "1D 73 01"}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(Text, DirectAppender,
                         testing::Values(DirectRow{SPOOL_CALL(PrintData()), "0A"},
                                         DirectRow{SPOOL_CALL(PrintDotFeed(9)), "1B 4A 09"},
                                         DirectRow{SPOOL_CALL(PrintLineFeed(9)), "1B 64 09"},
                                         DirectRow{SPOOL_CALL(InitPrinterStatus()), "1B 40"},
                                         DirectRow{SPOOL_CALL(SetDefaultLineSpace()), "1B 32"},
                                         DirectRow{SPOOL_CALL(SetLineSpace(9)), "1B 33 09"},
                                         DirectRow{SPOOL_CALL(SetCharSpace(9)), "1B 20 09"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTable(5, 1)), "1B 74 05"},
                                         DirectRow{SPOOL_CALL(SetCharCodeTableEX(9)), "1B 74 09"},
                                         DirectRow{SPOOL_CALL(SetFontSize(2)), "1B 21 02"},
                                         DirectRow{SPOOL_CALL(SetTextStyle(1, 1, 1, 1, 1)),
                                                   "1B 2D 01 1B 45 01 1D 21 11 1D 42 01"},
                                         DirectRow{SPOOL_CALL(SetUpsideDown(1)), "1B 7B 01"},
                                         DirectRow{SPOOL_CALL(SetUpsideDown(1)), "1B 7B", true},
                                         DirectRow{SPOOL_CALL(SetAbsPosition(300)), "1B 24 2C 01"},
                                         DirectRow{SPOOL_CALL(SetTextAlignment(2)), "1B 61 02"},
                                         DirectRow{SPOOL_CALL(CutPaper(1)), "1D 56 01"},
                                         DirectRow{SPOOL_CALL(FeedToMark()), "1B 7A 1B 79"},
                                         DirectRow{SPOOL_CALL(SetPositionFromMark(300)), "1B 50 2C 01"},
                                         DirectRow{SPOOL_CALL(SetMarkUseMode(1)), "1D 73 01"}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(
    Text, LinkAppender,
    testing::Values(LinkRow{SPOOL_RESULT(SetPrintPosition(0, 0)), "1B 4F 00 00 00 00", true},
                    LinkRow{SPOOL_RESULT(SetPrintPosition(300, 65535)), "1B 4F 2C 01 FF FF", true},
                    LinkRow{SPOOL_RESULT(SetPrintPosition(-1, -257)), "1B 4F FF 00 FF FF", true},
                    LinkRow{SPOOL_RESULT(SetPrintPosition(INT32_MIN, INT32_MAX)), "1B 4F 00 00 FF FF", true}),
    RowName<LinkRow>);

namespace {

class TextTest : public SpoolFixture {
  protected:
    void TearDown() override { platform::SetAnsiCodePage(1252); }
};

struct TextLength {
    size_t length;
    size_t counted;
};

void PrintTo(const TextLength &row, std::ostream *out) {
    *out << row.length << " bytes";
}

class TextSaveSpoolLength : public SpoolFixture, public testing::WithParamInterface<TextLength> {};

} // namespace

TEST_P(TextSaveSpoolLength, KeepsItsLowEightBits) {
    OpenSerialLink();
    PrintData();
    TextSaveSpool(std::u16string(GetParam().length, u'A').c_str());
    EXPECT_EQ(SpoolHex(), Joined("0A", Repeated("41", GetParam().counted)));
}

INSTANTIATE_TEST_SUITE_P(Lengths, TextSaveSpoolLength,
                         testing::Values(TextLength{0, 0}, TextLength{1, 1}, TextLength{254, 254},
                                         TextLength{255, 255}, TextLength{256, 0}, TextLength{257, 1},
                                         TextLength{300, 44}, TextLength{511, 255}, TextLength{512, 0},
                                         TextLength{65535, 255}, TextLength{65536, 0}, TextLength{409600, 0},
                                         TextLength{409700, 0}));

TEST_F(TextTest, ATextOf256BytesChangesNothing) {
    OpenSerialLink();
    const std::u16string text(256, u'A');
    EXPECT_TRUE(ChangesNothing([&] { TextSaveSpool(text.c_str()); }));
}

TEST_F(TextTest, TextIsAppendedConvertedAndWithoutStyleOrLineFeed) {
    OpenSerialLink();
    TextSaveSpool(u"Caf\u00E9 3,20 \u20AC");
    EXPECT_EQ(SpoolHex(), "43 61 66 E9 20 33 2C 32 30 20 80");
}

TEST_F(TextTest, TextThatThePageLacksIsAQuestionMarkForEachCharacter) {
    OpenSerialLink();
    TextSaveSpool(u"\u4E2D\U0001F600\xDC00");
    EXPECT_EQ(SpoolHex(), "3F 3F 3F");
}

TEST_F(TextTest, TextCountsConvertedBytesAndMayEndWithinACharacter) {
    OpenSerialLink();
    platform::SetAnsiCodePage(932);
    TextSaveSpool(std::u16string(128, u'\u3042').c_str());
    EXPECT_EQ(SpoolHex(), "");
    TextSaveSpool(std::u16string(129, u'\u3042').c_str());
    EXPECT_EQ(SpoolHex(), "82 A0");
    ClearSpool();
    TextSaveSpool((std::u16string(128, u'\u3042') + u"A").c_str());
    EXPECT_EQ(SpoolHex(), "82");
    ClearSpool();
    platform::SetAnsiCodePage(65001);
    TextSaveSpool((std::u16string(90, u'A') + std::u16string(56, u'\u20AC')).c_str());
    EXPECT_EQ(SpoolHex(), "41 41");
}

TEST_F(TextTest, ANullTextIsAnEmptyText) {
    OpenSerialLink();
    EXPECT_TRUE(ChangesNothing([] { TextSaveSpool(nullptr); }));
    EXPECT_TRUE(ChangesNothing([] { TextSaveSpool(u""); }));
}

TEST_F(TextTest, TextIsNotAppendedWithoutALink) {
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { TextSaveSpool(u"A"); }));
    EXPECT_TRUE(ChangesNothing([] { TextSaveSpool(nullptr); }));
}

TEST_F(TextTest, TextThatBeginsAtTheCapacityIsStillWritten) {
    OpenSerialLink();
    SpoolLength = kFull;
    TextSaveSpool(std::u16string(255, u'A').c_str());
    EXPECT_EQ(SpoolLength, kFull + 255);
    EXPECT_EQ(HexAt(kFull, 256), Joined(Repeated("41", 255), "00"));
}

TEST_F(TextTest, TextAboveTheCapacityIsNotAppended) {
    OpenSerialLink();
    for (const int32_t position : {kFull + 1, kStorageEnd, INT32_MAX}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { TextSaveSpool(u"A"); })) << position;
    }
}

TEST_F(TextTest, TextInFrontOfTheStorageIsRefusedWhole) {
    OpenSerialLink();
    SpoolLength = kStorageFirst - 1;
    EXPECT_TRUE(ChangesNothing([] { TextSaveSpool(u"ABCDEF"); }));
    SpoolLength = kStorageFirst;
    TextSaveSpool(u"AB");
    EXPECT_EQ(HexAt(kStorageFirst, 3), "41 42 00");
}

TEST_F(TextTest, InitPrinterStatusReturnsToStandardMode) {
    SetPageMode();
    InitPrinterStatus();
    EXPECT_EQ(PageModeFlag, 0);
    EXPECT_EQ(SpoolHex(), "1B 4C 1B 40");
}

TEST_F(TextTest, InitPrinterStatusAboveTheCapacityLeavesPageMode) {
    PageModeFlag = 1;
    SpoolLength = kFull + 1;
    InitPrinterStatus();
    EXPECT_EQ(PageModeFlag, 1);
    SpoolLength = kFull;
    InitPrinterStatus();
    EXPECT_EQ(PageModeFlag, 0);
}

TEST_F(TextTest, SetUpsideDownLosesItsParameterBetweenSetPageModeAndTheReturn) {
    SetPageMode();
    SetUpsideDown(1);
    Page_Print_StandardMode();
    SetUpsideDown(1);
    EXPECT_EQ(SpoolHex(), "1B 4C 1B 7B 0C 1B 7B 01");
}

TEST_F(TextTest, SetPrintPositionIsNotLimitedToPageMode) {
    OpenSerialLink();
    SetPrintPosition(1, 2);
    SetPageMode();
    SetPrintPosition(3, 4);
    EXPECT_EQ(SpoolHex(), "1B 4F 01 00 02 00 1B 4C 1B 4F 03 00 04 00");
}

TEST_F(TextTest, SetPrintPositionWithoutALinkLeavesMinusElevenUntilClearSpool) {
    PrintData();
    EXPECT_EQ(SetPrintPosition(1, 2), -11);
    EXPECT_EQ(SetPrintPosition(1, 2), -11);
    EXPECT_EQ(SpoolLength, -11);
    ClearSpool();
    EXPECT_EQ(SpoolLength, 0);
}

} // namespace nadrel

#include "tests/SpoolFixture.h"

namespace nadrel {

INSTANTIATE_TEST_SUITE_P(
    OnAPage, CommandBytes,
    testing::Values(
        DirectRow{SPOOL_CALL(Page_ClearCurrentData()), "18", true},
        DirectRow{SPOOL_CALL(Page_Print()), "1B 0C", true},
        DirectRow{SPOOL_CALL(Page_Print_StandardMode()), "0C", true},
        DirectRow{SPOOL_CALL(Page_SetArea(0, 0, 384, 800)), "1B 57 00 00 00 00 80 01 20 03", true},
        DirectRow{SPOOL_CALL(Page_SetArea(1, 258, 65535, 65536)), "1B 57 01 00 02 01 FF FF 00 00", true},
        DirectRow{SPOOL_CALL(Page_SetArea(-1, -256, -257, INT32_MIN)), "1B 57 FF 00 00 FF FF FF 00 00", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(0)), "1B 54 00", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(1)), "1B 54 01", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(2)), "1B 54 02", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(3)), "1B 54 03", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(4)), "", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(-1)), "", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(256)), "", true},
        DirectRow{SPOOL_CALL(Page_SetPosition(0, 0)), "1B 4F 00 00 00 00", true},
        DirectRow{SPOOL_CALL(Page_SetPosition(300, 65535)), "1B 4F 2C 01 FF FF", true},
        DirectRow{SPOOL_CALL(Page_SetPosition(-1, -300)), "1B 4F FF 00 D4 FF", true},
        DirectRow{SPOOL_CALL(Page_Newline()), "0A", true},
        DirectRow{SPOOL_CALL(Page_DotFeed(0)), "1B 4A 00", true},
        DirectRow{SPOOL_CALL(Page_DotFeed(255)), "1B 4A FF", true},
        DirectRow{SPOOL_CALL(Page_DotFeed(256)), "", true}, DirectRow{SPOOL_CALL(Page_DotFeed(-1)), "", true},
        DirectRow{SPOOL_CALL(Page_LineFeed(0)), "1B 64 00", true},
        DirectRow{SPOOL_CALL(Page_LineFeed(255)), "1B 64 FF", true},
        DirectRow{SPOOL_CALL(Page_LineFeed(256)), "", true},
        DirectRow{SPOOL_CALL(Page_LineFeed(-1)), "", true}),
    RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(InStandardMode, CommandBytes,
                         testing::Values(DirectRow{SPOOL_CALL(SetPageMode()), "1B 4C"},
                                         DirectRow{SPOOL_CALL(SetPageMode()), "1B 4C", true},
                                         DirectRow{SPOOL_CALL(Page_SetStandardMode()), "1B 53"},
                                         DirectRow{SPOOL_CALL(Page_SetStandardMode()), "1B 53", true},
                                         DirectRow{SPOOL_CALL(Page_ClearCurrentData()), ""},
                                         DirectRow{SPOOL_CALL(Page_Print()), ""},
                                         DirectRow{SPOOL_CALL(Page_Print_StandardMode()), ""},
                                         DirectRow{SPOOL_CALL(Page_SetArea(0, 0, 384, 800)), ""},
                                         DirectRow{SPOOL_CALL(Page_SetDirection(0)), ""},
                                         DirectRow{SPOOL_CALL(Page_SetPosition(0, 0)), ""},
                                         DirectRow{SPOOL_CALL(Page_Newline()), ""},
                                         DirectRow{SPOOL_CALL(Page_DotFeed(1)), ""},
                                         DirectRow{SPOOL_CALL(Page_LineFeed(1)), ""},
                                         DirectRow{SPOOL_CALL(Page_DrawBox(0, 0, 10, 10, 1)), ""}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(
    Drawing, CommandBytes,
    testing::Values(
        DirectRow{SPOOL_CALL(Page_DrawBox(10, 20, 100, 50, 300)), "1B 4F 0A 00 14 00 1D 69 64 00 32 00 00",
                  true},
        DirectRow{SPOOL_CALL(Page_DrawBox(10, 20, 100, 50, 0)), "1B 4F 0A 00 14 00 1D 69 64 00 32 00 00",
                  true},
        DirectRow{SPOOL_CALL(Page_DrawBox(10, 20, 100, 50, 255)), "1B 4F 0A 00 14 00 1D 69 64 00 32 00 FF",
                  true},
        DirectRow{SPOOL_CALL(Page_DrawBox(10, 20, 100, 50, 256)), "1B 4F 0A 00 14 00 1D 69 64 00 32 00 00",
                  true},
        DirectRow{SPOOL_CALL(Page_DrawBox(-1, 300, 65536, -256, -1)),
                  "1B 4F FF 00 2C 01 1D 69 00 00 00 FF 00", true},
        DirectRow{SPOOL_CALL(Page_DrawLine(0, 0, 100, 0, 1)), "1B 67 31 00 00 00 00 64 00 00 00 01"},
        DirectRow{SPOOL_CALL(Page_DrawLine(0, 0, 100, 0, 1)), "1B 67 31 00 00 00 00 64 00 00 00 01", true},
        DirectRow{SPOOL_CALL(Page_DrawLine(1, 300, -1, 65535, 255)), "1B 67 31 01 00 2C 01 FF 00 FF FF FF"},
        DirectRow{SPOOL_CALL(Page_DrawLine(0, 0, 10, 10, 0)), "1B 67 31 00 00 00 00 0A 00 0A 00 00"},
        DirectRow{SPOOL_CALL(Page_DrawLine(0, 0, 10, 10, 256)), ""},
        DirectRow{SPOOL_CALL(Page_DrawLine(0, 0, 10, 10, -1)), ""},
        DirectRow{SPOOL_CALL(Page_DrawLine(0, 0, 10, 10, 256)), "", true},
        DirectRow{SPOOL_CALL(Page_DrawEllipse(1, 2, 300, 4, 5)), "1B 67 32 01 00 02 00 2C 01 04 00 05"},
        DirectRow{SPOOL_CALL(Page_DrawEllipse(1, 2, 300, 4, 5)), "1B 67 32 01 00 02 00 2C 01 04 00 05", true},
        DirectRow{SPOOL_CALL(Page_DrawEllipse(0, 0, 10, 10, 0)), "1B 67 32 00 00 00 00 0A 00 0A 00 00"},
        DirectRow{SPOOL_CALL(Page_DrawEllipse(0, 0, 10, 10, 255)), "1B 67 32 00 00 00 00 0A 00 0A 00 FF"},
        DirectRow{SPOOL_CALL(Page_DrawEllipse(0, 0, 10, 10, 256)), ""},
        DirectRow{SPOOL_CALL(Page_DrawEllipse(0, 0, 10, 10, -1)), ""}),
    RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(InitPageMode, CommandBytes,
                         testing::Values(DirectRow{SPOOL_CALL(InitPageMode(0, 0, 384, 800)),
                                                   "1B 40 1B 4C 1B 57 00 00 00 00 80 01 20 03 18"},
                                         DirectRow{SPOOL_CALL(InitPageMode(0, 0, 384, 800)),
                                                   "1B 40 1B 4C 1B 57 00 00 00 00 80 01 20 03 18", true},
                                         DirectRow{SPOOL_CALL(InitPageMode(-1, 300, 65536, -300)),
                                                   "1B 40 1B 4C 1B 57 FF 00 2C 01 00 00 D4 FF 18"}),
                         RowName<DirectRow>);

INSTANTIATE_TEST_SUITE_P(
    PageMode, DirectAppender,
    testing::Values(
        DirectRow{SPOOL_CALL(SetPageMode()), "1B 4C"}, DirectRow{SPOOL_CALL(Page_SetStandardMode()), "1B 53"},
        DirectRow{SPOOL_CALL(Page_ClearCurrentData()), "18", true},
        DirectRow{SPOOL_CALL(Page_Print()), "1B 0C", true},
        DirectRow{SPOOL_CALL(Page_Print_StandardMode()), "0C", true},
        DirectRow{SPOOL_CALL(Page_SetArea(1, 2, 3, 4)), "1B 57 01 00 02 00 03 00 04 00", true},
        DirectRow{SPOOL_CALL(Page_SetDirection(1)), "1B 54 01", true},
        DirectRow{SPOOL_CALL(Page_SetPosition(1, 2)), "1B 4F 01 00 02 00", true},
        DirectRow{SPOOL_CALL(Page_Newline()), "0A", true},
        DirectRow{SPOOL_CALL(Page_DotFeed(9)), "1B 4A 09", true},
        DirectRow{SPOOL_CALL(Page_LineFeed(9)), "1B 64 09", true},
        DirectRow{SPOOL_CALL(Page_DrawBox(1, 2, 3, 4, 5)), "1B 4F 01 00 02 00 1D 69 03 00 04 00 05", true},
        DirectRow{SPOOL_CALL(Page_DrawLine(1, 2, 3, 4, 5)), "1B 67 31 01 00 02 00 03 00 04 00 05"},
        DirectRow{SPOOL_CALL(Page_DrawEllipse(1, 2, 3, 4, 5)), "1B 67 32 01 00 02 00 03 00 04 00 05"}),
    RowName<DirectRow>);

namespace {

class PageModeTest : public SpoolFixture {};

} // namespace

TEST_F(PageModeTest, BeginsInStandardMode) {
    EXPECT_EQ(PageModeFlag, 0);
}

TEST_F(PageModeTest, TheFlagFollowsWhatWasAppended) {
    SetPageMode();
    EXPECT_EQ(PageModeFlag, 1);
    Page_SetStandardMode();
    EXPECT_EQ(PageModeFlag, 0);
    InitPageMode(0, 0, 384, 800);
    EXPECT_EQ(PageModeFlag, 1);
    Page_Print_StandardMode();
    EXPECT_EQ(PageModeFlag, 0);
}

TEST_F(PageModeTest, PagePrintStaysInPageModeAndPagePrintStandardModeLeavesIt) {
    SetPageMode();
    Page_Print();
    EXPECT_EQ(PageModeFlag, 1);
    Page_Print_StandardMode();
    EXPECT_EQ(PageModeFlag, 0);
    Page_Print();
    EXPECT_EQ(SpoolHex(), "1B 4C 1B 0C 0C");
}

TEST_F(PageModeTest, NoOtherPageCommandChangesTheFlag) {
    SetPageMode();
    Page_ClearCurrentData();
    Page_Print();
    Page_SetArea(0, 0, 1, 1);
    Page_SetDirection(1);
    Page_SetPosition(1, 1);
    Page_Newline();
    Page_DotFeed(1);
    Page_LineFeed(1);
    Page_DrawBox(0, 0, 1, 1, 1);
    Page_DrawLine(0, 0, 1, 1, 1);
    Page_DrawEllipse(0, 0, 1, 1, 1);
    EXPECT_EQ(PageModeFlag, 1);
}

TEST_F(PageModeTest, APagePrintInStandardModeLeavesTheFlagClear) {
    Page_Print_StandardMode();
    EXPECT_EQ(PageModeFlag, 0);
    EXPECT_EQ(SpoolLength, 0);
}

TEST_F(PageModeTest, ClearSpoolLeavesTheFlag) {
    SetPageMode();
    ClearSpool();
    EXPECT_EQ(PageModeFlag, 1);
}

TEST_F(PageModeTest, AboveTheCapacityTheFlagStays) {
    SpoolLength = kFull + 1;
    SetPageMode();
    InitPageMode(0, 0, 384, 800);
    EXPECT_EQ(PageModeFlag, 0);
    PageModeFlag = 1;
    Page_SetStandardMode();
    Page_Print_StandardMode();
    EXPECT_EQ(PageModeFlag, 1);
}

TEST_F(PageModeTest, AtTheCapacityTheFlagChangesWithTheCommand) {
    SpoolLength = kFull;
    SetPageMode();
    EXPECT_EQ(PageModeFlag, 1);
    SpoolLength = kFull;
    Page_Print_StandardMode();
    EXPECT_EQ(PageModeFlag, 0);
    PageModeFlag = 1;
    SpoolLength = kFull;
    Page_SetStandardMode();
    EXPECT_EQ(PageModeFlag, 0);
}

TEST_F(PageModeTest, InitPageModeAboveTheCapacityChangesNothing) {
    SpoolLength = kFull + 1;
    EXPECT_TRUE(ChangesNothing([] { InitPageMode(0, 0, 384, 800); }));
}

// Each of its four commands asks for itself whether the spool has room.
TEST_F(PageModeTest, InitPageModeEndsWhereOneOfItsCommandsFindsTheSpoolFull) {
    PageModeFlag = 1;
    SpoolLength = kFull;
    InitPageMode(0, 0, 384, 800);
    EXPECT_EQ(SpoolLength, kFull + 2);
    EXPECT_EQ(HexAt(kFull, 4), "1B 40 00 00");
    EXPECT_EQ(PageModeFlag, 0);

    StartAt(kFull - 2);
    InitPageMode(0, 0, 384, 800);
    EXPECT_EQ(HexAt(kFull - 2, 6), "1B 40 1B 4C 00 00");
    EXPECT_EQ(PageModeFlag, 1);

    StartAt(kFull - 4);
    InitPageMode(0, 0, 384, 800);
    EXPECT_EQ(HexAt(kFull - 4, 15), "1B 40 1B 4C 1B 57 00 00 00 00 80 01 20 03 00");

    StartAt(kFull - 14);
    InitPageMode(0, 0, 384, 800);
    EXPECT_EQ(HexAt(kFull - 14, 15), "1B 40 1B 4C 1B 57 00 00 00 00 80 01 20 03 18");
}

TEST_F(PageModeTest, InitPageModeInFrontOfTheStorageChangesNothing) {
    PageModeFlag = 1;
    SpoolLength = kStorageFirst - 1;
    EXPECT_TRUE(ChangesNothing([] { InitPageMode(0, 0, 384, 800); }));
    EXPECT_EQ(PageModeFlag, 1);
}

} // namespace nadrel

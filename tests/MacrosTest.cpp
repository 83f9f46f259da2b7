#include "tests/SpoolFixture.h"

#include <algorithm>
#include <string>

namespace nadrel {

INSTANTIATE_TEST_SUITE_P(
    Macros, CommandBytes,
    testing::Values(
        DirectRow{SPOOL_CALL(SetMarco_Start()), ""},
        DirectRow{SPOOL_CALL(Initialize_Macro()), "1B 1C 2B 01 00 00 00"},
        DirectRow{SPOOL_CALL(SetMacro_End()), "1B 1C 2B 01 00 00 00"},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(0, 0)), "1B 1C 2B 01 00 06 00 1B 21 00 1B 74 00"},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(3, 255)), "1B 1C 2B 01 00 06 00 1B 21 03 1B 74 FF"},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(1, 50)), "1B 1C 2B 01 00 06 00 1B 21 01 1B 74 32"},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(2, 7)), "1B 1C 2B 01 00 06 00 1B 21 02 1B 74 07",
                  true},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(4, 0)), ""},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(-1, 0)), ""},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(256, 0)), ""},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(0, 51)), ""},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(0, 254)), ""},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(0, 256)), ""},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(0, -1)), ""},
        DirectRow{SPOOL_CALL(SetMacro_FontSize_FontTable(INT32_MIN, INT32_MAX)), ""}),
    RowName<DirectRow>);

namespace {

class MacrosTest : public SpoolFixture {
  protected:
    // Appends bytes 01 02 ... FF 01 ... as commands, so that no byte is 00.
    static void AppendBody(int32_t count) {
        uint8_t *bytes = SpoolBuffer.Write(SpoolLength, count);
        for (int32_t i = 0; i < count; ++i)
            bytes[i] = BodyByte(i);
        SpoolLength += count;
    }

    static uint8_t BodyByte(int32_t i) { return static_cast<uint8_t>(1 + i % 255); }

    // Whether `count` bytes from `position` on are the body.
    static bool BodyStandsAt(int32_t position, int32_t count) {
        for (int32_t i = 0; i < count; ++i)
            if (*SpoolBuffer.At(position + i) != BodyByte(i))
                return false;
        return true;
    }

    static bool IsZero(int32_t from, int32_t to) {
        return std::all_of(SpoolBuffer.At(from), SpoolBuffer.At(to), [](uint8_t byte) { return byte == 0; });
    }
};

struct BodyRow {
    int32_t length;
    const char *lengthHex; // as the header carries it
};

void PrintTo(const BodyRow &row, std::ostream *out) {
    *out << row.length << " bytes";
}

class MacroBody : public MacrosTest, public testing::WithParamInterface<BodyRow> {};

} // namespace

TEST_F(MacrosTest, AStretchOfCommandsBecomesAMacroBehindZeros) {
    SetMarco_Start();
    SetFontSize(1);
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "00 00 00 1B 1C 2B 01 00 03 00 1B 21 01");
    EXPECT_EQ(SpoolLength, 13);
}

TEST_F(MacrosTest, AMacroIsTheSameWithALink) {
    OpenSerialLink();
    SetMarco_Start();
    SetFontSize(1);
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "00 00 00 1B 1C 2B 01 00 03 00 1B 21 01");
}

TEST_F(MacrosTest, WhatStandsBeforeTheMarkStays) {
    InitPrinterStatus();
    SetMarco_Start();
    SetTextAlignment(1);
    PrintData();
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "1B 40 00 00 00 00 1B 1C 2B 01 00 04 00 1B 61 01 0A");
}

TEST_F(MacrosTest, WithoutAMarkTheWholeSpoolIsTheMacro) {
    InitPrinterStatus();
    PrintData();
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "00 00 00 1B 1C 2B 01 00 03 00 1B 40 0A");
}

TEST_F(MacrosTest, AMarkAtTheSpoolsEndGivesAnEmptyMacro) {
    InitPrinterStatus();
    SetMarco_Start();
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "1B 40 1B 1C 2B 01 00 00 00");
}

TEST_F(MacrosTest, TheMarkStandsUntilSetAgain) {
    InitPrinterStatus();
    SetMarco_Start();
    PrintData();
    SetMacro_End();
    SetMacro_End();
    EXPECT_EQ(MacroStartMark, 2);
    EXPECT_EQ(SpoolHex(), "1B 40 00 00 00 00 00 00 00 00 00 1B 1C 2B 01 00 09 00 00 1B 1C 2B 01 00 01 00 0A");
    SetMarco_Start();
    EXPECT_EQ(MacroStartMark, 27);
}

TEST_F(MacrosTest, ASecondMacroFollowsTheFirst) {
    SetMarco_Start();
    PrintData();
    SetMacro_End();
    SetMarco_Start();
    PrintLineFeed(2);
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "00 1B 1C 2B 01 00 01 00 0A 00 00 00 1B 1C 2B 01 00 03 00 1B 64 02");
}

TEST_F(MacrosTest, AMarkBehindTheSpoolsEndChangesNothing) {
    InitPrinterStatus();
    SetMarco_Start();
    ClearSpool();
    EXPECT_TRUE(ChangesNothing([] { SetMacro_End(); }));
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { SetMacro_End(); }));
    PrintData();
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "0A 0A 1B 1C 2B 01 00 00 00");
}

TEST_F(MacrosTest, AMarkAnywhereElseThanInTheStorageChangesNothing) {
    PrintData();
    for (const int32_t mark : {2, kStorageEnd, INT32_MAX, kStorageFirst - 1, INT32_MIN}) {
        MacroStartMark = mark;
        EXPECT_TRUE(ChangesNothing([] { SetMacro_End(); })) << mark;
    }
}

TEST_F(MacrosTest, ASpoolLengthOutsideTheStorageChangesNothing) {
    for (const int32_t length : {kStorageFirst - 1, INT32_MIN, kStorageEnd + 1, INT32_MAX}) {
        SpoolLength = length;
        for (const int32_t mark : {0, length, kStorageFirst, kFull, INT32_MAX, INT32_MIN}) {
            MacroStartMark = mark;
            EXPECT_TRUE(ChangesNothing([] { SetMacro_End(); })) << length << ", " << mark;
        }
    }
}

TEST_F(MacrosTest, AMarkInFrontOfTheSpoolBelongsToAMacroThatBeginsThere) {
    SetPrintPosition(0, 0);
    ASSERT_EQ(SpoolLength, -11);
    SetMarco_Start();
    SetFontSize(1);
    SetMacro_End();
    EXPECT_EQ(SpoolLength, 2);
    EXPECT_EQ(HexAt(-11, 14), "00 00 00 1B 1C 2B 01 00 03 00 1B 21 01 00");
}

TEST_F(MacrosTest, WhatARefusedTextLeftBehindTheSpoolsEndIsZeroed) {
    OpenSerialLink();
    SetMarco_Start();
    PrintData();
    StartAt(300);
    SaveSpool(std::u16string(10000, u'A').c_str(), 0, 0);
    ASSERT_EQ(HexAt(300, 6), "1D 21 00 1B 45 00");
    SpoolLength = 0;
    PrintData();
    SetMacro_End();
    EXPECT_EQ(SpoolHex(), "00 1B 1C 2B 01 00 01 00 0A");
    EXPECT_TRUE(IsZero(9, kFull));
}

TEST_P(MacroBody, OfAnyLengthIsKeptWhole) {
    InitPrinterStatus();
    SetMarco_Start();
    const int32_t n = GetParam().length;
    AppendBody(n);
    SetMacro_End();
    EXPECT_EQ(SpoolLength, 2 + n + 7 + n);
    EXPECT_EQ(HexAt(0, 2), "1B 40");
    EXPECT_TRUE(IsZero(2, 2 + n));
    EXPECT_EQ(HexAt(2 + n, 7), std::string("1B 1C 2B 01 00 ") + GetParam().lengthHex);
    EXPECT_TRUE(BodyStandsAt(2 + n + 7, n));
    EXPECT_TRUE(IsZero(SpoolLength, kStorageEnd));
}

INSTANTIATE_TEST_SUITE_P(Lengths, MacroBody,
                         testing::Values(BodyRow{1, "01 00"}, BodyRow{23, "17 00"}, BodyRow{24, "18 00"},
                                         BodyRow{25, "19 00"}, BodyRow{255, "FF 00"}, BodyRow{256, "00 01"},
                                         BodyRow{300, "2C 01"}, BodyRow{9999, "0F 27"},
                                         BodyRow{65535, "FF FF"}, BodyRow{65536, "00 00"},
                                         BodyRow{70000, "70 11"}, BodyRow{204795, "FB 1F"}));

TEST_F(MacrosTest, AMacroThatHasNoRoomBehindTheSpoolChangesNothing) {
    AppendBody(206844);
    SetMacro_End();
    EXPECT_EQ(SpoolLength, 413695);
    EXPECT_TRUE(BodyStandsAt(206851, 206844));
    ClearSpool();
    AppendBody(206845);
    EXPECT_TRUE(ChangesNothing([] { SetMacro_End(); }));
    ClearSpool();
    AppendBody(409600);
    EXPECT_TRUE(ChangesNothing([] { SetMacro_End(); }));
}

TEST_F(MacrosTest, AMacroBelowTheCapacityMayEndPastIt) {
    SpoolLength = kFull;
    SetMarco_Start();
    PrintData();
    SetMacro_End();
    EXPECT_EQ(SpoolLength, kFull + 9);
    EXPECT_EQ(HexAt(kFull, 9), "00 1B 1C 2B 01 00 01 00 0A");
}

TEST_F(MacrosTest, ReadyMadeMacrosAreAppendedAboveTheCapacityWhileTheStorageHasRoom) {
    SpoolLength = kFull + 1;
    Initialize_Macro();
    SetMacro_FontSize_FontTable(3, 255);
    EXPECT_EQ(SpoolLength, kFull + 21);
    EXPECT_EQ(HexAt(kFull + 1, 20), "1B 1C 2B 01 00 00 00 1B 1C 2B 01 00 06 00 1B 21 03 1B 74 FF");
    SpoolLength = kStorageEnd - 7;
    Initialize_Macro();
    EXPECT_EQ(SpoolLength, kStorageEnd);
    SpoolLength = kStorageEnd - 13;
    SetMacro_FontSize_FontTable(0, 0);
    EXPECT_EQ(SpoolLength, kStorageEnd);
}

TEST_F(MacrosTest, ReadyMadeMacrosAreRefusedWholeOutsideTheStorage) {
    for (const int32_t position : {kStorageEnd - 6, kStorageEnd, INT32_MAX, kStorageFirst - 1, INT32_MIN}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { Initialize_Macro(); })) << position;
        EXPECT_TRUE(ChangesNothing([] { SetMacro_FontSize_FontTable(0, 0); })) << position;
    }
    SpoolLength = kStorageEnd - 12;
    EXPECT_TRUE(ChangesNothing([] { SetMacro_FontSize_FontTable(0, 0); }));
}

TEST_F(MacrosTest, ReadyMadeMacrosAreWrittenInFrontOfTheSpoolFromANegativeLength) {
    for (const int32_t position : {-11, kStorageFirst}) {
        StartAt(position);
        Initialize_Macro();
        SetMacro_FontSize_FontTable(1, 2);
        EXPECT_EQ(HexAt(position, 20), "1B 1C 2B 01 00 00 00 1B 1C 2B 01 00 06 00 1B 21 01 1B 74 02");
    }
}

TEST_F(MacrosTest, TheMarkTakesAnySpoolLength) {
    for (const int32_t length : {-11, 0, kFull, kFull + 1, INT32_MAX, INT32_MIN}) {
        SpoolLength = length;
        EXPECT_TRUE(ChangesNothing([] { SetMarco_Start(); }));
        EXPECT_EQ(MacroStartMark, length);
    }
}

} // namespace nadrel

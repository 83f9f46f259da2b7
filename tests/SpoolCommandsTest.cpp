#include "tests/SpoolFixture.h"

// What all rows of a kind have in common. The rows stand in the tests of their families.
namespace nadrel {

TEST_P(CommandBytes, AreAppendedWithALink) {
    OpenSerialLink();
    Run();
    EXPECT_EQ(SpoolHex(), GetParam().bytes);
}

TEST_P(CommandBytes, AreAppendedWithoutALink) {
    Run();
    EXPECT_EQ(SpoolHex(), GetParam().bytes);
}

TEST_P(DirectAppender, AppendsBehindWhatIsThere) {
    ASSERT_STRNE(GetParam().bytes, "");
    PrintData();
    PrintData();
    Run();
    EXPECT_EQ(SpoolHex(), Joined("0A 0A", GetParam().bytes));
}

TEST_P(DirectAppender, StillWritesTheWholeCommandThatBeginsAtTheCapacity) {
    SpoolLength = kFull;
    Run();
    EXPECT_EQ(SpoolLength, kFull + LengthOf(GetParam().bytes));
    EXPECT_EQ(HexAt(kFull, LengthOf(GetParam().bytes)), GetParam().bytes);
}

TEST_P(DirectAppender, AppendsNothingAboveTheCapacity) {
    for (const int32_t position : {kFull + 1, kStorageEnd - 1, kStorageEnd, kStorageEnd + 1, INT32_MAX}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([this] { Run(); })) << position;
    }
}

TEST_P(DirectAppender, WritesInFrontOfTheSpoolWhereARefusalLeftTheLength) {
    SetPrintPosition(1, 2);
    ASSERT_EQ(SpoolLength, -11);
    Run();
    EXPECT_EQ(SpoolLength, -11 + LengthOf(GetParam().bytes));
    EXPECT_EQ(HexAt(-11, LengthOf(GetParam().bytes)), GetParam().bytes);
}

TEST_P(DirectAppender, WritesAtTheStoragesFirstByte) {
    SpoolLength = kStorageFirst;
    Run();
    EXPECT_EQ(SpoolLength, kStorageFirst + LengthOf(GetParam().bytes));
    EXPECT_EQ(HexAt(kStorageFirst, LengthOf(GetParam().bytes)), GetParam().bytes);
}

TEST_P(DirectAppender, IsRefusedWholeInFrontOfTheStorage) {
    for (const int32_t position : {kStorageFirst - 1, kStorageFirst - 1000, INT32_MIN}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([this] { Run(); })) << position;
    }
}

TEST_P(TextCommand, CarriesItsTextWithALink) {
    OpenSerialLink();
    PrintData();
    GetParam().run();
    EXPECT_EQ(SpoolHex(), Joined("0A", GetParam().bytes));
}

TEST_P(TextCommand, IsAppendedWithAnEmptyTextWithoutALink) {
    PrintData();
    GetParam().run();
    EXPECT_EQ(SpoolHex(), Joined("0A", GetParam().withoutALink));
}

TEST_P(TextCommand, IsStillWrittenWholeThatBeginsAtTheCapacity) {
    OpenSerialLink();
    SpoolLength = kFull;
    GetParam().run();
    EXPECT_EQ(SpoolLength, kFull + LengthOf(GetParam().bytes));
    EXPECT_EQ(HexAt(kFull, LengthOf(GetParam().bytes)), GetParam().bytes);
}

TEST_P(TextCommand, AppendsNothingAboveTheCapacity) {
    OpenSerialLink();
    for (const int32_t position : {kFull + 1, kStorageEnd, INT32_MAX}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { GetParam().run(); })) << position;
    }
}

TEST_P(TextCommand, IsRefusedWholeInFrontOfTheStorage) {
    OpenSerialLink();
    SpoolLength = kStorageFirst - 1;
    EXPECT_TRUE(ChangesNothing([] { GetParam().run(); }));
    SpoolLength = kStorageFirst;
    GetParam().run();
    EXPECT_EQ(HexAt(kStorageFirst, LengthOf(GetParam().bytes)), GetParam().bytes);
}

TEST_P(LinkAppender, AppendsItsBytesAndGivesTheNewLength) {
    OpenSerialLink();
    PrintData();
    EXPECT_EQ(GetParam().run(), 1 + LengthOf(GetParam().bytes));
    EXPECT_EQ(SpoolHex(), Joined("0A", GetParam().bytes));
}

TEST_P(LinkAppender, TakesAWirelessLinkAsWell) {
    OpenWirelessLink();
    EXPECT_EQ(GetParam().run(), LengthOf(GetParam().bytes));
    EXPECT_EQ(SpoolHex(), GetParam().bytes);
}

TEST_P(LinkAppender, GivesMinusElevenWithoutALinkAndStoresItWhereItStores) {
    PrintData();
    const std::vector<uint8_t> before = Storage();
    EXPECT_EQ(GetParam().run(), -11);
    EXPECT_EQ(SpoolLength, GetParam().storesResult ? -11 : 1);
    EXPECT_TRUE(Storage() == before);
}

TEST_P(LinkAppender, FillsTheSpoolToItsLastByte) {
    OpenSerialLink();
    SpoolLength = kFull - LengthOf(GetParam().bytes);
    EXPECT_EQ(GetParam().run(), kFull);
    EXPECT_EQ(SpoolLength, kFull);
    EXPECT_EQ(HexAt(kFull - LengthOf(GetParam().bytes), LengthOf(GetParam().bytes)), GetParam().bytes);
}

TEST_P(LinkAppender, IsRefusedWholeWithMinusTwelveWhereItWouldEndPastTheSpool) {
    OpenSerialLink();
    for (const int32_t position : {kFull - LengthOf(GetParam().bytes) + 1, kFull - 1, kFull, kFull + 1,
                                   kStorageEnd - 1, kStorageEnd, kStorageEnd + 1, INT32_MAX}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(GetParam().run(), -12); })) << position;
    }
}

TEST_P(LinkAppender, IsRefusedWholeWithMinusTwelveInFrontOfTheStorage) {
    OpenSerialLink();
    for (const int32_t position : {kStorageFirst - 1, INT32_MIN}) {
        SpoolLength = position;
        EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(GetParam().run(), -12); })) << position;
    }
}

TEST_P(LinkAppender, WritesInFrontOfTheSpoolFromANegativeLength) {
    OpenSerialLink();
    for (const int32_t position : {-1, -11, kStorageFirst}) {
        StartAt(position);
        EXPECT_EQ(GetParam().run(), position + LengthOf(GetParam().bytes));
        EXPECT_EQ(SpoolLength, position + LengthOf(GetParam().bytes));
        EXPECT_EQ(HexAt(position, LengthOf(GetParam().bytes)), GetParam().bytes);
    }
}

} // namespace nadrel

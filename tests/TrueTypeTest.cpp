#include "tests/SpoolFixture.h"

#include "platform/linux/AnsiCodePage.h"

#include <string>

namespace nadrel {

INSTANTIATE_TEST_SUITE_P(
    TrueType, LinkAppender,
    testing::Values(LinkRow{SPOOL_RESULT(SelectForTTF(u"a.ttf")), "1B 67 46 61 2E 74 74 66 00", true},
                    LinkRow{SPOOL_RESULT(SelectForTTF(u"")), "1B 67 46 00", true},
                    LinkRow{SPOOL_RESULT(SelectForTTF(nullptr)), "1B 67 46 00", true},
                    LinkRow{SPOOL_RESULT(SelectForTTF(u"\u00E9\u20AC\u4E2D")), "1B 67 46 E9 80 3F 00", true},
                    LinkRow{SPOOL_RESULT(PrintSpoolForTTF(u"A\u20AC", 1, 2)),
                            "1B 67 55 01 02 00 41 20 AC 00 00 0A", true},
                    LinkRow{SPOOL_RESULT(PrintSpoolForTTF(u"", 0, 255)), "1B 67 55 00 FF 00 00 0A", true},
                    LinkRow{SPOOL_RESULT(PrintSpoolForTTF(nullptr, 255, 0)), "1B 67 55 FF 00 00 00 0A", true},
                    LinkRow{SPOOL_RESULT(PrintSpoolForTTF(u"\U0001F600\xDC01\u0100", 3, 4)),
                            "1B 67 55 03 04 D8 3D DE 00 DC 01 01 00 00 00 0A", true}),
    RowName<LinkRow>);

INSTANTIATE_TEST_SUITE_P(
    TrueType, TextCommand,
    testing::Values(TextRow{SPOOL_CALL(SetFontForTTF(u"a.ttf")), "1B 67 46 61 2E 74 74 66 00", "1B 67 46 00"},
                    TextRow{SPOOL_CALL(SetFontForTTF(u"")), "1B 67 46 00", "1B 67 46 00"},
                    TextRow{SPOOL_CALL(SetFontForTTF(nullptr)), "1B 67 46 00", "1B 67 46 00"},
                    TextRow{SPOOL_CALL(SetFontForTTF(u"\u00E9\u20AC\u4E2D")), "1B 67 46 E9 80 3F 00",
                            "1B 67 46 00"}),
    RowName<TextRow>);

INSTANTIATE_TEST_SUITE_P(TrueType, DirectAppender,
                         testing::Values(DirectRow{SPOOL_CALL(SetFontForTTF(u"")), "1B 67 46 00"}),
                         RowName<DirectRow>);

namespace {

class TrueTypeTest : public SpoolFixture {
  protected:
    void TearDown() override { platform::SetAnsiCodePage(1252); }
};

struct NameRow {
    size_t length;
    size_t counted;
};

void PrintTo(const NameRow &row, std::ostream *out) {
    *out << row.length << " bytes";
}

class FontNameLength : public SpoolFixture, public testing::WithParamInterface<NameRow> {
  protected:
    static std::string Expected() {
        return Joined(Joined("1B 67 46", Repeated("61", GetParam().counted)), "00");
    }
};

class TrueTypeTextLength : public SpoolFixture, public testing::WithParamInterface<size_t> {};

} // namespace

TEST_P(FontNameLength, OfSelectForTTFKeepsItsLowEightBits) {
    OpenSerialLink();
    EXPECT_EQ(SelectForTTF(std::u16string(GetParam().length, u'a').c_str()), LengthOf(Expected()));
    EXPECT_EQ(SpoolHex(), Expected());
}

TEST_P(FontNameLength, OfSetFontForTTFKeepsItsLowEightBits) {
    OpenSerialLink();
    SetFontForTTF(std::u16string(GetParam().length, u'a').c_str());
    EXPECT_EQ(SpoolHex(), Expected());
}

INSTANTIATE_TEST_SUITE_P(Lengths, FontNameLength,
                         testing::Values(NameRow{0, 0}, NameRow{255, 255}, NameRow{256, 0}, NameRow{257, 1},
                                         NameRow{300, 44}, NameRow{511, 255}, NameRow{512, 0},
                                         NameRow{409700, 0}));

TEST_P(TrueTypeTextLength, IsSentWhole) {
    OpenSerialLink();
    const int32_t units = static_cast<int32_t>(GetParam());
    EXPECT_EQ(PrintSpoolForTTF(std::u16string(GetParam(), u'\u4E2D').c_str(), 1, 2), 8 + 2 * units);
    EXPECT_EQ(SpoolHex(), Joined(Joined("1B 67 55 01 02", Repeated("4E 2D", GetParam())), "00 00 0A"));
}

INSTANTIATE_TEST_SUITE_P(Lengths, TrueTypeTextLength,
                         testing::Values(1, 127, 128, 255, 256, 257, 300, 511, 512, 9999));

TEST_F(TrueTypeTest, TheNameIsConvertedAndCountedInBytes) {
    OpenSerialLink();
    platform::SetAnsiCodePage(932);
    SetFontForTTF(u"\u3042");
    EXPECT_EQ(SpoolHex(), "1B 67 46 82 A0 00");
    ClearSpool();
    SelectForTTF((std::u16string(128, u'\u3042') + u"a").c_str());
    EXPECT_EQ(SpoolHex(), "1B 67 46 82 00");
}

TEST_F(TrueTypeTest, TextIsNotConvertedToTheCodePage) {
    OpenSerialLink();
    const char *const converted = U2A(u"before");
    PrintSpoolForTTF(u"text", 0, 0);
    EXPECT_STREQ(converted, "before");
}

TEST_F(TrueTypeTest, ATextThatFillsTheSpoolIsAppendedWholeAndALongerOneNotAtAll) {
    OpenSerialLink();
    const std::u16string text(204796, u'\u4E2D');
    EXPECT_EQ(PrintSpoolForTTF(text.c_str(), 1, 2), kFull);
    EXPECT_EQ(HexAt(0, 7), "1B 67 55 01 02 4E 2D");
    EXPECT_EQ(HexAt(kFull - 5, 6), "4E 2D 00 00 0A 00");
    ClearSpool();
    EXPECT_TRUE(ChangesNothing([&] { EXPECT_EQ(PrintSpoolForTTF((text + u"A").c_str(), 1, 2), -12); }));
}

TEST_F(TrueTypeTest, ATextFarLongerThanTheSpoolIsRefusedWhole) {
    OpenSerialLink();
    const std::u16string text(2000000, u'A');
    EXPECT_TRUE(ChangesNothing([&] { EXPECT_EQ(PrintSpoolForTTF(text.c_str(), 1, 2), -12); }));
    SpoolLength = -11;
    EXPECT_TRUE(ChangesNothing([&] { EXPECT_EQ(PrintSpoolForTTF(text.c_str(), 1, 2), -12); }));
}

TEST_F(TrueTypeTest, ARefusalForWantOfRoomLeavesTheSpoolLengthAlone) {
    OpenSerialLink();
    SpoolLength = kFull - 3;
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(SelectForTTF(u""), -12); }));
    EXPECT_TRUE(ChangesNothing([] { EXPECT_EQ(PrintSpoolForTTF(u"", 0, 0), -12); }));
}

TEST_F(TrueTypeTest, WithoutALinkMinusElevenStandsUntilClearSpool) {
    EXPECT_EQ(PrintSpoolForTTF(u"A", 1, 2), -11);
    EXPECT_EQ(SelectForTTF(u"a"), -11);
    EXPECT_EQ(SpoolLength, -11);
    SetFontForTTF(u"a");
    EXPECT_EQ(HexAt(-11, 5), "1B 67 46 00 00");
    EXPECT_EQ(SpoolLength, -7);
    ClearSpool();
    EXPECT_EQ(SpoolLength, 0);
}

// The length that a text leaves behind may be any number, also one that stands for a refusal elsewhere.
TEST_F(TrueTypeTest, ANewLengthOfMinusTwelveIsStoredLikeAnyOther) {
    OpenSerialLink();
    SpoolLength = -16;
    EXPECT_EQ(SelectForTTF(u""), -12);
    EXPECT_EQ(SpoolLength, -12);
    EXPECT_EQ(HexAt(-16, 4), "1B 67 46 00");
}

} // namespace nadrel

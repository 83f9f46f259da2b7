#include "tests/SpoolFixture.h"

#include "platform/linux/AnsiCodePage.h"

#include <string>

namespace nadrel {

namespace {

std::u16string Letters(size_t count) {
    return std::u16string(count, u'A');
}

class U2ATest : public SpoolFixture {
  protected:
    void TearDown() override { platform::SetAnsiCodePage(1252); }

    // What U2A gives for text, up to the terminating zero.
    static std::string Converted(const std::u16string &text) {
        const std::string bytes = U2A(text.c_str());
        return scripted::ToHex(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
    }
};

} // namespace

TEST_F(U2ATest, ConvertsToTheAnsiCodePage) {
    OpenSerialLink();
    EXPECT_STREQ(U2A(u"Caf\u00E9 3,20 \u20AC"), "Caf\xE9 3,20 \x80");
}

TEST_F(U2ATest, GivesANearCharacterOrAQuestionMarkForWhatThePageLacks) {
    OpenSerialLink();
    EXPECT_STREQ(U2A(u"a\u4E2Db\U0001F600c\xD83D"), "a?b?c?");
    EXPECT_STREQ(U2A(u"\u0158\u2192\uFF21"), "R?A");
}

TEST_F(U2ATest, GivesTheSameBufferEveryTimeAndZeroesItFirst) {
    OpenSerialLink();
    const char *first = U2A(Letters(500).c_str());
    const char *second = U2A(u"xy");
    EXPECT_EQ(first, second);
    EXPECT_STREQ(second, "xy");
    EXPECT_EQ(std::string(second + 2, 409598), std::string(409598, '\0'));
}

TEST_F(U2ATest, OfAnEmptyOrNullTextIsEmpty) {
    OpenSerialLink();
    U2A(u"before");
    EXPECT_STREQ(U2A(u""), "");
    U2A(u"before");
    const char *empty = U2A(nullptr);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(std::string(empty, 409600), std::string(409600, '\0'));
}

TEST_F(U2ATest, IsNullWithoutALink) {
    EXPECT_EQ(U2A(u"A"), nullptr);
    EXPECT_EQ(U2A(nullptr), nullptr);
}

TEST_F(U2ATest, LeavesTheSpoolAlone) {
    OpenSerialLink();
    PrintData();
    EXPECT_TRUE(ChangesNothing([] { U2A(u"A"); }));
}

TEST_F(U2ATest, HoldsTwoBytesForEachUnitOfADoubleBytePage) {
    OpenSerialLink();
    platform::SetAnsiCodePage(932);
    EXPECT_EQ(Converted(u"\u3042"), "82 A0");
    EXPECT_EQ(Converted(u"\u3042\u3044\u3046"), "82 A0 82 A2 82 A4");
}

TEST_F(U2ATest, CutsThreeByteCharactersAtTwoBytesAUnitAndNeverWithinOne) {
    OpenSerialLink();
    platform::SetAnsiCodePage(65001);
    EXPECT_EQ(Converted(u"\u20AC"), "");
    EXPECT_EQ(Converted(u"\u20AC\u20AC"), "E2 82 AC");
    EXPECT_EQ(Converted(u"\u20AC\u20AC\u20AC"), "E2 82 AC E2 82 AC");
    EXPECT_EQ(Converted(u"A\u20AC"), "41 E2 82 AC");
    EXPECT_EQ(Converted(u"A\u20AC\u20AC"), "41 E2 82 AC");
    EXPECT_EQ(Converted(u"AB\u20AC\u20AC"), "41 42 E2 82 AC E2 82 AC");
    EXPECT_EQ(Converted(u"\U0001F600"), "F0 9F 98 80");
    EXPECT_EQ(Converted(u"\u20AC\U0001F600"), "E2 82 AC");
}

TEST_F(U2ATest, EndsAtTheFirstCharacterThatDoesNotFitAlsoWhereALaterOneWould) {
    OpenSerialLink();
    platform::SetAnsiCodePage(65001);
    EXPECT_EQ(Converted(u"\u20AC\u20AC\u20AC\u20ACA"), "E2 82 AC E2 82 AC E2 82 AC");
}

TEST_F(U2ATest, FillsItsWholeBufferAndATerminatingZeroStandsBehind) {
    OpenSerialLink();
    EXPECT_EQ(std::string(U2A(Letters(409600).c_str())), std::string(409600, 'A'));
    EXPECT_EQ(std::string(U2A(Letters(409700).c_str())), std::string(409600, 'A'));
    platform::SetAnsiCodePage(932);
    EXPECT_EQ(std::string(U2A(std::u16string(204801, u'\u3042').c_str())).size(), 409600U);
    platform::SetAnsiCodePage(65001);
    EXPECT_EQ(std::string(U2A(std::u16string(300000, u'\u20AC').c_str())).size(), 409599U);
}

} // namespace nadrel

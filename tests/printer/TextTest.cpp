#include "printer/Text.h"

#include "tests/printer/Decoding.h"

#include <gtest/gtest.h>

using namespace printer;
using namespace printer::testing;

namespace {

std::string InTable(uint8_t table, const std::string &bytes) {
    TextDecoder decoder;
    return decoder.ToUtf8(BytesOf(bytes), FindCodeTable(table));
}

} // namespace

TEST(PrinterText, ReadsTheDefaultTableAsWindows1252) {
    EXPECT_EQ(InTable(DefaultCodeTable, "Caf\xE9 \x80"), "Café €");
    EXPECT_EQ(InTable(16, "Caf\xE9 \x80"), "Café €");
    EXPECT_EQ(InTable(99, "\x80"), "€");
}

TEST(PrinterText, ReadsTheCodeTablesByTheirNumbers) {
    EXPECT_EQ(InTable(0, "\x82\xC4\xDB"), "é─█");
    EXPECT_EQ(InTable(1, "\xB1\xB2\xB3"), "ｱｲｳ");
    EXPECT_EQ(InTable(2, "\x82\xB5"), "éÁ");
    EXPECT_EQ(InTable(3, "\x84"), "ã");
    EXPECT_EQ(InTable(4, "\x84"), "Â");
    EXPECT_EQ(InTable(5, "\x9B"), "ø");
    EXPECT_EQ(InTable(14, "\x98"), "α");
    EXPECT_EQ(InTable(15, "\xE1"), "α");
    EXPECT_EQ(InTable(17, "\x8F\xE0\xA8\xA2\xA5\xE2"), "Привет");
    EXPECT_EQ(InTable(18, "\x9F"), "č");
    EXPECT_EQ(InTable(19, "\xD5"), "€");
    EXPECT_EQ(InTable(20, "\xA1"), "ก");
    EXPECT_EQ(InTable(39, "\xB1"), "ą");
    EXPECT_EQ(InTable(40, "\xA4"), "€");
    EXPECT_EQ(InTable(45, "\x8A"), "Š");
    EXPECT_EQ(InTable(46, "\xCF\xF0\xE8"), "При");
    EXPECT_EQ(InTable(47, "\xE1"), "α");
    EXPECT_EQ(InTable(48, "\xFE"), "ş");
    EXPECT_EQ(InTable(49, "\xE0"), "א");
    EXPECT_EQ(InTable(50, "\xC8"), "ب");
    EXPECT_EQ(InTable(51, "\xE0"), "ą");
    EXPECT_EQ(InTable(52, "\xFE"), "₫");
}

TEST(PrinterText, ReadsCharactersOfMoreThanOneByte) {
    EXPECT_EQ(InTable(21, "\x93\xFA\x96\x7B"), "日本");
    EXPECT_EQ(InTable(22, "\xC4\xE3\xBA\xC3"), "你好");
    EXPECT_EQ(InTable(23, "\xC7\xD1"), "한");
    EXPECT_EQ(InTable(24, "\xA7\x41"), "你");
    EXPECT_EQ(InTable(25, "\xE2\x82\xAC\xF0\x9F\x98\x80"), "€😀");
}

TEST(PrinterText, KnowsWhichCharactersTakeTwoCells) {
    TextDecoder decoder;
    const auto japanese = decoder.Decode(BytesOf("a\x93\xFA\xB1"), FindCodeTable(21));
    ASSERT_EQ(japanese.size(), 3U);
    EXPECT_FALSE(japanese[0].wide);
    EXPECT_TRUE(japanese[1].wide);
    EXPECT_FALSE(japanese[2].wide);
    EXPECT_FALSE(decoder.Decode(BytesOf("\xC3\xA9"), FindCodeTable(25)).at(0).wide);
}

TEST(PrinterText, PutsAReplacementForBytesThatMeanNothing) {
    EXPECT_EQ(InTable(DefaultCodeTable, "a\x81z"), "a\uFFFDz");
    EXPECT_EQ(InTable(25, "a\xFFz"), "a\uFFFDz");
    EXPECT_EQ(InTable(21, "\x93"), "\uFFFD");
}

TEST(PrinterText, FindsAConverterForEveryTable) {
    for (int number = 0; number < 256; ++number)
        EXPECT_EQ(InTable(static_cast<uint8_t>(number), "A1 z"), "A1 z") << number;
}

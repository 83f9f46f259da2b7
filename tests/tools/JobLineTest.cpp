#include "tools/JobLine.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace std::string_literals;
using tool::JobLine;
using tool::LineFault;
using tool::Literal;
using tool::ReadJobLine;

namespace {

std::string FaultOf(std::string_view line) {
    try {
        ReadJobLine(line);
        return "no fault";
    } catch (const LineFault &fault) {
        return fault.what();
    }
}

// The one argument of a call of F.
Literal Argument(const std::string &source) {
    const auto line = ReadJobLine("F(" + source + ")");
    EXPECT_TRUE(line && line->arguments.size() == 1) << source;
    return line->arguments.at(0);
}

int64_t Number(const std::string &source) {
    return Argument(source).number;
}

std::u16string Wide(const std::string &source) {
    return Argument(source).text;
}

std::string Bytes(const std::string &source) {
    return Argument(source).bytes;
}

constexpr char kArgumentExpected[] =
    "expected a number, a character such as 'M' or a string in double quotes";
constexpr char kCharacterFault[] =
    "a character is not as it must be, expected one ASCII character or one escape between single quotes";
constexpr char kEscapesExpected[] = R"(expected \n, \r, \t, \", \', \\, \0, \xHH or \uXXXX)";

} // namespace

TEST(JobLine, IsNothingWhenBlankOrAComment) {
    EXPECT_FALSE(ReadJobLine(""));
    EXPECT_FALSE(ReadJobLine(" \t \r"));
    EXPECT_FALSE(ReadJobLine("# SetTextAlignment(1)"));
    EXPECT_FALSE(ReadJobLine("  #"));
}

TEST(JobLine, HasANameAndArgumentsInTheirOrder) {
    const auto line = ReadJobLine("SetTextStyle(0, 1, -2)");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->name, "SetTextStyle");
    ASSERT_EQ(line->arguments.size(), 3u);
    EXPECT_EQ(line->arguments[0].number, 0);
    EXPECT_EQ(line->arguments[1].number, 1);
    EXPECT_EQ(line->arguments[2].number, -2);
}

TEST(JobLine, MayHaveNoArguments) {
    const auto line = ReadJobLine("PrintData()");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->name, "PrintData");
    EXPECT_TRUE(line->arguments.empty());
}

TEST(JobLine, MayHaveBlanksEverywhereASemicolonAndAComment) {
    const auto line = ReadJobLine(" \tF ( 1 ,\t\"a\" ) ; # and so on\r");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->name, "F");
    ASSERT_EQ(line->arguments.size(), 2u);
    EXPECT_EQ(line->arguments[1].bytes, "a");
    EXPECT_TRUE(ReadJobLine("F(  );"));
    EXPECT_TRUE(ReadJobLine("F()# at once"));
}

TEST(JobLine, TakesNumbersDecimalHexadecimalAndNegative) {
    EXPECT_EQ(Number("0"), 0);
    EXPECT_EQ(Number("-0"), 0);
    EXPECT_EQ(Number("4294967295"), 4294967295);
    EXPECT_EQ(Number("-2147483648"), -2147483648LL);
    EXPECT_EQ(Number("0x1B"), 0x1B);
    EXPECT_EQ(Number("0Xffffffff"), 0xFFFFFFFF);
    EXPECT_EQ(Number("-0x10"), -16);
    EXPECT_EQ(Argument("-0x10").type, Literal::Type::number);
    EXPECT_EQ(Argument("-0x10").source, "-0x10");
}

TEST(JobLine, KeepsNumbersBeyondSixtyFourBitsOutOfEveryRange) {
    EXPECT_EQ(Number("9223372036854775807"), std::numeric_limits<int64_t>::max());
    EXPECT_EQ(Number("9223372036854775808"), std::numeric_limits<int64_t>::max());
    EXPECT_EQ(Number("-99999999999999999999"), -std::numeric_limits<int64_t>::max());
    EXPECT_EQ(Number("0x10000000000000000"), std::numeric_limits<int64_t>::max());
}

TEST(JobLine, ShortensTheSourceOfALongNumber) {
    EXPECT_EQ(Argument(std::string(41, '1')).source, std::string(40, '1') + "...");
    EXPECT_EQ(Argument(std::string(40, '1')).source, std::string(40, '1'));
}

TEST(JobLine, RefusesWhatIsNoNumber) {
    EXPECT_EQ(FaultOf("F(12a)"), "\"12a\" is not a number, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(1.5)"), "\"1.5\" is not a number, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(-)"), "\"-\" is not a number, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(--1)"), "\"-\" is not a number, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(0x)"), "\"0x\" is not a number, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(0xG)"), "\"0xG\" is not a number, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(centre)"), "\"centre\" is not a number, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(u\"a\")"), "\"u\" is not a number, "s + kArgumentExpected);
}

TEST(JobLine, RefusesAnOctalNumberRatherThanGuess) {
    EXPECT_EQ(FaultOf("F(010)"),
              "the number 010 begins with 0, expected a decimal number without leading zeros, "
              "or 0x and hexadecimal digits");
    EXPECT_EQ(FaultOf("F(-00)"),
              "the number -00 begins with 0, expected a decimal number without leading zeros, "
              "or 0x and hexadecimal digits");
}

TEST(JobLine, TakesCharactersAsNumbers) {
    EXPECT_EQ(Number("'M'"), 'M');
    EXPECT_EQ(Number("'\"'"), '"');
    EXPECT_EQ(Number("'#'"), '#');
    EXPECT_EQ(Number(R"('\'')"), '\'');
    EXPECT_EQ(Number(R"('\\')"), '\\');
    EXPECT_EQ(Number(R"('\n')"), 10);
    EXPECT_EQ(Number(R"('\0')"), 0);
    EXPECT_EQ(Number(R"('\xFF')"), 255);
    EXPECT_EQ(Argument("'M'").type, Literal::Type::character);
    EXPECT_EQ(Argument(R"('\xFF')").source, R"('\xFF')");
}

TEST(JobLine, RefusesWhatIsNotOneAsciiCharacter) {
    EXPECT_EQ(FaultOf("F('')"), kCharacterFault);
    EXPECT_EQ(FaultOf("F('ab')"), kCharacterFault);
    EXPECT_EQ(FaultOf("F('a"), kCharacterFault);
    EXPECT_EQ(FaultOf("F('"), kCharacterFault);
    EXPECT_EQ(FaultOf("F('é')"), kCharacterFault);
    EXPECT_EQ(FaultOf(R"(F('\u0041'))"), kCharacterFault);
}

TEST(JobLine, TakesTextAsUtf16) {
    EXPECT_EQ(Wide("\"\""), u"");
    EXPECT_EQ(Wide("\"Café  2 × 3,20 €\""), u"Caf\u00E9  2 \u00D7 3,20 \u20AC");
    EXPECT_EQ(Wide("\"\U0001F600\""), u"\U0001F600");
    EXPECT_EQ(Wide("\"\U0010FFFF\""), u"\U0010FFFF");
    EXPECT_EQ(Argument("\"a\"").type, Literal::Type::string);
}

TEST(JobLine, TakesTheEscapesOfTextAsCharacters) {
    EXPECT_EQ(Wide(R"("\n\r\t\"\'\\")"), u"\n\r\t\"'\\");
    EXPECT_EQ(Wide(R"("\x41\xe9")"), u"A\u00E9");
    EXPECT_EQ(Wide(R"("\x411")"), u"A1");
    EXPECT_EQ(Wide(R"("\u20AC\u00e9\uFFFF")"), u"\u20AC\u00E9\uFFFF");
    EXPECT_EQ(Wide(R"("a\0b")"), u"a\0b"s);
}

TEST(JobLine, TakesBytesAsTheyStand) {
    EXPECT_EQ(Bytes(R"("\x1B@\0\xFF\n")"), "\x1B@\0\xFF\n"s);
    EXPECT_EQ(Bytes("\"é\""), "\xC3\xA9");
    EXPECT_FALSE(Argument(R"("\xFF")").hasUnicodeEscape);
    EXPECT_TRUE(Argument(R"("\u0041")").hasUnicodeEscape);
}

TEST(JobLine, LetsAStringHoldWhatElsewhereEndsSomething) {
    EXPECT_EQ(Bytes("\"# (), ;'\""), "# (), ;'");
    EXPECT_EQ(Bytes("\"\ttab\""), "\ttab");
}

TEST(JobLine, RefusesAStringThatIsNotClosed) {
    EXPECT_EQ(FaultOf("F(\"abc)"), "a string is not closed, expected \" before the end of the line");
    EXPECT_EQ(FaultOf("F(\""), "a string is not closed, expected \" before the end of the line");
    EXPECT_EQ(FaultOf("F(\"abc\\\")"), "a string is not closed, expected \" before the end of the line");
}

TEST(JobLine, RefusesEscapesThatItDoesNotKnow) {
    EXPECT_EQ(FaultOf(R"(F("\q"))"), "unknown escape \\q, "s + kEscapesExpected);
    EXPECT_EQ(FaultOf(R"(F("\1"))"), "unknown escape \\1, "s + kEscapesExpected);
    EXPECT_EQ(FaultOf("F(\"\\é\")"), "unknown escape \\é, "s + kEscapesExpected);
    EXPECT_EQ(FaultOf("F(\"\\"), "unknown escape \\, "s + kEscapesExpected);
    EXPECT_EQ(FaultOf(R"(F("\012"))"), R"(octal escape \01, expected \0 without a digit behind it, or \xHH)");
}

TEST(JobLine, RefusesIncompleteEscapes) {
    EXPECT_EQ(FaultOf(R"(F("\x"))"), R"(incomplete escape \x, expected 2 hexadecimal digits behind \x)");
    EXPECT_EQ(FaultOf(R"(F("\x4"))"), R"(incomplete escape \x4, expected 2 hexadecimal digits behind \x)");
    EXPECT_EQ(FaultOf(R"(F("\u20A"))"),
              R"(incomplete escape \u20A, expected 4 hexadecimal digits behind \u)");
    EXPECT_EQ(FaultOf(R"(F("\u20A)"), R"(incomplete escape \u20A, expected 4 hexadecimal digits behind \u)");
}

TEST(JobLine, RefusesHalvesOfSurrogatePairs) {
    EXPECT_EQ(FaultOf(R"(F("\uD83D\uDE00"))"),
              "the escape \\uD83D is half a character, expected the character itself in UTF-8");
    EXPECT_EQ(FaultOf(R"(F("\uDFFF"))"),
              "the escape \\uDFFF is half a character, expected the character itself in UTF-8");
    EXPECT_EQ(Wide(R"("\uD7FF\uE000")"), u"\uD7FF\uE000");
}

TEST(JobLine, RefusesWhatIsNotUtf8AndSaysWhere) {
    EXPECT_EQ(FaultOf("F(\"caf\xE9\")"), "byte 7 of the line is not UTF-8, expected a text file in UTF-8");
    EXPECT_EQ(FaultOf("# \xFF"), "byte 3 of the line is not UTF-8, expected a text file in UTF-8");
    EXPECT_EQ(FaultOf("\xC0\x80"), "byte 1 of the line is not UTF-8, expected a text file in UTF-8");
    EXPECT_EQ(FaultOf("\xED\xA0\x80"), "byte 1 of the line is not UTF-8, expected a text file in UTF-8");
    EXPECT_EQ(FaultOf("\xF4\x90\x80\x80"), "byte 1 of the line is not UTF-8, expected a text file in UTF-8");
    EXPECT_EQ(FaultOf("\xE2\x82"), "byte 1 of the line is not UTF-8, expected a text file in UTF-8");
}

TEST(JobLine, SaysWhatItExpectedWhereSomethingElseStands) {
    EXPECT_EQ(FaultOf("1F()"), "unexpected \"1\", expected the name of a function");
    EXPECT_EQ(FaultOf("éclair()"), "unexpected \"é\", expected the name of a function");
    EXPECT_EQ(FaultOf("F"), "unexpected end of the line, expected ( after F");
    EXPECT_EQ(FaultOf("F # ()"), "unexpected end of the line, expected ( after F");
    EXPECT_EQ(FaultOf("F 1"), "unexpected \"1\", expected ( after F");
    EXPECT_EQ(FaultOf("F("), "unexpected end of the line, "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(1"), "unexpected end of the line, expected , or )");
    EXPECT_EQ(FaultOf("F(1 2)"), "unexpected \"2\", expected , or )");
    EXPECT_EQ(FaultOf("F(\"a\" \"b\")"), "unexpected \"\"\", expected , or )");
    EXPECT_EQ(FaultOf("F(1,)"), "unexpected \")\", "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F(,1)"), "unexpected \",\", "s + kArgumentExpected);
    EXPECT_EQ(FaultOf("F() G()"),
              "unexpected \"G\", expected the end of the line or a comment after the call");
    EXPECT_EQ(FaultOf("F();;"), "unexpected \";\", expected the end of the line or a comment after the call");
}

TEST(JobLine, ShowsNoControlCharacterInAMessage) {
    EXPECT_EQ(FaultOf("\x1B[2J"), "unexpected control character, expected the name of a function");
    EXPECT_EQ(FaultOf("F(1\x7F)"), "unexpected control character, expected , or )");
    EXPECT_EQ(FaultOf("\0"s), "unexpected control character, expected the name of a function");
}

TEST(JobLine, RefusesMoreArgumentsThanAnyFunctionTakes) {
    EXPECT_TRUE(ReadJobLine("F(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16)"));
    EXPECT_EQ(FaultOf("F(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17)"),
              "there are too many arguments, expected 16 at most");
}

TEST(JobLine, EitherReadsALineOrSaysWhatItExpected) {
    const std::vector<std::string> pieces{
        "F", "(", ")", ",", "\"", "'",  "\\", "\\x4", "\\u20", "\\0",  "0x",   "-",    "1",
        "9", " ", ";", "#", "\t", "\r", "é",  "n",    "a\"",   "\x7F", "\xE2", "\xFF", "\U0001F600"};
    std::mt19937 random; // always the same lines
    for (int i = 0; i < 20000; ++i) {
        std::string line = "F(";
        for (auto count = random() % 12; count > 0; --count)
            line += pieces[random() % pieces.size()];
        const std::string fault = FaultOf(line);
        ASSERT_TRUE(fault == "no fault" || fault.find(", expected ") != std::string::npos)
            << line << ": " << fault;
    }
}

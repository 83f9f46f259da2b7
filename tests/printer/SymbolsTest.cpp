#include "tests/printer/SymbolPictures.h"

#include <gtest/gtest.h>

#include <random>

using namespace printer;

TEST(Symbols, BarsAreAsWideAndHighAsTheCommandsSay) {
    EXPECT_EQ(Sized(EncodeLinear({67, 1, 50, "400638133393"})), "95 x 50");
    EXPECT_EQ(Sized(EncodeLinear({67, 2, 80, "400638133393"})), "190 x 80");
    EXPECT_EQ(Sized(EncodeLinear({67, 8, 255, "400638133393"})), "760 x 255");
    EXPECT_EQ(Sized(EncodeLinear({73, 3, 80, "{B1"})), "138 x 80"); // start, '1', check, stop: 46 modules
}

TEST(Symbols, SizesOutOfRangeAreThePrintersDefaults) {
    for (const int outOfRange : {0, 9, -1, 100000})
        EXPECT_EQ(Sized(EncodeLinear({67, outOfRange, 80, "400638133393"})), "285 x 80");
    for (const int outOfRange : {0, 256, -1, 100000})
        EXPECT_EQ(Sized(EncodeLinear({67, 1, outOfRange, "400638133393"})), "95 x 162");
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 0, 0, 8, "A"})), "63 x 63");
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 0, 9, 8, "A"})), "63 x 63");
    EXPECT_EQ(Sized(EncodeDatabar({0, 0, 0, 0, "0401234567890"})), "288 x 162");
}

TEST(Symbols, PicturesBeginAndEndWithABarBecauseQuietZonesAreTheCallersMatter) {
    const Symbol symbols[] = {
        EncodeLinear({65, 2, 80, "01234567890"}), EncodeLinear({70, 2, 80, "123456"}),
        EncodeLinear({73, 2, 80, "123456"}),      EncodeLinear({73, 2, 80, "{B123456"}),
        EncodeMatrix({0, 0, 0, 3, 2, "123456"}),  EncodeMatrix({2, 0, 0, 3, 2, "123456"})};
    for (const Symbol &symbol : symbols) {
        ASSERT_EQ(symbol.problem, "");
        EXPECT_EQ(symbol.dots[0], 1);
        EXPECT_EQ(symbol.dots[static_cast<size_t>(symbol.width) - 1], 1);
    }
}

TEST(Symbols, TextUnderTheBarsIsWhatAPersonWouldTypeInstead) {
    EXPECT_EQ(EncodeLinear({65, 2, 80, "01234567890"}).text, "012345678905");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "123456"}).text, "01234565");
    EXPECT_EQ(EncodeLinear({67, 2, 80, "400638133393"}).text, "4006381333931");
    EXPECT_EQ(EncodeLinear({68, 2, 80, "9031101"}).text, "90311017");
    EXPECT_EQ(EncodeLinear({69, 2, 80, "CODE-39"}).text, "*CODE-39*");
    EXPECT_EQ(EncodeLinear({70, 2, 80, "123456"}).text, "123456");
    EXPECT_EQ(EncodeLinear({71, 2, 80, "A123456B"}).text, "A123456B");
    EXPECT_EQ(EncodeLinear({72, 2, 80, "Code 93"}).text, "Code 93");
    EXPECT_EQ(EncodeLinear({73, 2, 80, "caf\xE9"}).text, "caf\xC3\xA9");
    EXPECT_EQ(EncodeLinear({73, 2, 80, "{Ba{{\x7F{C\x05\x63{1{A\x01Z"}).text, "a{ 0599 Z");
    EXPECT_EQ(EncodeDatabar({0, 0, 2, 80, "0401234567890"}).text, "(01)04012345678901");
    EXPECT_EQ(EncodeMatrix({2, 0, 0, 3, 0, "QR"}).text, "");
}

TEST(Symbols, OlderNumbersMeanTheFirstSevenSymbologies) {
    const std::string data[] = {"01234567890", "123456", "400638133393", "9031101",
                                "CODE-39",     "123456", "A123456B"};
    for (uint8_t older = 0; older < 7; ++older) {
        const Symbol symbol = EncodeLinear({older, 2, 80, data[older]});
        EXPECT_EQ(symbol.problem, "");
        EXPECT_EQ(symbol.dots, EncodeLinear({static_cast<uint8_t>(older + 65), 2, 80, data[older]}).dots);
    }
}

TEST(Symbols, NumbersWithoutMeaningAreAProblem) {
    EXPECT_EQ(LinearProblem(7, "123456"), "The barcode was not drawn: GS 'k' has no symbology 7.");
    EXPECT_EQ(LinearProblem(64, "123456"), "The barcode was not drawn: GS 'k' has no symbology 64.");
    EXPECT_EQ(LinearProblem(74, "123456"), "The barcode was not drawn: GS 'k' has no symbology 74.");
    EXPECT_EQ(MatrixProblem(6, 0, 0, "A"), "The barcode was not drawn: GS 'Z' has no symbology 6.");
    EXPECT_EQ(DatabarProblem(7, "0401234567890"), "The barcode was not drawn: GS '1' has no symbology 7.");
}

TEST(Symbols, CheckDigitsAreAddedOrVerified) {
    EXPECT_EQ(EncodeLinear({67, 2, 80, "4006381333931"}).dots,
              EncodeLinear({67, 2, 80, "400638133393"}).dots);
    EXPECT_EQ(EncodeLinear({65, 2, 80, "012345678905"}).dots, EncodeLinear({65, 2, 80, "01234567890"}).dots);
    EXPECT_EQ(EncodeLinear({68, 2, 80, "90311017"}).dots, EncodeLinear({68, 2, 80, "9031101"}).dots);
    EXPECT_EQ(LinearProblem(67, "4006381333932"),
              "EAN-13 was not drawn: invalid check digit '2', expecting '1'.");
    EXPECT_EQ(LinearProblem(65, "012345678904"),
              "UPC-A was not drawn: invalid check digit '4', expecting '5'.");
    EXPECT_EQ(LinearProblem(68, "90311018"), "EAN-8 was not drawn: invalid check digit '8', expecting '7'.");
    EXPECT_EQ(LinearProblem(66, "01234567"), "UPC-E was not drawn: invalid check digit '7', expecting '5'.");
    EXPECT_EQ(LinearProblem(66, "042100005265"),
              "UPC-E was not drawn: invalid check digit '5', expecting '4'.");
    EXPECT_EQ(DatabarProblem(0, "04012345678902"),
              "GS1 DataBar Omnidirectional was not drawn: invalid check digit '2', expecting '1'.");
    EXPECT_EQ(DatabarProblem(5, "(01)98898765432107"),
              "GS1 DataBar Expanded was not drawn: AI (01) position 14: Bad checksum '7', expected '6'.");
}

// The four ways to leave out zeros, each with the short form worked out by hand.
TEST(Symbols, UpcENumbersMayBeGivenInAnyLength) {
    EXPECT_EQ(EncodeLinear({66, 2, 80, "04210000526"}).text, "04252614");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "042100005264"}).text, "04252614");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "01230000045"}).text.substr(0, 7), "0123453");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "01270000045"}).text.substr(0, 7), "0127453");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "01234000005"}).text.substr(0, 7), "0123454");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "01234500005"}).text.substr(0, 7), "0123455");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "11234500009"}).text.substr(0, 7), "1123459");
    EXPECT_EQ(EncodeLinear({66, 2, 80, "123456"}).dots, EncodeLinear({66, 2, 80, "0123456"}).dots);
    EXPECT_EQ(EncodeLinear({66, 2, 80, "123456"}).dots, EncodeLinear({66, 2, 80, "01234565"}).dots);
    EXPECT_EQ(LinearProblem(66, "01234567890"), "UPC-E was not drawn: this UPC-A number has no short form.");
    EXPECT_EQ(LinearProblem(66, "2123456"), "UPC-E was not drawn: its number system is 0 or 1.");
}

TEST(Symbols, DataThatASymbologyCannotHoldIsAProblem) {
    EXPECT_EQ(LinearProblem(65, "0123456789"), "UPC-A was not drawn: it takes 11 or 12 digits, not 10.");
    EXPECT_EQ(LinearProblem(66, "12345"), "UPC-E was not drawn: it takes 6, 7, 8, 11 or 12 digits, not 5.");
    EXPECT_EQ(LinearProblem(67, "40063813339X"),
              "EAN-13 was not drawn: it takes 12 or 13 digits and nothing else.");
    EXPECT_EQ(LinearProblem(67, "40063"), "EAN-13 was not drawn: it takes 12 or 13 digits, not 5.");
    EXPECT_EQ(LinearProblem(68, "123456789"), "EAN-8 was not drawn: it takes 7 or 8 digits, not 9.");
    EXPECT_EQ(LinearProblem(69, "abc"), "Code 39 was not drawn: it takes 0-9, A-Z, space and -.$/+% only.");
    EXPECT_EQ(LinearProblem(70, "12A4"), "ITF was not drawn: it takes digits and nothing else.");
    EXPECT_EQ(LinearProblem(70, "123"), "ITF was not drawn: it takes an even number of digits, not 3.");
    EXPECT_NE(LinearProblem(71, "123456").find("Codabar was not drawn: does not begin with"),
              std::string::npos);
    EXPECT_EQ(LinearProblem(72, "\x80"),
              "Code 93 was not drawn: invalid character in data, extended ASCII not allowed.");
    EXPECT_EQ(DatabarProblem(0, "123"),
              "GS1 DataBar Omnidirectional was not drawn: it takes the 13 or 14 digits of an item number.");
    EXPECT_EQ(DatabarProblem(4, "2401234567890"),
              "GS1 DataBar Limited was not drawn: input out of range (0 to 1999999999999).");
    EXPECT_EQ(DatabarProblem(5, "Hello"),
              "GS1 DataBar Expanded was not drawn: the data is not made of GS1 element strings.");
}

TEST(Symbols, TooMuchDataIsAProblem) {
    EXPECT_EQ(LinearProblem(69, std::string(86, 'A')),
              "Code 39 was not drawn: input too long (85 character maximum).");
    EXPECT_EQ(LinearProblem(73, std::string(256, 'A')),
              "Code 128 was not drawn: the data is longer than 255 bytes.");
    EXPECT_EQ(MatrixProblem(2, 0, 'H', std::string(3000, 'x')),
              "QR Code was not drawn: input too long for selected error correction level.");
    EXPECT_EQ(MatrixProblem(5, 4, 0, std::string(200, 'x')), "MaxiCode was not drawn: input data too long.");
    EXPECT_EQ(MatrixProblem(0, 0, 0, std::string(900, 'x')), "");
    EXPECT_EQ(MatrixProblem(0, 0, 0, std::string(901, 'x')),
              "PDF417 was not drawn: the data is longer than 900 bytes.");
    for (uint8_t selector = 0; selector < 6; ++selector)
        EXPECT_NE(MatrixProblem(selector, 0, 0, std::string(65536, 'x')), "");
    for (uint8_t type = 0; type < 7; ++type)
        EXPECT_NE(DatabarProblem(type, "10" + std::string(65536, 'x')), "");
}

TEST(Symbols, EmptyDataIsAProblem) {
    for (uint8_t symbology = 65; symbology <= 73; ++symbology)
        EXPECT_NE(LinearProblem(symbology, "").find(" was not drawn: there is no data."), std::string::npos);
    EXPECT_EQ(LinearProblem(69, "**"), "Code 39 was not drawn: there is no data.");
    EXPECT_EQ(LinearProblem(73, "{B"), "Code 128 was not drawn: there is no data.");
    for (uint8_t selector = 0; selector < 5; ++selector)
        EXPECT_NE(MatrixProblem(selector, 0, 0, "").find(" was not drawn: there is no data."),
                  std::string::npos);
    for (uint8_t type = 0; type < 7; ++type)
        EXPECT_NE(DatabarProblem(type, "").find(" was not drawn: "), std::string::npos);
}

TEST(Symbols, AProblemHasNoPictureAndAPictureNoProblem) {
    const Symbol refused = EncodeLinear({67, 2, 80, "12"});
    EXPECT_EQ(refused.width, 0);
    EXPECT_EQ(refused.height, 0);
    EXPECT_TRUE(refused.dots.empty());
    EXPECT_EQ(EncodeLinear({67, 2, 80, "400638133393"}).problem, "");
}

TEST(Symbols, DatabarLimitedIsLibzintsOwnPicture) {
    EXPECT_EQ(EncodeDatabar({4, 0, 2, 80, "0401234567890"}).dots,
              ZintBars(BARCODE_DBAR_LTD, "0401234567890", 2, 80));
    EXPECT_EQ(EncodeDatabar({4, 0, 3, 90, "(01)15012345678907"}).dots,
              ZintBars(BARCODE_DBAR_LTD, "15012345678907", 3, 90));
}

// The stacked forms: 5 + 1 + 7 modules; 33 + 3 + 33; rows of 34 with 3 between them, here 4 rows.
TEST(Symbols, DatabarHeightIsFreeWhereTheSymbologyLeavesItFree) {
    EXPECT_EQ(Sized(EncodeDatabar({0, 0, 2, 80, "0401234567890"})), "192 x 80");
    EXPECT_EQ(Sized(EncodeDatabar({1, 0, 2, 80, "0401234567890"})), "192 x 26");
    EXPECT_EQ(Sized(EncodeDatabar({2, 0, 2, 80, "0401234567890"})), "100 x 26");
    EXPECT_EQ(Sized(EncodeDatabar({3, 0, 2, 80, "0401234567890"})), "100 x 138");
    EXPECT_EQ(Sized(EncodeDatabar({4, 0, 2, 80, "0401234567890"})), "158 x 80");
    EXPECT_EQ(Sized(EncodeDatabar({5, 0, 2, 80, "(01)98898765432106(3202)012345"})), "400 x 80");
    EXPECT_EQ(Sized(EncodeDatabar({6, 2, 2, 80, "(01)98898765432106(3202)012345"})), "106 x 290");
}

TEST(Symbols, ExpandedStackedTakesTheSegmentsOfARow) {
    const std::string data = "(01)98898765432106(3202)012345(15)991231";
    EXPECT_EQ(Sized(EncodeDatabar({6, 2, 1, 80, data})), "53 x 145");
    EXPECT_EQ(Sized(EncodeDatabar({6, 4, 1, 80, data})), "102 x 71");
    EXPECT_EQ(Sized(EncodeDatabar({6, 20, 1, 80, data})), "200 x 34");
    for (const int outOfRange : {0, 1, 3, 22, 255})
        EXPECT_EQ(Sized(EncodeDatabar({6, static_cast<uint8_t>(outOfRange), 1, 80, data})), "102 x 71");
}

TEST(Symbols, ElementStringsNeedNoParentheses) {
    const auto dots = [](const std::string &data) { return EncodeDatabar({5, 0, 1, 20, data}).dots; };
    EXPECT_EQ(dots("01988987654321063202012345"), dots("(01)98898765432106(3202)012345"));
    EXPECT_EQ(dots("10AB-12\x1D"
                   "21XYZ{1"
                   "15991231"),
              dots("(10)AB-12(21)XYZ(15)991231"));
    EXPECT_EQ(dots("2012"
                   "3202012345"
                   "15991231"),
              dots("(20)12(3202)012345(15)991231"));
    EXPECT_FALSE(dots("(20)12(3202)012345(15)991231").empty());
    EXPECT_EQ(dots("4104012345678901"
                   "8020REF7"),
              dots("(410)4012345678901(8020)REF7"));
    EXPECT_FALSE(dots("(10)AB-12(21)XYZ(15)991231").empty());
    EXPECT_FALSE(dots("(410)4012345678901(8020)REF7").empty());
    EXPECT_NE(DatabarProblem(5, "10AB[01]12"), "");
    EXPECT_NE(DatabarProblem(5, "05123"), "");
    EXPECT_NE(DatabarProblem(5, "10"), "");
}

TEST(Symbols, AnyBytesGiveAPictureOrAProblem) {
    std::mt19937 random(20240229);
    const auto byte = [&random] { return static_cast<uint8_t>(random()); };
    const auto check = [](const Symbol &symbol) {
        EXPECT_EQ(symbol.dots.size(), static_cast<size_t>(symbol.width) * static_cast<size_t>(symbol.height));
        EXPECT_EQ(symbol.problem.empty(), symbol.width > 0 && symbol.height > 0);
    };
    const std::string alphabets[] = {"0123456789", "{}ABCS1234\x05*()", "ABCD0123456789-$:/.+ []\x1D\x1E\\",
                                     ""};
    for (int round = 0; round < 3000; ++round) {
        const std::string &alphabet = alphabets[random() % 4];
        std::string data(random() % (round % 50 == 0 ? 3000 : 40), '\0');
        for (char &character : data)
            character = static_cast<char>(alphabet.empty() ? byte() : alphabet[random() % alphabet.size()]);
        SCOPED_TRACE(::testing::PrintToString(data));
        check(EncodeLinear({static_cast<uint8_t>(65 + random() % 9), byte(), byte(), data}));
        check(EncodeMatrix({static_cast<uint8_t>(random() % 6), byte(), byte(), byte(), 1, data}));
        check(EncodeMatrix(
            {static_cast<uint8_t>(random() % 6), static_cast<uint8_t>(random() % 5), 0, 1, 1, data}));
        check(EncodeDatabar({static_cast<uint8_t>(random() % 7), byte(), byte(), byte(), data}));
    }
}

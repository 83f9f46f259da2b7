#include "tests/printer/SymbolPictures.h"

#include <gtest/gtest.h>

using namespace printer;

TEST(SymbolCode128, FunctionsThatACodeSetLacksAreAProblem) {
    EXPECT_EQ(LinearProblem(73, "{Ab"), "Code 128 was not drawn: code set A has no character 98.");
    EXPECT_EQ(LinearProblem(73, "{A`"), "Code 128 was not drawn: code set A has no character 96.");
    EXPECT_EQ(LinearProblem(73, "{B\x80"), "Code 128 was not drawn: code set B has no character 128.");
    EXPECT_EQ(LinearProblem(73, "{B\x1F"), "Code 128 was not drawn: code set B has no character 31.");
    EXPECT_EQ(LinearProblem(73, "{A{{"), "Code 128 was not drawn: code set A has no character 123.");
    EXPECT_EQ(LinearProblem(73, "{C\x64"), "Code 128 was not drawn: code set C has no value 100.");
    EXPECT_EQ(LinearProblem(73, "{C12{2"),
              "Code 128 was not drawn: code set C has no such function after '{'.");
    EXPECT_EQ(LinearProblem(73, "{B12{x"),
              "Code 128 was not drawn: code set B has no such function after '{'.");
    EXPECT_EQ(LinearProblem(73, "{B12{"),
              "Code 128 was not drawn: code set B has no such function after '{'.");
    EXPECT_EQ(LinearProblem(73, "{B{S"), "Code 128 was not drawn: the shift has no character after it.");
    EXPECT_EQ(LinearProblem(73, "{B{S{1A"), "Code 128 was not drawn: the shift has no character after it.");
}

TEST(SymbolCode128, EveryCharacterLooksAsLibzintDrawsIt) {
    for (char character = ' '; character < 127; ++character) {
        const std::string escaped = character == '{' ? "{{" : std::string(1, character);
        EXPECT_EQ(EncodeLinear({73, 2, 10, "{B" + escaped}).dots,
                  ZintBars(BARCODE_CODE128B, std::string(1, character), 2, 10))
            << character;
    }
    for (char character = 0; character < ' '; ++character)
        EXPECT_EQ(EncodeLinear({73, 2, 10, std::string("{A") + character}).dots,
                  ZintBars(BARCODE_CODE128, std::string(1, character), 2, 10))
            << int{character};
    for (int value = 0; value < 100; ++value) {
        const char pair[] = {static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10)};
        const std::string digits = "00" + std::string(pair, 2);
        EXPECT_EQ(EncodeLinear({73, 2, 10, "{C" + digits}).dots, ZintBars(BARCODE_CODE128, digits, 2, 10));
    }
}

TEST(SymbolCode128, Fnc2AndFnc3AreTheValues97And96) {
    const auto secondCharacter = [](const std::string &data) {
        const Symbol symbol = EncodeLinear({73, 1, 1, data});
        return std::vector<uint8_t>(symbol.dots.begin() + 11, symbol.dots.begin() + 22);
    };
    EXPECT_EQ(secondCharacter("{B{2x"), secondCharacter("{C97"));
    EXPECT_EQ(secondCharacter("{A{2X"), secondCharacter("{C97"));
    EXPECT_EQ(secondCharacter("{B{3x"), secondCharacter("{C96"));
    EXPECT_EQ(secondCharacter("{A{3X"), secondCharacter("{C96"));
}

TEST(SymbolCode128, CodeSetCTakesDigitsOrValues) {
    EXPECT_EQ(EncodeLinear({73, 2, 80, "{C\x0C\x22"}).dots, EncodeLinear({73, 2, 80, "{C1234"}).dots);
    EXPECT_EQ(EncodeLinear({73, 2, 80, "{C123"}).text, "495051"); // no pairs: the values '1', '2', '3'
    EXPECT_EQ(EncodeLinear({73, 2, 80, "{C12\x05"}).text, "495005");
}

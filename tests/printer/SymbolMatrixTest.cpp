#include "tests/printer/SymbolPictures.h"

#include <gtest/gtest.h>

using namespace printer;

TEST(SymbolMatrix, Pdf417TakesColumnsLevelAndRowHeight) {
    const std::string data(100, 'x');
    // 69 modules of start, stop and indicators and 17 for each column.
    EXPECT_EQ(EncodeMatrix({0, 1, 0, 3, 2, "Hello"}).width, (69 + 17) * 2);
    EXPECT_EQ(EncodeMatrix({0, 30, 0, 3, 2, "Hello"}).width, (69 + 30 * 17) * 2);
    // 3 codewords for "Hello", the length, and 2 << level for the correction, in one column.
    EXPECT_EQ(EncodeMatrix({0, 1, 1, 3, 2, "Hello"}).height, 8 * 3 * 2);
    EXPECT_EQ(EncodeMatrix({0, 1, 3, 3, 2, "Hello"}).height, 20 * 3 * 2);
    EXPECT_EQ(EncodeMatrix({0, 1, 3, 2, 2, "Hello"}).height, 20 * 2 * 2);
    EXPECT_EQ(EncodeMatrix({0, 1, 3, 5, 2, "Hello"}).height, 20 * 5 * 2);
    for (const int outOfRange : {0, 1, 6, 255})
        EXPECT_EQ(EncodeMatrix({0, 1, 3, static_cast<uint8_t>(outOfRange), 2, "Hello"}).height, 20 * 3 * 2);
    // The least that the standard advises for so little data is level 2.
    EXPECT_EQ(EncodeMatrix({0, 0, 0, 3, 2, "Hello"}).dots, EncodeMatrix({0, 0, 2, 3, 2, "Hello"}).dots);
    EXPECT_EQ(MatrixProblem(0, 1, 8, data),
              "PDF417 was not drawn: the data does not fit the size asked for.");
}

TEST(SymbolMatrix, TruncatedPdf417TakesColumnsAndRows) {
    // 35 modules of start, row indicator and the one bar that is left of the stop, and 17 for each column.
    EXPECT_EQ(Sized(EncodeMatrix({3, 2, 10, 3, 2, "Hello"})), "138 x 60");
    EXPECT_EQ(Sized(EncodeMatrix({3, 4, 44, 2, 1, "Hello"})), "103 x 88");
    EXPECT_EQ(EncodeMatrix({3, 4, 0, 2, 1, "Hello"}).width, 103);
    EXPECT_EQ(MatrixProblem(3, 1, 4, "Hello Hello"),
              "Truncated PDF417 was not drawn: the data does not fit the size asked for.");
}

TEST(SymbolMatrix, MicroPdf417TakesColumnsOnly) {
    const int widths[] = {38, 55, 82, 99};
    for (uint8_t columns = 1; columns <= 4; ++columns)
        EXPECT_EQ(EncodeMatrix({4, columns, 0, 2, 1, "Micro"}).width, widths[columns - 1]);
    EXPECT_EQ(EncodeMatrix({4, 2, 8, 2, 1, "Micro"}).dots, EncodeMatrix({4, 2, 0, 2, 1, "Micro"}).dots);
    EXPECT_EQ(MatrixProblem(4, 1, 0, std::string(100, 'x')),
              "MicroPDF417 was not drawn: the data does not fit the size asked for.");
}

TEST(SymbolMatrix, MicroPdf417IsLibzintsOwnPicture) {
    for (uint8_t columns = 1; columns <= 4; ++columns)
        EXPECT_EQ(EncodeMatrix({4, columns, 0, 3, 2, "Micro PDF417 \xE9"}).dots,
                  ZintPicture("Micro PDF417 \xE9", 2, [columns](zint_symbol &symbol) {
                      symbol.symbology = BARCODE_MICROPDF417;
                      symbol.option_2 = columns;
                      symbol.input_mode |= HEIGHTPERROW_MODE;
                      symbol.height = 3;
                  }));
}

TEST(SymbolMatrix, DataMatrixTakesRowsAndColumns) {
    const int squares[] = {10, 12, 14, 16, 18, 20, 22, 24, 26,  32,  36,  40,
                           44, 48, 52, 64, 72, 80, 88, 96, 104, 120, 132, 144};
    for (const int size : squares) {
        const auto byte = static_cast<uint8_t>(size);
        const std::string expected = std::to_string(size * 2) + " x " + std::to_string(size * 2);
        EXPECT_EQ(Sized(EncodeMatrix({1, byte, byte, 2, 0, "DM"})), expected);
    }
    EXPECT_EQ(Sized(EncodeMatrix({1, 8, 18, 2, 0, "DM"})), "36 x 16");
    EXPECT_EQ(Sized(EncodeMatrix({1, 8, 32, 2, 0, "DM"})), "64 x 16");
    EXPECT_EQ(Sized(EncodeMatrix({1, 12, 26, 2, 0, "DM"})), "52 x 24");
    EXPECT_EQ(Sized(EncodeMatrix({1, 12, 36, 2, 0, "DM"})), "72 x 24");
    EXPECT_EQ(Sized(EncodeMatrix({1, 16, 36, 2, 0, "DM"})), "72 x 32");
    EXPECT_EQ(Sized(EncodeMatrix({1, 16, 48, 2, 0, "DM"})), "96 x 32");
    EXPECT_EQ(Sized(EncodeMatrix({1, 0, 0, 2, 0, "DM"})), "20 x 20");
    EXPECT_EQ(Sized(EncodeMatrix({1, 11, 17, 2, 0, "DM"})), "20 x 20");
    EXPECT_EQ(Sized(EncodeMatrix({1, 0, 0, 2, 0, std::string(14, '\x81')})), "36 x 36"); // not 12 rows of 26
    EXPECT_EQ(MatrixProblem(1, 10, 10, "too long for it"),
              "DataMatrix was not drawn: input too long for selected symbol size.");
}

// 100 bytes need version 5, 6, 8 and 10 at the levels L, M, Q and H; version v has 17 + 4 v modules.
TEST(SymbolMatrix, QrCodesTakeVersionLevelAndModuleSize) {
    const std::string data(100, 'x');
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 'L', 1, 0, data})), "37 x 37");
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 'M', 1, 0, data})), "41 x 41");
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 'Q', 1, 0, data})), "49 x 49");
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 'H', 1, 0, data})), "57 x 57");
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 0, 1, 0, data})), "41 x 41");
    EXPECT_EQ(Sized(EncodeMatrix({2, 0, 'X', 1, 0, data})), "41 x 41");
    EXPECT_EQ(Sized(EncodeMatrix({2, 40, 'L', 8, 0, data})), "1416 x 1416");
    EXPECT_EQ(Sized(EncodeMatrix({2, 41, 'L', 1, 0, data})), "37 x 37");
    EXPECT_EQ(MatrixProblem(2, 4, 'L', data),
              "QR Code was not drawn: input too long for selected symbol size.");
}

TEST(SymbolMatrix, EveryMaxiCodeIsAboutAnInchWide) {
    EXPECT_EQ(Sized(EncodeMatrix({5, 4, 0, 0, 0, "A"})), "210 x 203");
    EXPECT_EQ(Sized(EncodeMatrix({5, 5, 9, 9, 8, "Mode 5 has more correction"})), "210 x 203");
    EXPECT_EQ(EncodeMatrix({5, 0, 0, 0, 0, "A"}).dots, EncodeMatrix({5, 4, 0, 0, 0, "A"}).dots);
    EXPECT_EQ(EncodeMatrix({5, 7, 0, 0, 0, "A"}).dots, EncodeMatrix({5, 4, 0, 0, 0, "A"}).dots);
    EXPECT_NE(EncodeMatrix({5, 5, 0, 0, 0, "A"}).dots, EncodeMatrix({5, 4, 0, 0, 0, "A"}).dots);
}

TEST(SymbolMatrix, AMaxiCodeHasThreeRingsAroundItsMiddle) {
    const Symbol symbol = EncodeMatrix({5, 4, 0, 0, 0, "A"});
    const auto at = [&symbol](int x, int y) {
        return symbol.dots[static_cast<size_t>(y * symbol.width + x)];
    };
    // Distances from the middle in dots: the rings cover 4.0 to 9.5, 15.0 to 20.5 and 26.0 to 31.5.
    const int white[] = {0, 3, 11, 14, 22, 25}, black[] = {5, 8, 16, 19, 27, 30};
    for (const int distance : white)
        for (const int dot : {at(101 - distance, 101), at(101 + distance, 101), at(101, 101 - distance)})
            EXPECT_EQ(dot, 0) << distance;
    for (const int distance : black)
        for (const int dot : {at(101 - distance, 101), at(101 + distance, 101), at(101, 101 - distance)})
            EXPECT_EQ(dot, 1) << distance;
}

// The first nine cells of 7 dots are "..#....#." in the first row of this symbol and "...#.#..." in the
// second row, which lies half a cell to the right.
TEST(SymbolMatrix, AMaxiCodeIsMadeOfHexagonsThatStayApart) {
    const Symbol symbol = EncodeMatrix({5, 4, 0, 0, 0, "Hello Maxi"});
    std::string first, second;
    for (int x = 0; x < symbol.width; ++x) {
        first += symbol.dots[static_cast<size_t>(4 * symbol.width + x)] ? '#' : '.';
        second += symbol.dots[static_cast<size_t>(10 * symbol.width + x)] ? '#' : '.';
    }
    EXPECT_EQ(first.substr(0, 63), "...............#####..............................#####........");
    EXPECT_EQ(second.substr(0, 63), ".........................######........######..................");
}

TEST(SymbolMatrix, MaxiCodesOfAParcelNeedPostcodeCountryAndService) {
    const std::string begin = "MaxiCode was not drawn: ";
    EXPECT_EQ(MatrixProblem(5, 2, 0, "Hello"),
              begin + "the data of mode 2 begins with a postcode of 1 to 9 digits.");
    EXPECT_EQ(MatrixProblem(5, 2, 0, ""),
              begin + "the data of mode 2 begins with a postcode of 1 to 9 digits.");
    EXPECT_EQ(MatrixProblem(5, 3, 0,
                            "b10\x1D"
                            "056\x1D"
                            "999\x1DX"),
              begin +
                  "the data of mode 3 begins with a postcode of 1 to 6 capital letters, digits or spaces.");
    EXPECT_EQ(MatrixProblem(5, 2, 0,
                            "12345\x1D"
                            "84\x1D"
                            "001\x1DX"),
              begin + "the postcode is followed by a country and a service of 3 digits each.");
    EXPECT_EQ(MatrixProblem(5, 2, 0, "123456789840012"),
              begin + "there is no message after postcode, country and service.");
}

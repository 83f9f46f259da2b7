#include "tests/printer/SymbolReaders.h"

#include "printer/Symbols.h"

#include <gtest/gtest.h>

#include <algorithm>

// Every symbology that a reader at hand knows is read back:
//   zbar      UPC-A, UPC-E, EAN-13, EAN-8, Code 39, ITF, Codabar, Code 93, Code 128 (but no FNC4), QR Code,
//             GS1 DataBar (but Limited) and Expanded
//   ZXing     the same, FNC4 included, and PDF417, Truncated PDF417, DataMatrix, MaxiCode
//   libdmtx   DataMatrix
// None of them knows MicroPDF417 and GS1 DataBar Limited: SymbolsTest.cpp compares those with libzint's own
// picture.

using namespace printer;

namespace {

// A white sheet onto which symbols are laid.
struct Sheet {
    int width, height;
    std::vector<uint8_t> grey =
        std::vector<uint8_t>(static_cast<size_t>(width) * static_cast<size_t>(height), 255);

    void Lay(const Symbol &symbol, int x, int y) {
        ASSERT_EQ(symbol.problem, "");
        ASSERT_TRUE(x + symbol.width <= width && y + symbol.height <= height);
        for (int row = 0; row < symbol.height; ++row)
            for (int column = 0; column < symbol.width; ++column)
                if (symbol.dots[static_cast<size_t>(row) * static_cast<size_t>(symbol.width) +
                                static_cast<size_t>(column)])
                    grey[static_cast<size_t>(y + row) * static_cast<size_t>(width) +
                         static_cast<size_t>(x + column)] = 0;
    }

    std::vector<ReadSymbol> Read() const { return ReadAll(grey.data(), width, height); }
};

std::string Listing(const std::vector<ReadSymbol> &found) {
    std::string listing = "found:";
    for (const ReadSymbol &symbol : found)
        listing += "\n  " + symbol.reader + " " + symbol.format + " " + ::testing::PrintToString(symbol.text);
    return listing;
}

void ExpectRead(const Symbol &symbol, const std::vector<ReadSymbol> &expected) {
    constexpr int quietZone = 40; // dots
    Sheet sheet{symbol.width + 2 * quietZone, symbol.height + 2 * quietZone};
    sheet.Lay(symbol, quietZone, quietZone);
    const std::vector<ReadSymbol> found = sheet.Read();
    for (const ReadSymbol &one : expected)
        EXPECT_EQ(std::count(found.begin(), found.end(), one), 1)
            << one.reader << " does not read " << one.format << " " << one.text << "\n"
            << Listing(found);
}

void ExpectLinear(uint8_t symbology, const std::string &data, const std::vector<ReadSymbol> &expected) {
    for (const int moduleWidth : {2, 3, 6})
        ExpectRead(EncodeLinear({symbology, moduleWidth, 80, data}), expected);
}

void ExpectMatrix(const MatrixBarcode &barcode, const std::vector<ReadSymbol> &expected) {
    ExpectRead(EncodeMatrix(barcode), expected);
}

std::string AllBytes() {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    return all;
}

} // namespace

TEST(SymbolReaders, ReadUpcA) {
    ExpectLinear(65, "01234567890", {{"UPC-A", "012345678905", "zbar"}, {"UPC-A", "012345678905", "ZXing"}});
}

TEST(SymbolReaders, ReadUpcE) {
    ExpectLinear(66, "123456", {{"UPC-E", "01234565", "zbar"}, {"UPC-E", "01234565", "ZXing"}});
    ExpectLinear(66, "042100005264", {{"UPC-E", "04252614", "zbar"}, {"UPC-E", "04252614", "ZXing"}});
    ExpectLinear(66, "1123459", {{"UPC-E", "11234593", "ZXing"}});
}

TEST(SymbolReaders, ReadEan13) {
    ExpectLinear(67, "400638133393",
                 {{"EAN-13", "4006381333931", "zbar"}, {"EAN-13", "4006381333931", "ZXing"}});
}

TEST(SymbolReaders, ReadEan8) {
    ExpectLinear(68, "9031101", {{"EAN-8", "90311017", "zbar"}, {"EAN-8", "90311017", "ZXing"}});
}

TEST(SymbolReaders, ReadCode39) {
    ExpectLinear(69, "CODE-39 $/+%.",
                 {{"CODE-39", "CODE-39 $/+%.", "zbar"}, {"Code39", "CODE-39 $/+%.", "ZXing"}});
    ExpectLinear(69, "*CODE-39*", {{"CODE-39", "CODE-39", "zbar"}, {"Code39", "CODE-39", "ZXing"}});
}

TEST(SymbolReaders, ReadItf) {
    ExpectLinear(70, "12345678", {{"I2/5", "12345678", "zbar"}, {"ITF", "12345678", "ZXing"}});
}

TEST(SymbolReaders, ReadCodabar) {
    ExpectLinear(71, "A12-34:56/7.8+$B",
                 {{"Codabar", "A12-34:56/7.8+$B", "zbar"}, {"Codabar", "A12-34:56/7.8+$B", "ZXing"}});
}

TEST(SymbolReaders, ReadCode93) {
    ExpectLinear(72, "Code 93\t%", {{"CODE-93", "Code 93\t%", "zbar"}, {"Code93", "Code 93\t%", "ZXing"}});
}

TEST(SymbolReaders, ReadCode128) {
    ExpectLinear(73, "Hello 123456",
                 {{"CODE-128", "Hello 123456", "zbar"}, {"Code128", "Hello 123456", "ZXing"}});
    ExpectLinear(73, "caf\xE9", {{"Code128", "caf\xE9", "ZXing"}});
}

TEST(SymbolReaders, ReadCode128InTheCodeSetsCommanded) {
    ExpectLinear(73, "{BNo {{1}{C1234{AEND\x03{Sb",
                 {{"CODE-128",
                   "No {1}1234END\x03"
                   "b",
                   "zbar"},
                  {"Code128",
                   "No {1}1234END\x03"
                   "b",
                   "ZXing"}});
    ExpectLinear(73, std::string("{C\x00\x63\x22", 5),
                 {{"CODE-128", "009934", "zbar"}, {"Code128", "009934", "ZXing"}});
    ExpectLinear(73, "{BAB{1CD",
                 {{"CODE-128",
                   "AB\x1D"
                   "CD",
                   "zbar"},
                  {"Code128",
                   "AB\x1D"
                   "CD",
                   "ZXing"}});
    ExpectLinear(73, "{B{4\x69-latin", {{"Code128", "\xE9-latin", "ZXing"}});
    ExpectLinear(73,
                 "{C{1"
                 "0104012345678901{BX",
                 {{"CODE-128", "0104012345678901X", "zbar"}, {"Code128", "0104012345678901X", "ZXing"}});
}

TEST(SymbolReaders, ReadPdf417) {
    ExpectMatrix({0, 3, 4, 3, 2, "Hello PDF417"}, {{"PDF417", "Hello PDF417", "ZXing"}});
    ExpectMatrix({0, 0, 0, 2, 3, "Hello PDF417"}, {{"PDF417", "Hello PDF417", "ZXing"}});
    ExpectMatrix({0, 8, 0, 3, 2, AllBytes()}, {{"PDF417", AllBytes(), "ZXing"}});
}

TEST(SymbolReaders, ReadTruncatedPdf417) {
    ExpectMatrix({3, 2, 10, 3, 2, "Truncated PDF417"}, {{"PDF417", "Truncated PDF417", "ZXing"}});
}

TEST(SymbolReaders, ReadDataMatrix) {
    ExpectMatrix({1, 0, 0, 4, 0, "DataMatrix 123"},
                 {{"DataMatrix", "DataMatrix 123", "ZXing"}, {"DataMatrix", "DataMatrix 123", "libdmtx"}});
    ExpectMatrix({1, 8, 32, 4, 0, "Rectangle"},
                 {{"DataMatrix", "Rectangle", "ZXing"}, {"DataMatrix", "Rectangle", "libdmtx"}});
    ExpectMatrix({1, 0, 0, 3, 0, AllBytes()},
                 {{"DataMatrix", AllBytes(), "ZXing"}, {"DataMatrix", AllBytes(), "libdmtx"}});
}

TEST(SymbolReaders, ReadQrCode) {
    ExpectMatrix({2, 0, 'L', 3, 0, "Hello QR"},
                 {{"QR-Code", "Hello QR", "zbar"}, {"QRCode", "Hello QR", "ZXing"}});
    ExpectMatrix({2, 5, 'H', 4, 0, "1234567890"},
                 {{"QR-Code", "1234567890", "zbar"}, {"QRCode", "1234567890", "ZXing"}});
    ExpectMatrix({2, 0, 0, 3, 0, AllBytes()},
                 {{"QR-Code", AllBytes(), "zbar"}, {"QRCode", AllBytes(), "ZXing"}});
    ExpectMatrix({2, 0, 0, 3, 0, "\x93\xFA\x96\x7B"},
                 {{"QR-Code", "\x93\xFA\x96\x7B", "zbar"}, {"QRCode", "\x93\xFA\x96\x7B", "ZXing"}});
}

TEST(SymbolReaders, ReadMaxiCodeInEveryMode) {
    ExpectMatrix({5, 4, 0, 0, 0, "Hello MaxiCode"}, {{"MaxiCode", "Hello MaxiCode", "ZXing"}});
    ExpectMatrix({5, 5, 0, 0, 0, "Hello MaxiCode"}, {{"MaxiCode", "Hello MaxiCode", "ZXing"}});
    ExpectMatrix({5, 6, 0, 0, 0, "Hello MaxiCode"}, {{"MaxiCode", "Hello MaxiCode", "ZXing"}});
    const std::string parcel = "[)>\x1E"
                               "01\x1D"
                               "96123456789\x1D"
                               "840\x1D"
                               "001\x1D"
                               "1Z00004951\x1DUPSN\x1D"
                               "06X610";
    ExpectMatrix({5, 2, 0, 0, 0, parcel}, {{"MaxiCode", parcel, "ZXing"}});
    ExpectMatrix({5, 2, 0, 0, 0, "999999999840012Parcel"}, {{"MaxiCode",
                                                             "999999999\x1D"
                                                             "840\x1D"
                                                             "012\x1DParcel",
                                                             "ZXing"}});
    ExpectMatrix({5, 3, 0, 0, 0,
                  "B1050\x1D"
                  "056\x1D"
                  "999\x1DParcel"},
                 {{"MaxiCode",
                   "B1050 \x1D"
                   "056\x1D"
                   "999\x1DParcel",
                   "ZXing"}});
    ExpectMatrix({5, 3, 0, 0, 0, "B1    056999Parcel"}, {{"MaxiCode",
                                                          "B1    \x1D"
                                                          "056\x1D"
                                                          "999\x1DParcel",
                                                          "ZXing"}});
    ExpectMatrix({5, 3, 0, 0, 0,
                  "B1\x1D"
                  "056\x1D"
                  "999\x1DParcel"},
                 {{"MaxiCode",
                   "B1    \x1D"
                   "056\x1D"
                   "999\x1DParcel",
                   "ZXing"}});
    ExpectMatrix({5, 2, 0, 0, 0,
                  "1234\x1D"
                  "840\x1D"
                  "001\x1DParcel"},
                 {{"MaxiCode",
                   "1234\x1D"
                   "840\x1D"
                   "001\x1DParcel",
                   "ZXing"}});
}

TEST(SymbolReaders, ReadDatabarWithItemNumbers) {
    for (uint8_t type = 0; type < 4; ++type)
        ExpectRead(EncodeDatabar({type, 0, 3, 99, "0401234567890"}),
                   {{"DataBar", "0104012345678901", "zbar"}, {"DataBar", "04012345678901", "ZXing"}});
}

TEST(SymbolReaders, ReadDatabarExpanded) {
    for (uint8_t type = 5; type < 7; ++type) {
        ExpectRead(EncodeDatabar({type, 4, 2, 80, "(01)98898765432106(3202)012345(15)991231"}),
                   {{"DataBar-Exp", "0198898765432106320201234515991231", "zbar"},
                    {"DataBarExpanded", "(01)98898765432106(3202)012345(15)991231", "ZXing"}});
        ExpectRead(EncodeDatabar({type, 4, 2, 80,
                                  "10AB-12\x1D"
                                  "21XYZ\x1D"
                                  "15991231"}),
                   {{"DataBarExpanded", "(10)AB-12(21)XYZ(15)991231", "ZXing"}});
    }
}

TEST(SymbolReaders, FindEverySymbolOnASheet) {
    Sheet sheet{576, 1100};
    sheet.Lay(EncodeLinear({67, 3, 80, "400638133393"}), 20, 20);
    sheet.Lay(EncodeLinear({67, 3, 80, "400638133393"}), 100, 140); // once more: some readers stumble over it
    sheet.Lay(EncodeMatrix({2, 0, 'M', 4, 0, "on the left"}), 30, 260);
    sheet.Lay(EncodeMatrix({1, 0, 0, 4, 0, "on the right"}), 400, 270);
    sheet.Lay(EncodeMatrix({5, 4, 0, 0, 0, "an inch"}), 200, 400);
    sheet.Lay(EncodeMatrix({0, 3, 2, 3, 2, "stacked"}), 20, 640);
    sheet.Lay(EncodeDatabar({0, 0, 3, 99, "0401234567890"}), 50, 800);
    const std::vector<ReadSymbol> found = sheet.Read();
    const ReadSymbol expected[] = {
        {"EAN-13", "4006381333931", "zbar"},     {"EAN-13", "4006381333931", "ZXing"},
        {"QR-Code", "on the left", "zbar"},      {"QRCode", "on the left", "ZXing"},
        {"DataMatrix", "on the right", "ZXing"}, {"DataMatrix", "on the right", "libdmtx"},
        {"MaxiCode", "an inch", "ZXing"},        {"PDF417", "stacked", "ZXing"},
        {"DataBar", "0104012345678901", "zbar"}, {"DataBar", "04012345678901", "ZXing"},
    };
    for (const ReadSymbol &one : expected)
        EXPECT_EQ(std::count(found.begin(), found.end(), one), 1)
            << one.reader << " " << one.format << " " << one.text << "\n"
            << Listing(found);
}

TEST(SymbolReaders, FindNothingOnAnEmptySheet) {
    EXPECT_EQ(Listing(Sheet{100, 100}.Read()), "found:");
}

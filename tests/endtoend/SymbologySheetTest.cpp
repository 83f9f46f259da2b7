#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/PngPicture.h"

#include "tests/printer/SymbolPictures.h"
#include "tests/printer/SymbolReaders.h"

#include <algorithm>

using namespace endtoend;
using printer::ReadSymbol;

namespace {

constexpr uint32_t kUpcA = 65, kUpcE = 66, kEan13 = 67, kEan8 = 68, kCode39 = 69, kItf = 70, kCodabar = 71,
                   kCode93 = 72, kCode128 = 73;

void AppendBars(uint32_t symbology, int32_t width, const NadrelChar *data) {
    EXPECT_GT(OneDimensionBarcodeSaveSpool(symbology, width, 80, 0, data), 0);
    PrintLineFeed(2);
}

void AppendLinearSymbols() {
    AppendBars(kUpcA, 2, u"01234567890");
    AppendBars(kUpcE, 3, u"123456");
    AppendBars(kEan13, 3, u"400638133393");
    AppendBars(kEan8, 3, u"9031101");
    AppendBars(kCode39, 2, u"CODE-39 $/+%.");
    AppendBars(kItf, 3, u"12345678");
    AppendBars(kCodabar, 2, u"A12-34:56/7.8+$B");
    AppendBars(kCode93, 3, u"Code 93");
    AppendBars(kCode128, 3, u"Hello 123456");
    EXPECT_EQ(BarcodeSaveSpool(kEan13, 3, 80, 1, u"590123412345", 576, 160, 60), 1);
    PrintLineFeed(2);
}

void AppendMatrixSymbols() {
    PDF417SaveSpool(2, 5, 2, 3, u"Hello PDF417", 0);
    PrintLineFeed(2);
    TruncatedPDF417SaveSpool(2, 4, 10, 3, u"Truncated PDF417", 0);
    PrintLineFeed(2);
    MicroPDF417SaveSpool(2, 2, 0, 3, u"Micro PDF417", 0);
    PrintLineFeed(2);
    DataMatrixSaveSpool(0, 0, 4, u"DataMatrix 123");
    PrintLineFeed(2);
    QRCodeSaveSpool(0, 'M', 4, u"Hello QR");
    PrintLineFeed(2);
    MaxicodeSaveSpool(4, u"Hello MaxiCode");
    PrintLineFeed(2);
}

void AppendDatabar(int32_t type, int32_t segments, const NadrelChar *data) {
    GS1DatabarSaveSpool(type, segments, data);
    PrintLineFeed(2);
}

// A DataBar takes module width and height from the barcode before.
void AppendDatabarSymbols() {
    AppendBars(kCode128, 3, u"three dots");
    AppendDatabar(0, 0, u"0401234567890");
    AppendDatabar(1, 0, u"0950110153000");
    AppendDatabar(2, 0, u"1234567890123");
    AppendDatabar(3, 0, u"0061414112345");
    AppendDatabar(4, 0, u"1501234567890");
    AppendBars(kCode128, 2, u"two dots");
    AppendDatabar(5, 0, u"(01)98898765432106(3202)012345(15)991231");
    AppendDatabar(6, 4, u"(01)90012345678908(3103)001750");
}

// The texts of all symbols that a reader knows, as one reader or the other writes them.
const std::vector<std::vector<std::string>> kTexts = {
    {"012345678905"},
    {"01234565"},
    {"4006381333931"},
    {"90311017"},
    {"CODE-39 $/+%."},
    {"12345678"},
    {"A12-34:56/7.8+$B"},
    {"Code 93"},
    {"Hello 123456"},
    {"5901234123457"},
    {"Hello PDF417"},
    {"Truncated PDF417"},
    {"DataMatrix 123"},
    {"Hello QR"},
    {"Hello MaxiCode"},
    {"three dots"},
    {"04012345678901", "0104012345678901"},
    {"09501101530003", "0109501101530003"},
    {"12345678901231", "0112345678901231"},
    {"00614141123452", "0100614141123452"},
    {"two dots"},
    {"(01)98898765432106(3202)012345(15)991231", "0198898765432106320201234515991231"},
    {"(01)90012345678908(3103)001750", "01900123456789083103001750"},
};

bool IsRead(const std::vector<ReadSymbol> &found, const std::vector<std::string> &texts) {
    return std::any_of(found.begin(), found.end(), [&](const ReadSymbol &symbol) {
        return std::find(texts.begin(), texts.end(), symbol.text) != texts.end();
    });
}

std::string Described(const std::vector<ReadSymbol> &found) {
    std::string all = "found:";
    for (const ReadSymbol &symbol : found)
        all += "\n  " + symbol.reader + " " + symbol.format + " " + testing::PrintToString(symbol.text);
    return all;
}

bool IsAt(const Picture &sheet, const Picture &part, int left, int top) {
    for (int y = 0; y < part.height; ++y)
        for (int x = 0; x < part.width; ++x)
            if (sheet.At(left + x, top + y) != part.At(x, y))
                return false;
    return true;
}

bool Holds(const Picture &sheet, const Picture &part) {
    for (int top = 0; top + part.height <= sheet.height; ++top)
        for (int left = 0; left + part.width <= sheet.width; ++left)
            if (IsAt(sheet, part, left, top))
                return true;
    return false;
}

// Dots as libzint draws them, in rows of this width.
Picture PictureOf(std::vector<uint8_t> dots, int width) {
    for (uint8_t &dot : dots)
        dot = dot != 0 ? 0 : 255;
    return {width, static_cast<int>(dots.size()) / width, std::move(dots)};
}

class SymbologySheet : public EndToEnd {
  protected:
    Picture Print(Link link) {
        EXPECT_TRUE(Open(link, {"--paper", "576"}));
        AppendLinearSymbols();
        AppendMatrixSymbols();
        AppendDatabarSymbols();
        EXPECT_EQ(PrintSpool(1), 1);
        EXPECT_EQ(ClosePrinter(), 1);
        StopPrinter();
        EXPECT_EQ(Printer().Complaints(), "");
        return ReadPng(Printer().Picture());
    }
};

} // namespace

TEST_F(SymbologySheet, IsReadBackFromThePaperByIndependentReaders) {
    const Picture sheet = Print({Medium::serial, Form::plain});
    const std::vector<ReadSymbol> found = printer::ReadAll(sheet.grey.data(), sheet.width, sheet.height);
    for (const std::vector<std::string> &texts : kTexts)
        EXPECT_TRUE(IsRead(found, texts)) << "nobody reads " << texts.front() << "\n" << Described(found);
}

// What no reader at hand knows: MicroPDF417 and GS1 DataBar Limited.
TEST_F(SymbologySheet, HoldsLibzintsOwnPicturesOfWhatNoReaderKnows) {
    const Picture sheet = Print({Medium::tcp, Form::framed});
    const int twoColumns = 2 * 55; // dots
    const Picture micro = PictureOf(printer::ZintPicture("Micro PDF417", 2,
                                                         [](zint_symbol &symbol) {
                                                             symbol.symbology = BARCODE_MICROPDF417;
                                                             symbol.option_2 = 2;
                                                             symbol.input_mode |= HEIGHTPERROW_MODE;
                                                             symbol.height = 3;
                                                         }),
                                    twoColumns);
    EXPECT_TRUE(Holds(sheet, micro));
    const int limited = 3 * 79; // dots
    EXPECT_TRUE(
        Holds(sheet, PictureOf(printer::ZintBars(BARCODE_DBAR_LTD, "1501234567890", 3, 80), limited)));
    EXPECT_FALSE(
        Holds(sheet, PictureOf(printer::ZintBars(BARCODE_DBAR_LTD, "1501234567891", 3, 80), limited)));
}

TEST_F(SymbologySheet, IsTheSameOverEveryLink) {
    const Picture first = Print(kEveryLink[0]);
    EXPECT_GT(BlackDots(first), 50'000);
    for (const Link link : {kEveryLink[1], kEveryLink[2], kEveryLink[3]})
        EXPECT_TRUE(Print(link) == first) << link;
}

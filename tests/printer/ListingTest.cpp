#include "printer/Listing.h"

#include "tests/printer/Decoding.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace printer;
using namespace printer::testing;

namespace {

std::string Listed(const std::string &bytes) {
    std::ostringstream text;
    Listing listing(text);
    for (const Command &command : DecodeAll(BytesOf(bytes)))
        listing.Write(command);
    return text.str();
}

// The meaning of the first command.
std::string Meaning(const std::string &bytes) {
    const std::string line = Listed(bytes);
    return line.substr(10 + 49 + 11, line.find('\n') - 70);
}

} // namespace

TEST(PrinterListing, WritesOffsetBytesNameAndMeaning) {
    EXPECT_EQ(Listed("\x1B\x40\x1B\x61\x01Hello\x0A"),
              "00000000  1B 40                                            ESC @      initialise\n"
              "00000002  1B 61 01                                         ESC a      alignment centre\n"
              "00000005  48 65 6C 6C 6F                                   text       \"Hello\"\n"
              "0000000A  0A                                               LF         print the line\n");
}

TEST(PrinterListing, ShortensLongCommands) {
    EXPECT_EQ(Listed("0123456789ABCDEF"),
              "00000000  30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46  text       \"0123456789ABCDEF\"\n");
    EXPECT_EQ(
        Listed("0123456789ABCDEFG"),
        "00000000  30 31 32 33 34 35 36 37 38 39 ... (17 bytes)     text       \"0123456789ABCDEFG\"\n");
}

TEST(PrinterListing, ListsFramesAndWhatTheyHold) {
    EXPECT_EQ(
        Listed(
            "\x00\xC0\x51\xC1\x00\xC0\x44\x31\x30\x30\x30\x33\x1B\x59\xFF\xE4\x59\xC1\x00\xC0\x44\x31\x30\x30\x30\x31\x41\x42\x00\xC1"s),
        "00000000  00 C0 51 C1                                      query frame printer status\n"
        "00000004  00 C0 44 31 30 30 30 33                          frame      3 bytes, check value E4 59\n"
        "0000000C  1B 59 FF                                         ESC Y      model name\n"
        "00000012  00 C0 44 31 30 30 30 31                          bad frame  its check value is 42 00, "
        "that of its bytes is 41 00\n");
}

TEST(PrinterListing, ShowsUnknownAndIncompleteCommandsAsSuch) {
    EXPECT_EQ(Listed("\x1F\x1D\x21\x1B\x45\x01\x1B"),
              "00000000  1F                                               unknown\n"
              "00000001  1D 21                                            incomplete GS ! without a size\n"
              "00000003  1B 45 01                                         ESC E      bold on\n"
              "00000006  1B                                               incomplete its end is missing\n");
}

TEST(PrinterListing, ListsTheBodyOfAMacroBehindIt) {
    EXPECT_EQ(
        Listed("\0\0\0\x1B\x1C\x2B\x01\x00\x06\x00\x1B\x21\x03\x1B\x74\x00\xE9"s),
        "00000000  00 00 00                                         padding    3 bytes\n"
        "00000003  1B 1C 2B 01 00 06 00 1B 21 03 1B 74 00           ESC FS +   define the macro, 6 bytes\n"
        "   +0000  1B 21 03                                         ESC !      font size 3\n"
        "   +0003  1B 74 00                                         ESC t      code table 0, code page 437\n"
        "00000010  E9                                               text       \"é\"\n");
}

TEST(PrinterListing, ReadsTextInTheCodeTableUntilAnInitialise) {
    EXPECT_EQ(
        Listed("\x1B\x74\x11\x8F\x1B\x40\x80"),
        "00000000  1B 74 11                                         ESC t      code table 17, code page 866\n"
        "00000003  8F                                               text       \"П\"\n"
        "00000004  1B 40                                            ESC @      initialise\n"
        "00000006  80                                               text       \"€\"\n");
}

TEST(PrinterListing, NamesTheValuesOfStyles) {
    EXPECT_EQ(Meaning("\x1B\x2D\x02"), "underline 2 dots");
    EXPECT_EQ(Meaning("\x1B\x2D\x07"), "underline 7");
    EXPECT_EQ(Meaning("\x1D\x21\x72"), "width x8, height x3");
    EXPECT_EQ(Meaning("\x1D\x42\x01"), "reverse on");
    EXPECT_EQ(Meaning("\x1B\x20\x09"), "character spacing 9 dots");
    EXPECT_EQ(Meaning("\x1B\x24\x2C\x01"), "position x 300");
    EXPECT_EQ(Meaning("\x1B\x4F\x0A\x00\xFF\xFF"s), "position x 10, y 65535");
    EXPECT_EQ(Meaning("\x1D\x56\x01"), "cut the paper, partial");
    EXPECT_EQ(Meaning("\x1B\x64\x03"), "print and feed 3 lines");
}

TEST(PrinterListing, NamesTheValuesOfPagesAndFigures) {
    EXPECT_EQ(Meaning("\x1B\x57\x01\x00\x02\x00\x80\x01\x20\x03"s),
              "page area x 1, y 2, width 384, height 800");
    EXPECT_EQ(Meaning("\x1B\x54\x03"), "page direction top to bottom");
    EXPECT_EQ(Meaning("\x1D\x69\x64\x00\x32\x00\x02"s), "box 100 x 50, thickness 2");
    EXPECT_EQ(Meaning("\x1B\x67\x31\x00\x00\x01\x00\x64\x00\x02\x00\x03"s),
              "line from 0, 1 to 100, 2, thickness 3");
    EXPECT_EQ(Meaning("\x1B\x67\x32\x00\x00\x01\x00\x64\x00\x02\x00\x03"s),
              "ellipse in 0, 1 to 100, 2, thickness 3");
}

TEST(PrinterListing, ShowsTheDataOfBarcodes) {
    EXPECT_EQ(Meaning("\x1D\x6B\x49\x04\x41\x22\x1D\x80"), "barcode 73, data \"A\\\"\\x1D\uFFFD\"");
    EXPECT_EQ(Meaning("\x1B\x5A\x05\x4D\x03\x02\x00\x41\x42"s), "matrix barcode 5, 77, 3, data \"AB\"");
    EXPECT_EQ(Meaning("\x1D\x31\x06\x04\x31\x32\x00"s), "GS1 DataBar type 6, segments 4, data \"12\"");
}

TEST(PrinterListing, ShowsTrueTypeFontsAndText) {
    EXPECT_EQ(Meaning("\x1B\x67\x46\x41\xE9\x00"s), "TrueType font \"Aé\"");
    EXPECT_EQ(Meaning("\x1B\x67\x55\x01\x02\x00\x41\x20\xAC\x00\x00"s), "TrueType text 1, 2, \"A€\"");
}

TEST(PrinterListing, ShowsPaymentRecordsWithTheirDigits) {
    EXPECT_EQ(Meaning("\x1B\x6D\x31\x32\x33\x34\x35\x36\x37\x38"), "terminal identifier \"12345678\"");
    EXPECT_EQ(Meaning("\x1B\x6E\x01\x00\x00\x00\x00\x10\x00\x20\x16\x01\x01\x12\x30\x00"s),
              "payment request 1: 000000001000 20160101 123000");
}

TEST(PrinterListing, ShowsCardCommands) {
    EXPECT_EQ(Meaning("\x1B\x4D\x43"), "enter card reader mode 'C'");
    EXPECT_EQ(Meaning("\x1B\x4D\x00"s), "enter card reader mode 00");
    EXPECT_EQ(Meaning("\x1B\x4D\x53\x00\x03\x61\x62\x63"s), "secured card \"abc\"");
    EXPECT_EQ(Meaning("\x04"), "cancel card reading");
}

TEST(PrinterListing, SaysWhyACommandEndsEarly) {
    EXPECT_EQ(Meaning("\x1B\x58\x33\x01\x18\x81\xFF\x41"),
              "compressed raster, 1 bytes a line, 24 lines (no run-length token follows)");
}

TEST(PrinterListing, WritesRemarksUnderTheCommand) {
    std::ostringstream text;
    Listing listing(text);
    listing.WriteNote("A remark.");
    EXPECT_EQ(text.str(), "          ! A remark.\n");
}

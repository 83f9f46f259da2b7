#include "printer/Raster.h"

#include "tests/printer/Decoding.h"

#include <gtest/gtest.h>

#include <random>

using namespace printer;
using namespace printer::testing;

namespace {

std::string Expanded(const std::string &tokens, uint8_t lineBytes = 16) {
    return HexOf(ExpandBand(BytesOf(tokens), lineBytes));
}

} // namespace

TEST(PrinterRaster, ExpandsLiteralAndRepeatTokens) {
    EXPECT_EQ(Expanded("\x81\x41\x83\x42\x42\x43"), "41 42 42 43");
    EXPECT_EQ(Expanded("\xCA\x00\x81\x01"s), "00 00 00 00 00 00 00 00 00 00 01");
    EXPECT_EQ(Expanded("\x84\x05\x05\x05\x07"), "05 05 05 07");
    EXPECT_EQ(Expanded(""), "");
}

TEST(PrinterRaster, ExpandsTheLongestTokens) {
    EXPECT_EQ(ExpandBand(BytesOf("\xFA\x00\xFA\x00\xCE\x00"s), 16).size(), 130U);
    std::string literal = "\xBA";
    for (int i = 0; i < 58; ++i)
        literal += static_cast<char>(i);
    EXPECT_EQ(Expanded(literal), HexOf(BytesOf(literal.substr(1))));
}

TEST(PrinterRaster, CutsABandAt24Lines) {
    EXPECT_EQ(ExpandBand(BytesOf("\xFA\xFF\xFA\xFF"), 2).size(), 48U);
    EXPECT_EQ(ExpandBand(BytesOf("\xFA\xFF"), 0).size(), 0U);
}

TEST(PrinterRaster, LeavesATokenOutThatIsCutOff) {
    EXPECT_EQ(Expanded("\x81\x41\x83\x42"), "41");
}

TEST(PrinterRaster, FindsTheEndOfABand) {
    const BandTokens ended = ScanBand(BytesOf("\x81\x1B\xC4\x1B\x1B\x58"), 4);
    EXPECT_TRUE(ended.ended);
    EXPECT_EQ(ended.length, 4U);
    EXPECT_FALSE(ScanBand(BytesOf("\x83\x1B\x1B"), 4).ended);
    EXPECT_FALSE(ScanBand({}, 4).ended);
}

TEST(PrinterRaster, EndsABandAtEveryControlByteThatBeginsNoToken) {
    for (int control = 0; control < 256; ++control) {
        const bool isToken = (control >= 0x81 && control <= 0xBA) || (control >= 0xC4 && control <= 0xFA);
        const Bytes bytes(100, static_cast<uint8_t>(control));
        EXPECT_EQ(ScanBand(bytes, 1).length == 0, !isToken) << control;
    }
}

TEST(PrinterRaster, EndsARandomBandWithinItsBytesAndItsLines) {
    const uint32_t seed = TestSeed(58);
    SCOPED_TRACE(HowToRepeat(seed));
    std::mt19937 random(seed);
    for (int i = 0; i < 20000; ++i) {
        Bytes bytes(random() % 300);
        for (uint8_t &byte : bytes)
            byte = static_cast<uint8_t>(random() % 2 == 0 ? 0x80 + random() % 128 : random());
        const auto lineBytes = static_cast<uint8_t>(random() % 256);
        const BandTokens tokens = ScanBand(bytes, lineBytes);
        ASSERT_LE(tokens.length, bytes.size());
        ASSERT_LE(ExpandBand(ByteView(bytes).first(tokens.length), lineBytes).size(), lineBytes * 24U);
        ASSERT_LE(ExpandBand(bytes, lineBytes).size(), lineBytes * 24U);
    }
}

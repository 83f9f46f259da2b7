#include "image/Compressor.h"

#include "tests/image/PictureTest.h"

#include <numeric>

namespace nadrel {

namespace {

using Bytes8 = std::vector<uint8_t>;

// What a band of lines so long is compressed to.
std::string Compressed(Bytes8 band, size_t lineBytes, int32_t lines, size_t room = 100000) {
    band.resize(band.size() + kCompressorSlack, 0xEE);
    Bytes8 block(room + kCompressorSlack, 0xDD);
    RasterOutput output{std::span(block).first(room)};
    Compressor(output).CompressBand(band.data(), lineBytes, lines);
    if (!output.Fits())
        return "does not fit";
    return HexOf({block.begin(), block.begin() + output.Length()});
}

std::string Compressed(const Bytes8 &line) {
    return Compressed(line, line.size(), 1);
}

Bytes8 Counting(size_t count, uint8_t from = 0) {
    Bytes8 bytes(count);
    std::iota(bytes.begin(), bytes.end(), from);
    return bytes;
}

Bytes8 Joined(Bytes8 first, const Bytes8 &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string Emitted(void (*emit)(Compressor &compressor)) {
    Bytes8 block(1000 + kCompressorSlack);
    RasterOutput output{std::span(block).first(1000)};
    Compressor compressor(output);
    emit(compressor);
    return HexOf({block.begin(), block.begin() + output.Length()});
}

} // namespace

TEST(Compressor, ALiteralEndsAtAPairThatBeginsTheNextOne) {
    EXPECT_EQ(Compressed({0x41, 0x42, 0x42, 0x43}), "81 41 83 42 42 43");
}

TEST(Compressor, TenEqualBytesAreARun) {
    EXPECT_EQ(Compressed(Joined(Bytes8(10, 0), {1})), "CA 00 81 01");
}

TEST(Compressor, ALongRunIsSplitAt58) {
    EXPECT_EQ(Compressed(Bytes8(130, 0)), "FA 00 FA 00 CE 00");
    EXPECT_EQ(Compressed(Bytes8(58, 7)), "FA 07");
    EXPECT_EQ(Compressed(Bytes8(116, 7)), "FA 07 FA 07");
}

TEST(Compressor, ARestOfOneToThreeOfALongRunIsALiteral) {
    EXPECT_EQ(Compressed(Bytes8(59, 7)), "FA 07 81 07");
    EXPECT_EQ(Compressed(Bytes8(60, 7)), "FA 07 82 07 07");
    EXPECT_EQ(Compressed(Bytes8(61, 7)), "FA 07 83 07 07 07");
    EXPECT_EQ(Compressed(Bytes8(62, 7)), "FA 07 C4 07");
    EXPECT_EQ(Compressed(Joined(Bytes8(59, 7), {8, 9})), "FA 07 83 07 08 09");
    EXPECT_EQ(Compressed(Joined(Bytes8(61, 7), {8, 8})), "FA 07 83 07 07 07 82 08 08");
}

TEST(Compressor, SixtyDistinctBytesAreALiteralOf58AndOneOfTwo) {
    EXPECT_EQ(Compressed(Counting(60)), "BA " + HexOf(Counting(58)) + " 82 3A 3B");
    EXPECT_EQ(Compressed(Counting(58)), "BA " + HexOf(Counting(58)));
}

TEST(Compressor, ARunOfThreeStaysLiteral) {
    EXPECT_EQ(Compressed({5, 5, 5, 7}), "84 05 05 05 07");
    EXPECT_EQ(Compressed({5, 5, 5, 5, 7}), "C4 05 81 07");
}

TEST(Compressor, ALiteralThatBeginsWithARestIsSplitAt58AsAnyOther) {
    EXPECT_EQ(Compressed(Joined({9, 9}, Counting(58, 10))),
              "BA 09 09 " + HexOf(Counting(56, 10)) + " 82 42 43");
}

TEST(Compressor, PairsTakeThreeBytesForTwo) {
    EXPECT_EQ(Compressed({0, 0, 1, 1, 2, 2}), "82 00 00 82 01 01 82 02 02");
}

TEST(Compressor, ASingleByteIsALiteralOfOne) {
    EXPECT_EQ(Compressed({0x33}), "81 33");
}

TEST(Compressor, RunsGoOnAcrossTheEndsOfLines) {
    EXPECT_EQ(Compressed({1, 0, 0, 0, 0, 2}, 3, 2), "81 01 C4 00 81 02");
}

TEST(Compressor, OnlyTheLinesAskedForAreCompressed) {
    EXPECT_EQ(Compressed({1, 2, 3, 4}, 2, 1), "82 01 02");
}

TEST(Compressor, NothingIsWrittenWithoutLinesOrBytes) {
    EXPECT_EQ(Compressed({1, 2}, 2, 0), "");
    EXPECT_EQ(Compressed({1, 2}, 2, -5), "");
    EXPECT_EQ(Compressed({1, 2}, 0, 24), "");
}

TEST(Compressor, LinesBehindThe24thAreCompressedByThemselves) {
    EXPECT_EQ(Compressed(Bytes8(25, 6), 1, 25), "D8 06 81 06");
    EXPECT_EQ(Compressed(Bytes8(48, 6), 1, 48), "D8 06 D8 06");
    EXPECT_EQ(Compressed(Bytes8(53, 6), 1, 53), "D8 06 D8 06 C5 06");
}

TEST(Compressor, WhatLiesBehindTheBandNeitherPairsNorRunsOn) {
    EXPECT_EQ(Compressed({1, 2, 0xEE}), "83 01 02 EE");
    EXPECT_EQ(Compressed({1, 0xEE, 0xEE, 0xEE}), "81 01 83 EE EE EE");
    EXPECT_EQ(Compressed({0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}), "C8 EE");
}

TEST(Compressor, RunTokensCarryAtMost58) {
    EXPECT_EQ(Emitted([](Compressor &compressor) { compressor.EmitRun(0x11, 130); }), "FA 11 FA 11 CE 11");
    EXPECT_EQ(Emitted([](Compressor &compressor) { compressor.EmitRun(0x11, 58); }), "FA 11");
    EXPECT_EQ(Emitted([](Compressor &compressor) { compressor.EmitRun(0x11, 1); }), "C1 11");
    EXPECT_EQ(Emitted([](Compressor &compressor) { compressor.EmitRun(0x11, 0); }), "");
}

TEST(Compressor, LiteralTokensCarryAtMost58) {
    static const Bytes8 bytes = Counting(200);
    EXPECT_EQ(Emitted([](Compressor &compressor) { compressor.EmitLiteral(bytes.data(), 118); }),
              "BA " + HexOf(Counting(58)) + " BA " + HexOf(Counting(58, 58)) + " 82 74 75");
    EXPECT_EQ(Emitted([](Compressor &compressor) { compressor.EmitLiteral(bytes.data(), 0); }), "");
}

TEST(Compressor, WhatDoesNotFitIsLeftOut) {
    EXPECT_EQ(Compressed(Counting(10), 10, 1, 11), "8A " + HexOf(Counting(10)));
    EXPECT_EQ(Compressed(Counting(10), 10, 1, 10), "does not fit");
    EXPECT_EQ(Compressed(Bytes8(10, 0), 10, 1, 2), "CA 00");
    EXPECT_EQ(Compressed(Bytes8(10, 0), 10, 1, 1), "does not fit");
    EXPECT_EQ(Compressed(Joined(Counting(4), Bytes8(9, 0)), 13, 1, 3), "does not fit");
}

} // namespace nadrel

#include "image/Compressor.h"

#include "tests/image/Oracle.h"
#include "tests/image/RandomSeeds.h"

#include <iterator>
#include <span>
#include <vector>

namespace nadrel {

namespace {

// Runs, pairs and single bytes whose lengths gather around the borders that matter.
std::vector<uint8_t> RandomBytes(Random &random, size_t count) {
    static constexpr size_t lengths[] = {1,  1,  1,  2,  2,  3,   4,   5,   8,  57,
                                         58, 59, 60, 61, 62, 116, 117, 119, 120};
    const uint32_t values = 2 + random() % 3;
    const size_t kinds = random() % 2 == 0 ? 4 : std::size(lengths);
    std::vector<uint8_t> bytes;
    while (bytes.size() < count)
        bytes.insert(bytes.end(), lengths[random() % kinds], static_cast<uint8_t>(random() % values * 0x11));
    bytes.resize(count);
    return bytes;
}

void CompareCompressed(Random &random) {
    const size_t lineBytes = 1 + random() % (random() % 50 == 0 ? 500 : 16);
    const auto lines = static_cast<int32_t>(1 + random() % 26);
    std::vector<uint8_t> band = RandomBytes(random, lineBytes * static_cast<size_t>(lines));
    const std::vector<uint8_t> expected = oracle::CompressBand(band, static_cast<int32_t>(lineBytes), lines);
    band.resize(band.size() + kCompressorSlack, band.back());
    std::vector<uint8_t> block(expected.size() + kCompressorSlack);
    RasterOutput output{std::span(block).first(expected.size())};
    Compressor(output).CompressBand(band.data(), lineBytes, lines);
    ASSERT_TRUE(output.Fits());
    block.resize(static_cast<size_t>(output.Length()));
    ASSERT_EQ(block, expected);
}

} // namespace

TEST(RandomBand, CompressesToTheBytesOfTheOracle) {
    PlayRandomCases(300000, CompareCompressed);
}

} // namespace nadrel

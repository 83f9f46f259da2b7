#include "image/EqualNeighbours.h"

#include "tests/image/RandomSeeds.h"

#include <gtest/gtest.h>

namespace nadrel {

namespace {

// One byte after the other.
uint64_t Expected(const uint8_t *bytes) {
    uint64_t bits = 0;
    for (int i = 0; i < 64; ++i)
        bits |= static_cast<uint64_t>(bytes[i] == bytes[i + 1]) << i;
    return bits;
}

} // namespace

TEST(EqualNeighbours, SetsTheBitOfEachByteThatTheNextOneEquals) {
    uint8_t bytes[65];
    for (size_t i = 0; i < 65; ++i)
        bytes[i] = static_cast<uint8_t>(i);
    EXPECT_EQ(EqualNeighbours(bytes), 0U);
    bytes[64] = 63;
    bytes[16] = 15;
    EXPECT_EQ(EqualNeighbours(bytes), 1ULL << 63 | 1ULL << 15);
    EXPECT_EQ(EqualNeighboursAnywhere(bytes), 1ULL << 63 | 1ULL << 15);
}

TEST(EqualNeighbours, FindsAllOfARun) {
    const uint8_t bytes[65] = {};
    EXPECT_EQ(EqualNeighbours(bytes), ~uint64_t{0});
    EXPECT_EQ(EqualNeighboursAnywhere(bytes), ~uint64_t{0});
}

TEST(EqualNeighbours, IsTheSameInBothForms) {
    PlayRandomCases(20000, [](Random &random) {
        uint8_t bytes[65];
        const uint32_t changes = 1 + random() % 40;
        uint8_t value = 0;
        for (uint8_t &byte : bytes)
            byte = value = random() % changes == 0 ? static_cast<uint8_t>(random()) : value;
        ASSERT_EQ(EqualNeighbours(bytes), Expected(bytes));
        ASSERT_EQ(EqualNeighboursAnywhere(bytes), Expected(bytes));
    });
}

} // namespace nadrel

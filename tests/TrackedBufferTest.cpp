#include "spool/TrackedBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

using Buffer = nadrel::TrackedBuffer<64, 8>;

constexpr uint8_t kBytes[] = {1, 2, 3, 4, 5};

std::vector<uint8_t> Contents(const Buffer &buffer) {
    return std::vector<uint8_t>(buffer.At(Buffer::kLowest), buffer.At(Buffer::kLowest) + 80);
}

// All zero but for `bytes` from `position` on.
std::vector<uint8_t> ZeroBut(int32_t position, const std::vector<uint8_t> &bytes) {
    std::vector<uint8_t> contents(80);
    std::copy(bytes.begin(), bytes.end(), contents.begin() + position + 8);
    return contents;
}

const std::vector<uint8_t> kAllZero(80);

} // namespace

TEST(TrackedBuffer, ReachesFromTheFrontMarginToTheEndOfTheBackMargin) {
    EXPECT_EQ(Buffer::kLowest, -8);
    EXPECT_EQ(Buffer::kEnd, 72);
}

TEST(TrackedBuffer, IsAllZeroAtFirst) {
    const Buffer buffer;
    EXPECT_EQ(Contents(buffer), kAllZero);
}

TEST(TrackedBuffer, HoldsRangesWithinTheStorageOnly) {
    EXPECT_TRUE(Buffer::Holds(0, 64));
    EXPECT_TRUE(Buffer::Holds(-8, 80));
    EXPECT_TRUE(Buffer::Holds(71, 1));
    EXPECT_TRUE(Buffer::Holds(72, 0));
    EXPECT_TRUE(Buffer::Holds(-8, 0));
    EXPECT_FALSE(Buffer::Holds(-9, 1));
    EXPECT_FALSE(Buffer::Holds(-9, 0));
    EXPECT_FALSE(Buffer::Holds(-8, 81));
    EXPECT_FALSE(Buffer::Holds(71, 2));
    EXPECT_FALSE(Buffer::Holds(72, 1));
    EXPECT_FALSE(Buffer::Holds(73, 0));
    EXPECT_FALSE(Buffer::Holds(0, -1));
}

TEST(TrackedBuffer, MayBeAskedAboutAnyTwoNumbers) {
    for (const int64_t extreme : {INT64_MIN, INT64_MAX, int64_t{INT32_MIN}, int64_t{INT32_MAX}}) {
        EXPECT_FALSE(Buffer::Holds(extreme, 1));
        EXPECT_FALSE(Buffer::Holds(0, extreme));
        EXPECT_FALSE(Buffer::Holds(-8, extreme));
        EXPECT_FALSE(Buffer::Holds(72, extreme));
        EXPECT_FALSE(Buffer::Holds(extreme, extreme));
    }
}

TEST(TrackedBuffer, WritesWhereItIsTold) {
    for (const int32_t position : {-8, -1, 0, 30, 59, 64, 67}) {
        Buffer buffer;
        buffer.Write(position, kBytes, 5);
        EXPECT_EQ(Contents(buffer), ZeroBut(position, {1, 2, 3, 4, 5})) << position;
        EXPECT_EQ(*buffer.At(position), 1);
    }
}

TEST(TrackedBuffer, GivesTheBytesToBeWrittenInPlace) {
    Buffer buffer;
    uint8_t *bytes = buffer.Write(10, 2);
    bytes[0] = 7;
    bytes[1] = 8;
    EXPECT_EQ(Contents(buffer), ZeroBut(10, {7, 8}));
}

TEST(TrackedBuffer, ClearZeroesEverythingWritten) {
    Buffer buffer;
    buffer.Write(67, kBytes, 5);
    buffer.Write(-8, kBytes, 5);
    buffer.Write(20, kBytes, 5);
    buffer.Clear();
    EXPECT_EQ(Contents(buffer), kAllZero);
}

TEST(TrackedBuffer, ClearZeroesWhatWasWrittenAfterAnEarlierClear) {
    Buffer buffer;
    buffer.Write(40, kBytes, 5);
    buffer.Clear();
    buffer.Write(-3, kBytes, 5);
    buffer.Write(2, kBytes, 5);
    buffer.Clear();
    EXPECT_EQ(Contents(buffer), kAllZero);
    buffer.Clear();
    EXPECT_EQ(Contents(buffer), kAllZero);
}

// A byte that the buffer was not told of shows how far clearing goes.
TEST(TrackedBuffer, ClearTouchesNothingBehindWhatWasWritten) {
    Buffer buffer;
    uint8_t *bytes = buffer.Write(0, 5);
    std::copy(std::begin(kBytes), std::end(kBytes), bytes);
    bytes[5] = 0xEE;
    buffer.Clear();
    EXPECT_EQ(Contents(buffer), ZeroBut(5, {0xEE}));
}

TEST(TrackedBuffer, ClearForgetsWhatItHasCleared) {
    Buffer buffer;
    uint8_t *bytes = buffer.Write(0, 5);
    buffer.Clear();
    bytes[4] = 0xEE;
    buffer.Write(0, 2);
    buffer.Clear();
    EXPECT_EQ(Contents(buffer), ZeroBut(4, {0xEE}));
}

TEST(TrackedBuffer, ClearForgetsWhatItHasClearedInTheFrontMargin) {
    Buffer buffer;
    uint8_t *bytes = buffer.Write(-8, 5);
    buffer.Clear();
    bytes[0] = 0xEE;
    buffer.Write(0, 2);
    buffer.Clear();
    EXPECT_EQ(Contents(buffer), ZeroBut(-8, {0xEE}));
}

TEST(TrackedBuffer, ClearFromKeepsWhatStandsInFront) {
    Buffer buffer;
    buffer.Write(-8, kBytes, 5);
    buffer.Write(30, kBytes, 5);
    buffer.Write(60, kBytes, 5);
    buffer.ClearFrom(32);
    std::vector<uint8_t> expected = ZeroBut(-8, {1, 2, 3, 4, 5});
    expected[38] = 1;
    expected[39] = 2;
    EXPECT_EQ(Contents(buffer), expected);
}

TEST(TrackedBuffer, ClearFromOfAPositionInFrontOfAllZeroesAll) {
    for (const int32_t position : {-8, -100, INT32_MIN}) {
        Buffer buffer;
        buffer.Write(-8, kBytes, 5);
        buffer.Write(60, kBytes, 5);
        buffer.ClearFrom(position);
        EXPECT_EQ(Contents(buffer), kAllZero) << position;
    }
}

TEST(TrackedBuffer, ClearFromBehindAllZeroesNothing) {
    for (const int32_t position : {35, 72, 1000, INT32_MAX}) {
        Buffer buffer;
        buffer.Write(30, kBytes, 5);
        buffer.ClearFrom(position);
        EXPECT_EQ(Contents(buffer), ZeroBut(30, {1, 2, 3, 4, 5})) << position;
    }
}

TEST(TrackedBuffer, ClearAfterClearFromStillZeroesAll) {
    Buffer buffer;
    buffer.Write(10, kBytes, 5);
    buffer.ClearFrom(12);
    buffer.Clear();
    EXPECT_EQ(Contents(buffer), kAllZero);
}

TEST(TrackedBuffer, HasAnInitialStateOfZeroBits) {
    const auto buffer = std::make_unique<nadrel::TrackedBuffer<4096, 16>>();
    const auto *bits = reinterpret_cast<const uint8_t *>(buffer.get());
    EXPECT_TRUE(std::all_of(bits, bits + sizeof *buffer, [](uint8_t byte) { return byte == 0; }));
}

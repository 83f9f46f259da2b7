#include "image/BaseImage.h"
#include "tests/image/Oracle.h"
#include "tests/image/PictureTest.h"
#include "tests/image/RandomSeeds.h"

#include <limits>

// Files whose headers lie. Each gives either the failure result or the commands of a picture whose missing
// bytes are zeros, and never more than a moment's work.
namespace nadrel {

namespace {

class HostileFileTest : public PictureTest {
  protected:
    void SetUp() override { OpenSerialLink(); }

    // Prints in all three forms and compares with the oracle where a picture is made.
    void Print() {
        const std::vector<uint8_t> file = files.Held(kName);
        ClearSpool();
        const int32_t result = BmpSaveSpool(kName, 3, 4);
        if (result > 0)
            Compare(oracle::PositionedRaster(file, 3, 4));
        else
            EXPECT_TRUE(SpoolLength == 0 && IsAllZero(SpoolBuffer)) << result;
        ClearSpool();
        NormalBmpSaveSpool(kName);
        if (SpoolLength > 0)
            Compare(oracle::NormalRaster(file));
        ClearSpool();
        CompressedBmpSaveSpool(kName);
        if (SpoolLength > 0)
            Compare(oracle::CompressedRaster(file));
        EXPECT_EQ(files.StillOpen(), 0);
    }

    static void Compare(const std::optional<oracle::Bytes> &expected) {
        ASSERT_TRUE(expected.has_value());
        EXPECT_TRUE(SpoolBytes() == *expected);
    }

    static void ExpectToNeedNoBlockOf(size_t bytes, void (*print)()) {
        ClearSpool();
        allocation::FailNext(bytes, std::numeric_limits<size_t>::max());
        print();
        EXPECT_TRUE(allocation::Allow());
    }

    int32_t Result() {
        ClearSpool();
        return BmpSaveSpool(kName, 3, 4);
    }
};

BmpBuilder Small(uint16_t bitCount = 24) {
    if (bitCount == 1)
        return BmpBuilder::OneBit(20, 30, [](int32_t x, int32_t y) { return (x ^ y) & 1; });
    return BmpBuilder::Colour(20, 30, [](int32_t x, int32_t y) {
        return Pixel{static_cast<uint8_t>(x * 11), static_cast<uint8_t>(y * 7), 128};
    });
}

constexpr int32_t kEdges[] = {std::numeric_limits<int32_t>::min(),
                              std::numeric_limits<int32_t>::min() + 1,
                              -65536,
                              -33,
                              -32,
                              -1,
                              0,
                              1,
                              7,
                              24,
                              1000,
                              4096,
                              65535,
                              65536,
                              0x01000000,
                              0x15555555,
                              0x15555556,
                              0x2AAAAAAB,
                              0x55555555,
                              0x55555556,
                              std::numeric_limits<int32_t>::max() - 31,
                              std::numeric_limits<int32_t>::max()};

} // namespace

TEST_F(HostileFileTest, AnyWidthAndHeight) {
    for (const uint16_t depth : std::initializer_list<uint16_t>{1, 24})
        for (const int32_t width : kEdges)
            for (const int32_t height : kEdges) {
                BmpBuilder file = Small(depth);
                file.width = width;
                file.height = height;
                Give(file);
                SCOPED_TRACE(std::to_string(depth) + " bits, " + std::to_string(width) + " x " +
                             std::to_string(height));
                ASSERT_NO_FATAL_FAILURE(Print());
            }
}

TEST_F(HostileFileTest, AWidthBelowZeroCannotBeLoaded) {
    BmpBuilder file = Small();
    file.width = -20;
    Give(file);
    EXPECT_EQ(Result(), -1);
    EXPECT_EQ(SpoolLength, 0);
}

TEST_F(HostileFileTest, AWidthThatNothingBacksCannotBeLoaded) {
    BmpBuilder file = Small();
    file.width = 0x20000000;
    Give(file);
    EXPECT_EQ(Result(), -1);
    EXPECT_EQ(SpoolLength, 0);
}

TEST_F(HostileFileTest, AnyCountOfPixelBytes) {
    for (const uint16_t depth : std::initializer_list<uint16_t>{1, 24})
        for (const int64_t count :
             {0LL, 1LL, 59LL, 60LL, 119LL, 1799LL, 1800LL, 1801LL, 0x7FFFFFFFLL, 0xFFFFFFFFLL}) {
            BmpBuilder file = Small(depth);
            file.claimedImageBytes = count;
            Give(file);
            SCOPED_TRACE(std::to_string(depth) + " bits, " + std::to_string(count));
            EXPECT_GT(Result(), 0);
            Print();
        }
}

TEST_F(HostileFileTest, ACountOfZeroPixelBytesPrintsAPictureOfZeros) {
    BmpBuilder file = Small(1);
    file.claimedImageBytes = 0;
    Give(file);
    ClearSpool();
    NormalBmpSaveSpool(kName);
    EXPECT_EQ(SpoolHex().substr(12 * 3, 11), "FF FF F0 00");
}

TEST_F(HostileFileTest, ACountOfZeroPixelBytesRefusesNoPictureThatTheFileHolds) {
    BmpBuilder file = BmpBuilder::Colour(4000, 30, [](int32_t, int32_t) { return kWhite; });
    file.claimedImageBytes = 0;
    Give(file);
    EXPECT_EQ(Result(), 7 + 2 * (6 + 5 + 500 * 24 + 1) + 3 + 2);
    EXPECT_EQ(SpoolHex().substr(18 * 3, 5), "FF FF");
}

TEST_F(HostileFileTest, AnyFileSize) {
    const auto truth = static_cast<int64_t>(Small().Bytes().size());
    for (const int64_t size :
         {int64_t{0}, int64_t{1}, int64_t{13}, int64_t{14}, int64_t{53}, int64_t{54}, int64_t{55}, truth - 1,
          truth, truth + 1, int64_t{0x7FFFFFFF}, int64_t{0xFFFFFFFF}}) {
        BmpBuilder file = Small();
        file.claimedFileBytes = size;
        Give(file);
        SCOPED_TRACE(size);
        EXPECT_EQ(Result() > 0, size >= 54 && size <= truth);
        Print();
    }
}

TEST_F(HostileFileTest, AFileCutAnywhere) {
    for (const uint16_t depth : std::initializer_list<uint16_t>{1, 24}) {
        const FileBytes whole = Small(depth).Bytes();
        for (size_t length = 0; length < whole.size(); length += length < 70 ? 1 : 97) {
            FileBytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
            files.Put(kName, cut);
            EXPECT_EQ(Result(), -1) << length;
            if (length < 6)
                continue;
            cut[2] = static_cast<uint8_t>(length); // now the header says so
            cut[3] = static_cast<uint8_t>(length >> 8);
            files.Put(kName, cut);
            SCOPED_TRACE(length);
            EXPECT_EQ(Result() > 0, length >= 54);
            Print();
        }
    }
}

TEST_F(HostileFileTest, AnySizeOfTheInfoHeader) {
    for (const uint16_t depth : std::initializer_list<uint16_t>{1, 24})
        for (const uint32_t size :
             {0U, 12U, 39U, 41U, 108U, 124U, 1000U, 0x7FFFFFFFU, 0xFFFFFFF0U, 0xFFFFFFFFU}) {
            FileBytes bytes = Small(depth).Bytes();
            for (size_t i = 0; i < 4; ++i)
                bytes[14 + i] = static_cast<uint8_t>(size >> 8 * i);
            files.Put(kName, bytes);
            SCOPED_TRACE(size);
            EXPECT_GT(Result(), 0);
            Print();
        }
}

TEST_F(HostileFileTest, APictureOfMissingRowsIsRefusedWithoutBeingMade) {
    BmpBuilder file = Small();
    file.height = std::numeric_limits<int32_t>::max();
    Give(file);
    EXPECT_EQ(Result(), ERR_SPOOL_LIMIT);
    CompressedBmpSaveSpool(kName);
    EXPECT_EQ(SpoolLength, 0);
}

TEST_F(HostileFileTest, TakesNoMoreMemoryThanAPieceTheSpoolAndWhatTheFileHas) {
    if (!allocation::CanFail())
        GTEST_SKIP() << "the sanitizer's runtime allocates";
    const size_t limit = 2 * 409600;
    for (const uint16_t depth : std::initializer_list<uint16_t>{1, 24})
        for (const int32_t width : kEdges)
            for (const int32_t height : kEdges) {
                BmpBuilder file = Small(depth);
                file.width = width;
                file.height = height;
                Give(file);
                SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
                ExpectToNeedNoBlockOf(limit, [] { BmpSaveSpool(kName, 0, 0); });
                ExpectToNeedNoBlockOf(limit, [] { NormalBmpSaveSpool(kName); });
                ExpectToNeedNoBlockOf(limit, [] { CompressedBmpSaveSpool(kName); });
            }
}

TEST_F(HostileFileTest, ANameThatIsTooLongIsNotSavedTo) {
    Give(Small());
    BaseImage image;
    ASSERT_EQ(image.LoadBmp(kName), 1);
    EXPECT_EQ(image.SaveBmp(std::u16string(512, u'x').c_str()), 0);
    EXPECT_EQ(files.Held(std::u16string(511, u'x')), FileBytes()) << "nor to its beginning";
    EXPECT_EQ(image.SaveBmp(std::u16string(511, u'x').c_str()), 1);
    EXPECT_EQ(files.Held(std::u16string(511, u'x')), FileBytes(Small().Bytes()));
}

TEST_F(HostileFileTest, HeadersOfRandomBytes) {
    Random random(7);
    for (uint32_t i = 0; i < NumberFrom("NADREL_CASES", 3000); ++i) {
        FileBytes bytes = Small(i % 2 == 0 ? 1 : 24).Bytes();
        for (uint32_t changes = 1 + random() % 4; changes > 0; --changes)
            bytes[6 + random() % 48] = static_cast<uint8_t>(random() % 3 == 0 ? random() : random() % 4 * 85);
        files.Reset();
        files.Put(kName, bytes);
        SCOPED_TRACE(HexOf({bytes.begin(), bytes.begin() + 54}));
        ASSERT_NO_FATAL_FAILURE(Print());
    }
}

} // namespace nadrel

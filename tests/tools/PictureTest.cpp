#include "tools/Picture.h"

#include "PictureFiles.h"

#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

using tool::Picture;

namespace {

class PictureOfAFile : public testing::Test {
  protected:
    std::string Write(const std::string &type, int width, int height, const ColourAt &colour) {
        const std::string file = folder.Path("a." + type);
        WritePicture(file, type, width, height, colour);
        return file;
    }

    std::string Plain(int width, int height) {
        return Write("png", width, height, [](int, int) { return kBlackDot; });
    }

    static std::string SizeOf(const Picture &picture) {
        return std::to_string(picture.Width()) + " x " + std::to_string(picture.Height());
    }

    // The rows as '#' for black, '.' for white, '+' for what is between; from the bitmap that is written.
    static std::string RowsOf(const Picture &picture, int first, int count) {
        std::string bitmap;
        EXPECT_TRUE(picture.WriteBitmap(first, count, [&](std::span<const char> bytes) {
            bitmap.append(bytes.data(), bytes.size());
            return true;
        }));
        const size_t width = static_cast<size_t>(picture.Width());
        const size_t stride = (3 * width + 3) / 4 * 4;
        EXPECT_EQ(bitmap.size(), 54 + stride * static_cast<size_t>(count));
        std::string rows;
        for (size_t row = static_cast<size_t>(count); row-- > 0;) {
            for (size_t x = 0; x < width; ++x)
                rows += Sign(bitmap.substr(54 + stride * row + 3 * x, 3));
            rows += ' ';
        }
        return rows;
    }

    static std::string FaultOf(const std::string &file, std::optional<int> width = {}) {
        try {
            const Picture picture(file, width);
            return "no fault";
        } catch (const tool::Fault &fault) {
            return fault.what();
        }
    }

    TemporaryFolder folder;

  private:
    static char Sign(const std::string &pixel) {
        return pixel == std::string(3, '\0') ? '#' : pixel == "\xFF\xFF\xFF" ? '.' : '+';
    }
};

// Black on the main diagonal, grey beside it.
Colour Slope(int x, int y) {
    return x == y ? kBlackDot : x == y + 1 ? kGreyDot : kWhiteDot;
}

} // namespace

TEST_F(PictureOfAFile, KeepsEveryPixelWhereNothingIsScaled) {
    for (const std::string type : {"png", "bmp"}) {
        const Picture picture(Write(type, 5, 3, &Slope), std::nullopt);
        EXPECT_EQ(RowsOf(picture, 0, 3), "#+... .#+.. ..#+. ") << type;
        EXPECT_EQ(RowsOf(picture, 1, 1), ".#+.. ") << type;
    }
}

TEST_F(PictureOfAFile, MayBeAJpeg) {
    const Picture picture(Write("jpeg", 32, 16, [](int x, int) { return x < 16 ? kBlackDot : kWhiteDot; }),
                          std::nullopt);
    EXPECT_EQ(RowsOf(picture, 8, 1), std::string(16, '#') + std::string(16, '.') + ' ');
}

TEST_F(PictureOfAFile, IsLaidOnWhite) {
    const Picture picture(Write("png", 3, 1,
                                [](int x, int) {
                                    const int opacities[] = {0, 128, 255};
                                    return Colour{0, 0, 0, static_cast<uint8_t>(opacities[x])};
                                }),
                          std::nullopt);
    EXPECT_EQ(RowsOf(picture, 0, 1), ".+# ");
}

TEST_F(PictureOfAFile, IsTurnedAsTheCameraSays) {
    const auto halves = [](int x, int) { return x < 16 ? kBlackDot : kWhiteDot; };
    const auto firstRowOf = [&](uint8_t orientation) {
        WriteTurnedJpeg(folder.Path("a.jpg"), 32, 16, orientation, halves);
        const Picture picture(folder.Path("a.jpg"), std::nullopt);
        return SizeOf(picture) + ' ' + RowsOf(picture, 4, 1);
    };
    const std::string black(16, '#');
    const std::string white(16, '.');
    EXPECT_EQ(firstRowOf(1), "32 x 16 " + black + white + ' ');
    EXPECT_EQ(firstRowOf(3), "32 x 16 " + white + black + ' ');
    EXPECT_EQ(firstRowOf(6), "16 x 32 " + black + ' ');
    EXPECT_EQ(firstRowOf(8), "16 x 32 " + white + ' ');
}

TEST_F(PictureOfAFile, IsAsWideAsItIsButNotWiderThanPaper) {
    EXPECT_EQ(SizeOf(Picture(Plain(100, 50), std::nullopt)), "100 x 50");
    EXPECT_EQ(SizeOf(Picture(Plain(576, 30), std::nullopt)), "576 x 30");
    EXPECT_EQ(SizeOf(Picture(Plain(1152, 301), std::nullopt)), "576 x 151");
}

TEST_F(PictureOfAFile, IsAsWideAsAskedFor) {
    EXPECT_EQ(SizeOf(Picture(Plain(100, 50), 384)), "384 x 192");
    EXPECT_EQ(SizeOf(Picture(Plain(100, 50), 2016)), "2016 x 1008");
    EXPECT_EQ(SizeOf(Picture(Plain(100, 50), 10)), "10 x 5");
    EXPECT_EQ(SizeOf(Picture(Plain(100, 1), 10)), "10 x 1");
}

TEST_F(PictureOfAFile, StaysBlackAndWhiteWithSoftEdgesWhenItIsScaled) {
    const Picture picture(Write("png", 4, 1, [](int x, int) { return x < 2 ? kBlackDot : kWhiteDot; }), 64);
    const std::string row = RowsOf(picture, 8, 1);
    EXPECT_TRUE(row.starts_with("########")) << row;
    EXPECT_TRUE(row.ends_with("........ ")) << row;
}

TEST_F(PictureOfAFile, KnowsItsRowsOfBlackAndWhite) {
    const Picture picture(
        Write("png", 4, 5,
              [](int x, int y) {
                  const Colour last[] = {kBlackDot, kWhiteDot, kGreyDot, {255, 0, 0}, {0, 255, 255}};
                  return x == 3 ? last[y] : kBlackDot;
              }),
        std::nullopt);
    EXPECT_TRUE(picture.IsBlackAndWhite(0));
    EXPECT_TRUE(picture.IsBlackAndWhite(1));
    EXPECT_FALSE(picture.IsBlackAndWhite(2));
    EXPECT_FALSE(picture.IsBlackAndWhite(3));
    EXPECT_FALSE(picture.IsBlackAndWhite(4));
}

TEST_F(PictureOfAFile, TellsThatItsBitmapWasNotTaken) {
    const Picture picture(Plain(10, 10), std::nullopt);
    EXPECT_FALSE(picture.WriteBitmap(0, 10, [](std::span<const char>) { return false; }));
}

TEST_F(PictureOfAFile, SaysWhatIsWrongWithAFile) {
    constexpr char kExpected[] = ", expected a PNG, JPEG or BMP file";
    EXPECT_EQ(FaultOf("/nowhere/a.png"),
              std::string("/nowhere/a.png: cannot be read (No such file or directory)") + kExpected);
    EXPECT_EQ(FaultOf("/dev"), std::string("/dev: is no file") + kExpected);
    EXPECT_EQ(FaultOf("/dev/zero"), std::string("/dev/zero: is no file") + kExpected);
    const std::string file = folder.Path("a");
    for (const std::string text : {"", "text", "BM", "\x89PNG\r\n\x1A\n", "GIF89a\1\0\1\0", "P1 1 1 0"}) {
        folder.Put("a", {text.begin(), text.end()});
        EXPECT_EQ(FaultOf(file), file + ": is no picture that can be read" + kExpected) << text;
    }
}

TEST_F(PictureOfAFile, SaysThatAFileIsCutOff) {
    const auto cutOff = [this](const std::string &type) {
        Write(type, 60, 60, &Slope);
        std::vector<uint8_t> bytes = folder.Get("a." + type);
        bytes.resize(bytes.size() - 40);
        folder.Put("a." + type, bytes);
        return FaultOf(folder.Path("a." + type));
    };
    EXPECT_TRUE(cutOff("png").starts_with(folder.Path("a.png") + ": cannot be read (")) << cutOff("png");
    EXPECT_EQ(cutOff("bmp"), folder.Path("a.bmp") +
                                 ": is shorter than its own header says, expected a PNG, JPEG or BMP file");
}

TEST_F(PictureOfAFile, RefusesSizesThatNoPaperHas) {
    const std::string file = Plain(1, 100);
    EXPECT_EQ(FaultOf(file, 655), "no fault");
    EXPECT_EQ(FaultOf(file, 656), file + ": would be 656 x 65600 dots, expected 65535 lines at most");
}

TEST_F(PictureOfAFile, RefusesManyPixelsBeforeItMakesRoomForThem) {
    Write("bmp", 8, 8, &Slope);
    std::vector<uint8_t> bytes = folder.Get("a.bmp");
    const uint8_t size[] = {0xA0, 0x86, 0x01, 0x00, 0xA0, 0x86, 0x01, 0x00};
    std::copy(std::begin(size), std::end(size), bytes.begin() + 18);
    folder.Put("a.bmp", bytes);
    EXPECT_EQ(FaultOf(folder.Path("a.bmp")),
              folder.Path("a.bmp") + ": has 100000 x 100000 pixels, expected 100000000 at most");
}

#include "tests/endtoend/DotPaper.h"
#include "tests/endtoend/EndToEnd.h"

#include "tests/image/Oracle.h"

#include <random>

using namespace endtoend;

namespace {

class PictureTool : public OnEveryLink {
  protected:
    // Prints the picture with the tool; the paper that comes out.
    Picture Print(const Picture &picture, const std::string &option = {}) {
        const std::string file = (folder.Path() / "a.png").string();
        WritePng(file, picture);
        StartPrinter();
        std::vector<std::string> options{"picture", file};
        if (!option.empty())
            options.push_back(option);
        if (IsFramed())
            options.push_back("--framed");
        const bool isSerial = GetParam().medium == Medium::serial;
        options.push_back(isSerial ? "--serial" : "--tcp");
        options.push_back(isSerial ? Printer().SerialPath()
                                   : "127.0.0.1:" + std::to_string(Printer().TcpPort()));
        Process tool(NADREL_TOOL_PROGRAM, options, folder.Path() / "tool");
        EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
        EXPECT_TRUE(HasListed(option == "--compressed" ? "print 24 raster lines" : "print the line",
                              static_cast<size_t>(picture.height + 23) / 24));
        StopPrinter();
        return ReadPng(Printer().Picture());
    }
};
NADREL_ON_EVERY_LINK(PictureTool);

// The last pieces are on their way when the tool closes the link, and on a framed one answered after that.
class LongPictureTool : public PictureTool {};
NADREL_ON_EVERY_LINK(LongPictureTool);

template <typename GreyAt>
Picture MakePicture(int width, int height, GreyAt greyAt) {
    Picture picture{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.grey.push_back(greyAt(x, y));
    return picture;
}

Picture BlackAndWhite(int width, int height) {
    std::mt19937 random(7);
    return MakePicture(width, height,
                       [&](int, int) { return random() % 2 == 0 ? uint8_t{0} : uint8_t{255}; });
}

// Shades with a white line here and there.
Picture Shades(int width, int height) {
    std::mt19937 random(8);
    return MakePicture(width, height, [&](int x, int y) {
        return y % 480 == 479 ? uint8_t{255}
                              : static_cast<uint8_t>(static_cast<uint32_t>(x + y) + random() % 40);
    });
}

// The picture with each of its dots black or white.
Picture Dithered(Picture picture) {
    oracle::Dither dither(picture.width);
    std::vector<uint8_t> row(3 * static_cast<size_t>(picture.width));
    for (size_t y = 0; y < static_cast<size_t>(picture.height); ++y) {
        uint8_t *const grey = &picture.grey[y * static_cast<size_t>(picture.width)];
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = grey[i / 3];
        dither.DitherRow(row.data(), true);
        for (size_t i = 0; i < row.size(); i += 3)
            grey[i / 3] = row[i];
    }
    return picture;
}

// Paper with the picture at its top.
DotPaper PaperWith(const Picture &picture, int rows) {
    DotPaper paper(384);
    paper.Draw(0, 0, picture.width, picture.height, [&](int x, int y) { return picture.At(x, y) == 0; });
    paper.Feed(rows - picture.height);
    return paper;
}

} // namespace

TEST_P(PictureTool, PrintsEveryDotOfAPicture) {
    const Picture picture = BlackAndWhite(200, 130);
    EXPECT_TRUE(PaperWith(picture, 130).LooksLike(Print(picture)));
}

TEST_P(PictureTool, PrintsEveryDotOfACompressedPicture) {
    const Picture picture = BlackAndWhite(200, 130);
    EXPECT_TRUE(PaperWith(picture, 144).LooksLike(Print(picture, "--compressed")));
}

// 353 bands of 48 bytes a line fill the spool.
TEST_P(LongPictureTool, PrintsAPictureLongerThanTheSpoolWithoutASeam) {
    const Picture picture = BlackAndWhite(384, 9001);
    EXPECT_TRUE(PaperWith(picture, 9001).LooksLike(Print(picture)));
}

TEST_P(LongPictureTool, DithersAPictureLongerThanTheSpoolAsIfItWereOnePiece) {
    const Picture picture = Shades(384, 9001);
    EXPECT_TRUE(PaperWith(Dithered(picture), 9001).LooksLike(Print(picture)));
}

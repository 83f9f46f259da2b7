#include "printer/PngFile.h"

#include "tests/printer/Printing.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <png.h>
#include <stdexcept>
#include <unistd.h>

using namespace printer;
using namespace printer::testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

std::string TemporaryFile(const std::string &name) {
    return ::testing::TempDir() + "nadrel_" + std::to_string(getpid()) + "_" + name;
}

// The picture as libpng's own reader sees it: '#' for black.
std::vector<std::string> ReadPicture(const std::string &path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0)
        return {image.message};
    image.format = PNG_FORMAT_GRAY;
    Bytes grey(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, grey.data(), 0, nullptr);
    std::vector<std::string> rows;
    for (size_t y = 0; y < image.height; ++y) {
        rows.emplace_back();
        for (size_t x = 0; x < image.width; ++x)
            rows.back() += grey[y * image.width + x] == 0     ? '#'
                           : grey[y * image.width + x] == 255 ? '.'
                                                              : '?';
    }
    return rows;
}

Bitmap Corner() {
    Bitmap picture(10, 2);
    picture.Set(0, 0);
    picture.Set(9, 1);
    return picture;
}

} // namespace

TEST(PrinterPng, WritesBlackDotsOnWhite) {
    const std::string path = TemporaryFile("dots.png");
    WritePng(path, Corner());
    EXPECT_THAT(ReadPicture(path), ElementsAre("#.........", ".........#"));
    std::filesystem::remove(path);
}

TEST(PrinterPng, PutsAMarginAroundThePicture) {
    const std::string path = TemporaryFile("margin.png");
    WritePng(path, Corner(), 1);
    EXPECT_THAT(ReadPicture(path),
                ElementsAre("............", ".#..........", "..........#.", "............"));
    std::filesystem::remove(path);
}

TEST(PrinterPng, WritesOneWhiteRowForPaperThatNothingIsPrintedOn) {
    const std::string path = TemporaryFile("blank.png");
    WritePng(path, Bitmap(4, 0));
    EXPECT_THAT(ReadPicture(path), ElementsAre("...."));
    std::filesystem::remove(path);
}

TEST(PrinterPng, ReplacesTheFileAndLeavesNoOtherBehind) {
    const std::filesystem::path folder = TemporaryFile("png_folder");
    std::filesystem::create_directory(folder);
    const std::string path = folder / "receipt.png";
    std::ofstream(path) << "not a picture";
    WritePng(path, Corner());
    EXPECT_EQ(ReadPicture(path).size(), 2U);
    EXPECT_EQ(
        std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator()), 1);
    std::filesystem::remove_all(folder);
}

TEST(PrinterPng, SaysWhyAPictureCannotBeWritten) {
    try {
        WritePng("/nonexistent/receipt.png", Corner());
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error &error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("The picture /nonexistent/receipt.png cannot be written: No such file"));
    }
}

#include "tools/TemporaryBitmap.h"

#include "PictureFiles.h"

#include "tests/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

std::string FileOf(const tool::TemporaryBitmap &bitmap) {
    const tool::Text name = bitmap.Name();
    return {name.begin(), name.end()};
}

tool::Picture Picture() {
    const TemporaryFolder folder;
    WritePicture(folder.Path("a.png"), "png", 10, 30, [](int, int) { return kBlackDot; });
    return tool::Picture(folder.Path("a.png"), std::nullopt);
}

} // namespace

TEST(TemporaryBitmap, IsAFileOfTheRows) {
    const tool::Picture picture = Picture();
    const tool::TemporaryBitmap bitmap(picture, 6, 24);
    EXPECT_TRUE(std::filesystem::is_regular_file(FileOf(bitmap)));
    EXPECT_EQ(std::filesystem::file_size(FileOf(bitmap)), 54u + 24 * 32);
}

TEST(TemporaryBitmap, IsGoneWithItsOwnerAndIsInNoFolder) {
    const tool::Picture picture = Picture();
    std::string file;
    {
        const tool::TemporaryBitmap bitmap(picture, 0, 30);
        file = FileOf(bitmap);
        EXPECT_NE(std::filesystem::read_symlink(file).string().find("(deleted)"), std::string::npos);
    }
    EXPECT_FALSE(std::filesystem::exists(file));
}

#include "api/NadrelPrinter.h"
#include "image/BaseImage.h"
#include "spool/Spool.h"
#include "tests/image/BmpBuilder.h"
#include "tests/image/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <vector>

// Pictures from files on a disk.
namespace nadrel {

namespace {

class LinuxPicture : public testing::Test {
  protected:
    LinuxPicture() {
        ResetLinkState();
        SerialLinkOpen = 1;
    }
    ~LinuxPicture() override { ResetLinkState(); }

    int32_t PrintAll(const std::u16string &name) {
        const int32_t result = BmpSaveSpool(name.c_str(), 0, 0);
        NormalBmpSaveSpool(name.c_str());
        CompressedBmpSaveSpool(name.c_str());
        return result;
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(LinuxPicture, IsPrintedFromAFileWithAnyName) {
    folder.Put("Grüße €.bmp", BmpBuilder::OneBit(8, 1, [](int32_t, int32_t) { return 0; }).Bytes());
    EXPECT_EQ(PrintAll(folder.Name() + u"/Gr\u00FC\u00DFe \u20AC.bmp"), 120);
    EXPECT_EQ(SpoolLength, 120 + 114 + 19);
}

TEST_F(LinuxPicture, DirectoriesDevicesAndPipesAreMinusOneAtOnce) {
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    for (const std::u16string &name : {folder.Name(), folder.Name("pipe"), std::u16string(u"/dev/zero"),
                                       std::u16string(u"/dev/urandom"), std::u16string(u"/proc/self/maps")})
        EXPECT_EQ(PrintAll(name), -1);
    EXPECT_EQ(SpoolLength, 0);
}

TEST_F(LinuxPicture, AFileOfHolesTakesNoMemory) {
    BmpBuilder builder = BmpBuilder::Colour(20, 20, [](int32_t, int32_t) { return kWhite; });
    builder.width = 20000;
    builder.height = 50000;
    builder.claimedFileBytes = 54 + 3000000000;
    builder.claimedImageBytes = 3000000000;
    folder.Put("huge.bmp", builder.Bytes());
    std::error_code failed;
    std::filesystem::resize_file(folder.Path("huge.bmp"), 54 + 3000000000, failed);
    if (failed)
        GTEST_SKIP() << "the disk takes no file of 3 GB";
    EXPECT_EQ(PrintAll(folder.Name("huge.bmp")), ERR_SPOOL_LIMIT);
    EXPECT_EQ(SpoolLength, 0);
}

TEST_F(LinuxPicture, WhatAnImageSavesIsLoadedAndPrinted) {
    BaseImage image;
    ASSERT_EQ(image.CreateBlank(40, 30, 0, false, 0x00808080), 1);
    ASSERT_EQ(image.SaveBmp(folder.Name("saved.bmp").c_str()), 1);
    EXPECT_EQ(folder.Get("saved.bmp").size(), 54U + 120 * 30);
    BaseImage loaded;
    EXPECT_EQ(loaded.LoadBmp(folder.Name("saved.bmp").c_str()), 1);
    EXPECT_EQ(loaded.GetSize(), (Size{40, 30}));
    EXPECT_GT(PrintAll(folder.Name("saved.bmp")), 0);
}

} // namespace nadrel

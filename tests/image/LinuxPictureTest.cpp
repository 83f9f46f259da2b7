#include "api/NadrelPrinter.h"
#include "image/BaseImage.h"
#include "spool/Spool.h"
#include "tests/TemporaryFolder.h"
#include "tests/image/BmpBuilder.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
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

long LargestResidentKilobytes() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

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
    constexpr int64_t pixelBytes = 3'000'000'000;
    for (const auto &[width, height] : {std::pair(20000, 50000), std::pair(1'000'000'000, 1)}) {
        BmpBuilder builder;
        builder.width = width;
        builder.height = height;
        builder.claimedFileBytes = 54 + pixelBytes;
        builder.claimedImageBytes = pixelBytes;
        folder.Put("huge.bmp", builder.Bytes());
        std::error_code failed;
        std::filesystem::resize_file(folder.Path("huge.bmp"), 54 + pixelBytes, failed);
        if (failed)
            GTEST_SKIP() << "the disk takes no file of 3 GB";
        const long before = LargestResidentKilobytes();
        EXPECT_EQ(PrintAll(folder.Name("huge.bmp")), ERR_SPOOL_LIMIT);
        EXPECT_EQ(SpoolLength, 0);
        EXPECT_LT(LargestResidentKilobytes() - before, 16 * 1024);
    }
}

TEST_F(LinuxPicture, NothingIsOpenedThatIsNoFile) {
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, folder.Path("pipe").c_str(), IN_OPEN), 0);
    EXPECT_EQ(PrintAll(folder.Name("pipe")), -1);
    inotify_event event;
    EXPECT_EQ(read(watch, &event, sizeof event), -1);
    EXPECT_EQ(errno, EAGAIN) << "the pipe was opened, which lets go a program that waits at its other end";
    close(watch);
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

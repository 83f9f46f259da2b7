#include "platform/File.h"

#include "tests/TemporaryFolder.h"

#include "platform/Error.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using platform::File;
using platform::FileUse;

class LinuxFile : public testing::Test {
  protected:
    TemporaryFolder folder;
    File file;
};

} // namespace

TEST_F(LinuxFile, ReadsFromAnyPlaceUpToTheEnd) {
    folder.Put("a", {1, 2, 3, 4, 5});
    ASSERT_TRUE(file.Open(folder.Name("a").c_str(), FileUse::read));
    uint64_t size = 0;
    EXPECT_TRUE(file.Size(size));
    EXPECT_EQ(size, 5U);
    std::array<uint8_t, 8> bytes{};
    uint32_t got = 0;
    EXPECT_TRUE(file.Read(3, bytes.data(), 8, got));
    EXPECT_EQ(got, 2U);
    EXPECT_EQ(bytes, (std::array<uint8_t, 8>{4, 5}));
    EXPECT_TRUE(file.Read(5, bytes.data(), 8, got));
    EXPECT_EQ(got, 0U);
    EXPECT_TRUE(file.Read(0x7FFFFFFFFFFF, bytes.data(), 8, got));
    EXPECT_EQ(got, 0U);
}

TEST_F(LinuxFile, WritesBehindWhatWasWrittenIntoAnEmptiedFile) {
    folder.Put("a", {9, 9, 9, 9, 9});
    ASSERT_TRUE(file.Open(folder.Name("a").c_str(), FileUse::rewrite));
    const uint8_t bytes[] = {1, 2, 3};
    EXPECT_TRUE(file.Write(bytes, 2));
    EXPECT_TRUE(file.Write(bytes + 2, 1));
    file.Close();
    EXPECT_EQ(folder.Get("a"), (std::vector<uint8_t>{1, 2, 3}));
}

TEST_F(LinuxFile, RewritingMakesAFileThatIsNotThere) {
    ASSERT_TRUE(file.Open(folder.Name("new").c_str(), FileUse::rewrite));
    file.Close();
    EXPECT_TRUE(folder.Has("new"));
}

TEST_F(LinuxFile, NamesAreUtf16AndPathsUtf8) {
    folder.Put("Bon f\xC3\xBCr \xE2\x82\xAC \xF0\x9F\x98\x80", {7});
    EXPECT_TRUE(file.Open((folder.Name() + u"/Bon f\u00FCr \u20AC \U0001F600").c_str(), FileUse::read));
}

TEST_F(LinuxFile, WhatIsNotThereDoesNotOpen) {
    EXPECT_FALSE(file.Open(folder.Name("none").c_str(), FileUse::read));
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(ENOENT));
    EXPECT_FALSE(folder.Has("none"));
    EXPECT_FALSE(file.Open(u"", FileUse::read));
    EXPECT_FALSE(file.Open(nullptr, FileUse::read));
    EXPECT_FALSE(file.Open(nullptr, FileUse::rewrite));
}

TEST_F(LinuxFile, ADirectoryDoesNotOpen) {
    EXPECT_FALSE(file.Open(folder.Name().c_str(), FileUse::read));
    EXPECT_FALSE(file.Open(folder.Name().c_str(), FileUse::rewrite));
}

TEST_F(LinuxFile, ADeviceDoesNotOpen) {
    for (const char16_t *name : {u"/dev/zero", u"/dev/null", u"/dev/full", u"/dev/urandom", u"/dev/tty"}) {
        EXPECT_FALSE(file.Open(name, FileUse::read));
        EXPECT_FALSE(file.Open(name, FileUse::rewrite));
    }
}

TEST_F(LinuxFile, APipeDoesNotOpenAndIsNotWaitedFor) {
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(file.Open(folder.Name("pipe").c_str(), FileUse::read));
    EXPECT_FALSE(file.Open(folder.Name("pipe").c_str(), FileUse::rewrite));
}

TEST_F(LinuxFile, NothingStaysOpenWhereOpeningFails) {
    const int before = dup(0);
    close(before);
    file.Open(folder.Name().c_str(), FileUse::read);
    file.Open(u"/dev/zero", FileUse::read);
    const int after = dup(0);
    close(after);
    EXPECT_EQ(before, after);
}

TEST_F(LinuxFile, IsClosedByOpeningAnotherAndAtItsEnd) {
    folder.Put("a", {1});
    const int before = dup(0);
    close(before);
    {
        File two;
        two.Open(folder.Name("a").c_str(), FileUse::read);
        two.Open(folder.Name("a").c_str(), FileUse::read);
        EXPECT_NE(fcntl(before, F_GETFD), -1);
    }
    const int after = dup(0);
    close(after);
    EXPECT_EQ(before, after);
}

TEST_F(LinuxFile, CallsOnAFileThatIsNotOpenFail) {
    uint64_t size = 0;
    uint32_t got = 1;
    uint8_t byte = 0;
    EXPECT_FALSE(file.Size(size));
    EXPECT_FALSE(file.Read(0, &byte, 1, got));
    EXPECT_EQ(got, 0U);
    EXPECT_FALSE(file.Write(&byte, 1));
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EBADF));
    file.Close();
}

TEST_F(LinuxFile, IsNotInheritedByPrograms) {
    folder.Put("a", {1});
    const int next = dup(0);
    close(next);
    ASSERT_TRUE(file.Open(folder.Name("a").c_str(), FileUse::read));
    EXPECT_EQ(fcntl(next, F_GETFD), FD_CLOEXEC);
}

TEST_F(LinuxFile, AWriteThatTheSystemDoesNotTakeWholeFails) {
    ASSERT_TRUE(file.Open(folder.Name("a").c_str(), FileUse::rewrite));
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto ignored = signal(SIGXFSZ, SIG_IGN);
    const rlimit small{100, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const std::vector<uint8_t> bytes(200);
    EXPECT_FALSE(file.Write(bytes.data(), 200));
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EFBIG));
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, ignored);
}

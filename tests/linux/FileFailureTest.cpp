#include "platform/File.h"

#include "platform/Error.h"
#include "tests/TemporaryFolder.h"
#include "tests/linux/Support.h"
#include "tests/linux/SystemFaults.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/stat.h>

namespace {

using platform::File;
using platform::FileUse;
using Bytes = std::vector<uint8_t>;

const Bytes kContent = {1, 2, 3, 4, 5};

// A file of five bytes, which can be opened again, and leaves no descriptor, whatever has failed before.
class FileFailure : public testing::Test {
  protected:
    void SetUp() override { folder.Put("a", kContent); }
    void TearDown() override {
        file.Close();
        EXPECT_TRUE(NoDescriptorIsLost(descriptors));
        EXPECT_TRUE(Open(FileUse::rewrite));
        EXPECT_TRUE(file.Write(kContent.data(), 5));
        EXPECT_TRUE(Open(FileUse::read));
        EXPECT_EQ(Read(), kContent);
    }

    bool Open(FileUse use) { return file.Open(folder.Name("a").c_str(), use); }
    // All of it; nothing where the call fails.
    Bytes Read() {
        Bytes bytes(5);
        succeeded = file.Read(0, bytes.data(), 5, got);
        bytes.resize(got);
        return bytes;
    }
    bool Write() { return file.Write(kContent.data(), 5); }
    static int Error() { return static_cast<int>(platform::LastError()); }

    const std::ptrdiff_t descriptors = OpenDescriptors();
    TemporaryFolder folder;
    File file;
    bool succeeded = false;
    uint32_t got = 99;
};

TEST_F(FileFailure, AFileThatMayNotBeLookedAtDoesNotOpen) {
    for (const auto use : {FileUse::read, FileUse::rewrite}) {
        const SystemFault fault({.call = SystemCall::stat, .error = EACCES});
        EXPECT_FALSE(Open(use));
        EXPECT_EQ(Error(), EACCES);
    }
    EXPECT_EQ(folder.Get("a"), kContent);
}

TEST_F(FileFailure, AFileThatTheSystemDoesNotOpenFailsWithItsReason) {
    for (const auto use : {FileUse::read, FileUse::rewrite}) {
        const SystemFault fault({.call = SystemCall::open, .error = ENFILE});
        EXPECT_FALSE(Open(use));
        EXPECT_EQ(Error(), ENFILE);
    }
    EXPECT_EQ(folder.Get("a"), kContent);
}

TEST_F(FileFailure, AnInterruptedOpenIsBegunAgain) {
    const SystemFault fault({.call = SystemCall::open, .error = EINTR, .times = 3});
    EXPECT_TRUE(Open(FileUse::read));
    EXPECT_EQ(fault.Met(), 3);
    EXPECT_EQ(Read(), kContent);
}

TEST_F(FileFailure, APipePutInPlaceOfTheFileAfterTheLookAtItIsNotUsed) {
    const auto replace = [&] {
        unlink(folder.Path("a").c_str());
        mkfifo(folder.Path("a").c_str(), 0600);
    };
    for (const auto use : {FileUse::read, FileUse::rewrite}) {
        const SystemFault fault({.call = SystemCall::open, .answer = std::nullopt, .before = replace});
        EXPECT_FALSE(Open(use));
        EXPECT_EQ(Error(), EINVAL);
        EXPECT_EQ(fault.Met(), 1);
        unlink(folder.Path("a").c_str());
        folder.Put("a", kContent);
    }
}

TEST_F(FileFailure, AFileThatCannotBeLookedAtOnceOpenIsNotUsed) {
    for (const auto use : {FileUse::read, FileUse::rewrite}) {
        const SystemFault fault({.call = SystemCall::fstat, .error = EIO});
        EXPECT_FALSE(Open(use));
        EXPECT_EQ(Error(), EINVAL);
    }
    EXPECT_EQ(folder.Get("a"), kContent);
}

TEST_F(FileFailure, AFileThatCannotBeEmptiedIsNotRewritten) {
    const SystemFault fault({.call = SystemCall::ftruncate, .error = EPERM});
    EXPECT_FALSE(Open(FileUse::rewrite));
    EXPECT_EQ(Error(), EINVAL);
    EXPECT_EQ(folder.Get("a"), kContent);
}

TEST_F(FileFailure, ASizeThatTheSystemDoesNotTellIsAFailure) {
    ASSERT_TRUE(Open(FileUse::read));
    uint64_t size = 99;
    const SystemFault fault({.call = SystemCall::fstat, .error = EIO});
    EXPECT_FALSE(file.Size(size));
    EXPECT_EQ(Error(), EIO);
    EXPECT_EQ(size, 99U);
    EXPECT_TRUE(file.Size(size));
    EXPECT_EQ(size, 5U);
}

TEST_F(FileFailure, AnInterruptedReadIsBegunAgain) {
    ASSERT_TRUE(Open(FileUse::read));
    const SystemFault fault({.call = SystemCall::pread, .error = EINTR, .times = 2});
    EXPECT_EQ(Read(), kContent);
    EXPECT_EQ(fault.Met(), 2);
}

TEST_F(FileFailure, AReadThatFailsGivesNothing) {
    ASSERT_TRUE(Open(FileUse::read));
    const SystemFault fault({.call = SystemCall::pread, .error = EIO});
    EXPECT_EQ(Read(), Bytes());
    EXPECT_FALSE(succeeded);
    EXPECT_EQ(Error(), EIO);
    EXPECT_EQ(Read(), kContent) << "the next one reads";
}

TEST_F(FileFailure, AnInterruptedWriteIsBegunAgain) {
    ASSERT_TRUE(Open(FileUse::rewrite));
    const SystemFault fault({.call = SystemCall::write, .error = EINTR, .times = 2});
    EXPECT_TRUE(Write());
    EXPECT_EQ(fault.Met(), 2);
    EXPECT_EQ(folder.Get("a"), kContent);
}

TEST_F(FileFailure, AWriteThatFailsTellsWhy) {
    for (const int reason : {EIO, ENOSPC, EDQUOT}) {
        ASSERT_TRUE(Open(FileUse::rewrite));
        const SystemFault fault({.call = SystemCall::write, .error = reason});
        EXPECT_FALSE(Write());
        EXPECT_EQ(Error(), reason);
        EXPECT_EQ(folder.Get("a"), Bytes());
    }
}

TEST_F(FileFailure, AWriteOfWhichTheSystemTakesNothingFailsForWantOfSpace) {
    ASSERT_TRUE(Open(FileUse::rewrite));
    const SystemFault fault({.call = SystemCall::write, .answer = 0});
    EXPECT_FALSE(Write());
    EXPECT_EQ(Error(), ENOSPC);
}

} // namespace

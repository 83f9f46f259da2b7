#include "platform/Memory.h"

#include "platform/linux/MemoryProbe.h"
#include "tests/linux/Support.h"
#include "tests/linux/SystemFaults.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

namespace {

using platform::MemoryIsReadable;
using platform::Probe;

const size_t kPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));

// Readable pages with one behind them that nobody may read.
class Pages {
  public:
    explicit Pages(size_t readable) : count(readable) {
        const size_t size = (count + 1) * kPage;
        begin = static_cast<uint8_t *>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(begin + count * kPage, kPage, PROT_NONE);
    }
    ~Pages() { munmap(begin, (count + 1) * kPage); }
    Pages(const Pages &) = delete;
    Pages &operator=(const Pages &) = delete;

    uint8_t *At(size_t page) const { return begin + page * kPage; }
    uint8_t *End() const { return At(count); }

  private:
    size_t count;
    uint8_t *begin;
};

TEST(Memory, OwnMemoryIsReadableToItsLastByte) {
    const Pages pages(3);
    EXPECT_TRUE(MemoryIsReadable(pages.At(0), 3 * kPage));
    EXPECT_TRUE(MemoryIsReadable(pages.End() - 1, 1));
    EXPECT_TRUE(MemoryIsReadable(pages.At(0) + 1, 3 * kPage - 1));
}

TEST(Memory, ARangeThatEndsInUnreadableMemoryIsNotReadable) {
    const Pages pages(3);
    EXPECT_FALSE(MemoryIsReadable(pages.At(0), 3 * kPage + 1));
    EXPECT_FALSE(MemoryIsReadable(pages.End() - 1, 2));
    EXPECT_FALSE(MemoryIsReadable(pages.End(), 1));
}

TEST(Memory, AnUnreadablePageInTheMiddleIsFound) {
    const Pages pages(5);
    mprotect(pages.At(2), kPage, PROT_NONE);
    EXPECT_FALSE(MemoryIsReadable(pages.At(0), 5 * kPage));
    EXPECT_TRUE(MemoryIsReadable(pages.At(0), 2 * kPage));
    EXPECT_TRUE(MemoryIsReadable(pages.At(3), 2 * kPage));
}

TEST(Memory, ReadOnlyMemoryAndMemoryNeverTouchedAreReadable) {
    const Pages pages(2);
    mprotect(pages.At(0), kPage, PROT_READ);
    EXPECT_TRUE(MemoryIsReadable(pages.At(0), 2 * kPage));
    EXPECT_TRUE(MemoryIsReadable("text", 5));
}

TEST(Memory, NothingIsReadableAnywhere) {
    EXPECT_TRUE(MemoryIsReadable(nullptr, 0));
    EXPECT_TRUE(MemoryIsReadable(reinterpret_cast<void *>(UINTPTR_MAX), 0));
}

TEST(Memory, WildPointersAreNotReadable) {
    EXPECT_FALSE(MemoryIsReadable(nullptr, 1));
    EXPECT_FALSE(MemoryIsReadable(reinterpret_cast<void *>(8), 409600));
    EXPECT_FALSE(MemoryIsReadable(reinterpret_cast<void *>(UINTPTR_MAX), 1));
    EXPECT_FALSE(MemoryIsReadable(reinterpret_cast<void *>(UINTPTR_MAX / 2 + 1), 1));
}

TEST(Memory, ARangeRoundTheEndOfTheAddressSpaceIsNotReadable) {
    uint8_t byte = 0;
    EXPECT_FALSE(MemoryIsReadable(&byte, SIZE_MAX));
    EXPECT_FALSE(MemoryIsReadable(&byte, UINTPTR_MAX - reinterpret_cast<uintptr_t>(&byte) + 2));
    EXPECT_FALSE(MemoryIsReadable(reinterpret_cast<void *>(UINTPTR_MAX), 2));
}

TEST(Memory, TheLargestCountsAreAnswered) {
    const Pages pages(4);
    EXPECT_FALSE(MemoryIsReadable(pages.At(0), INT32_MAX));
    EXPECT_FALSE(MemoryIsReadable(pages.At(0), UINTPTR_MAX - reinterpret_cast<uintptr_t>(pages.At(0))));
}

TEST(Memory, RangesOverSeveralThousandPagesAreLookedAtInWhole) {
    const Pages pages(3000);
    EXPECT_TRUE(MemoryIsReadable(pages.At(0) + 100, 3000 * kPage - 100));
    EXPECT_FALSE(MemoryIsReadable(pages.At(0) + 100, 3000 * kPage - 99));
    for (const size_t hole : {1023U, 1024U, 2047U, 2048U, 2999U}) {
        mprotect(pages.At(hole), kPage, PROT_NONE);
        EXPECT_FALSE(MemoryIsReadable(pages.At(0) + 100, 3000 * kPage - 100)) << hole;
        mprotect(pages.At(hole), kPage, PROT_READ);
    }
}

TEST(Memory, AskingNeedsNoDescriptor) {
    const Pages pages(1);
    const NoDescriptorsLeft none;
    EXPECT_TRUE(MemoryIsReadable(pages.At(0), kPage));
    EXPECT_FALSE(MemoryIsReadable(pages.At(0), kPage + 1));
}

TEST(Memory, BothWaysToAskAgree) {
    const Pages pages(platform::kMostProbed);
    for (const auto &ask : {platform::ProbeByCopy, platform::ProbeByPipe}) {
        const auto begin = reinterpret_cast<uintptr_t>(pages.At(0));
        EXPECT_EQ(ask(begin + 5, platform::kMostProbed), Probe::readable);
        EXPECT_EQ(ask(begin + kPage, platform::kMostProbed), Probe::unreadable);
        EXPECT_EQ(ask(begin + platform::kMostProbed * kPage, 1), Probe::unreadable);
        EXPECT_EQ(ask(0, 1), Probe::unreadable);
        EXPECT_EQ(ask(UINTPTR_MAX, 1), Probe::unreadable);
    }
}

TEST(Memory, AskingByPipeLeavesNoDescriptorAndSaysWhenItCannotAsk) {
    const auto address = reinterpret_cast<uintptr_t>("text");
    const auto before = OpenDescriptors();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(platform::ProbeByPipe(address, 1), Probe::readable);
    EXPECT_TRUE(NoDescriptorIsLost(before));
    const NoDescriptorsLeft none;
    EXPECT_EQ(platform::ProbeByPipe(address, 1), Probe::refused);
}

TEST(Memory, WhereTheSystemDoesNotCopyMemoryAPipeIsAsked) {
    const Pages pages(3);
    const SystemFault refusal(
        {.call = SystemCall::syscall, .error = EPERM, .times = 1000, .only = SYS_process_vm_readv});
    EXPECT_TRUE(MemoryIsReadable(pages.At(0), 3 * kPage));
    EXPECT_FALSE(MemoryIsReadable(pages.At(0), 3 * kPage + 1));
    EXPECT_EQ(refusal.Met(), 2);
    const NoDescriptorsLeft none;
    EXPECT_FALSE(MemoryIsReadable(pages.At(0), 3 * kPage)) << "nothing is read that nobody has vouched for";
}

} // namespace

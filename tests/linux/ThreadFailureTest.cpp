#include "platform/Threads.h"

#include "platform/Error.h"
#include "platform/Notification.h"
#include "platform/SerialPort.h"
#include "platform/linux/NotificationHandler.h"
#include "tests/linux/OutputQueue.h"
#include "tests/linux/PseudoTerminal.h"
#include "tests/linux/Support.h"
#include "tests/platform/ScriptedAllocation.h"

#include <gtest/gtest.h>

namespace {

using platform::Thread;

int Error() {
    return static_cast<int>(platform::LastError());
}

Thread *Start() {
    return platform::StartThread([]() -> uint32_t { return 42; }, platform::ThreadPriority::normal);
}

// Threads can be started, and none is left, whatever has failed before.
class ThreadFailure : public testing::Test {
  protected:
    void SetUp() override {
        std::thread([] {}).join(); // a sanitizer starts a thread of its own with the first one
        threads = RunningThreads();
        descriptors = OpenDescriptors();
    }
    void TearDown() override {
        EXPECT_TRUE(NoDescriptorIsLost(descriptors));
        EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; }));
        Thread *thread = Start();
        ASSERT_NE(thread, nullptr);
        EXPECT_TRUE(platform::WaitForThread(thread, 60'000));
        EXPECT_EQ(platform::ThreadExitCode(thread), 42U);
        platform::DeleteThread(thread);
    }

    std::ptrdiff_t threads = 0;
    std::ptrdiff_t descriptors = 0;
};

TEST_F(ThreadFailure, AThreadNeedsDescriptorsForBothItsEvents) {
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    for (rlim_t few = 0; few < 2; ++few) {
        const DescriptorsTakenBelow taken(64);
        const rlimit tight = {64 + few, limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &tight);
        EXPECT_EQ(Start(), nullptr) << few;
        EXPECT_EQ(Error(), EMFILE);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

TEST_F(ThreadFailure, AThreadThatTheSystemDoesNotStartFailsWithItsReason) {
    const NoThreadsLeft none;
    EXPECT_EQ(Start(), nullptr);
    EXPECT_EQ(Error(), EAGAIN);
}

TEST_F(ThreadFailure, WithoutMemoryNoThreadStarts) {
    if (!scripted::allocation::CanFail())
        GTEST_SKIP() << "the sanitizer has an operator new of its own";
    Thread *thread = nullptr;
    int nth = 0;
    while (thread == nullptr && nth < 100) {
        scripted::allocation::FailNth(++nth, 0, SIZE_MAX);
        thread = Start();
        const int failures = scripted::allocation::Failures();
        scripted::allocation::Allow();
        EXPECT_EQ(thread == nullptr, failures != 0) << nth;
        EXPECT_TRUE(thread != nullptr || Error() == ENOMEM) << nth;
    }
    EXPECT_GT(nth, 1);
    platform::DeleteThread(thread);
}

TEST_F(ThreadFailure, WithoutAThreadNotificationsAreDroppedUntilTheyCanBeOpened) {
    std::atomic<uint32_t> told = 0;
    const auto hear = [](uint32_t, uint32_t wParam, intptr_t, void *context) {
        *static_cast<std::atomic<uint32_t> *>(context) += wParam;
    };
    platform::SetNotificationHandler(hear, &told);
    {
        const NoThreadsLeft none;
        platform::OpenNotifications();
        EXPECT_EQ(Error(), EAGAIN);
    }
    platform::PostNotification(0xC001, 1, 0);
    platform::OpenNotifications();
    platform::PostNotification(0xC001, 2, 0);
    EXPECT_TRUE(Await([&] { return told == 2; })) << "and the first one never comes";
    platform::CloseNotifications();
    platform::SetNotificationHandler(nullptr, nullptr);
}

TEST_F(ThreadFailure, WithoutAThreadToCloseItAPortIsClosedByTheCaller) {
    PseudoTerminal line;
    const auto before = OpenDescriptors();
    const auto port = platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain);
    ASSERT_NE(port, platform::kInvalidPort);
    const OutputQueue queue(static_cast<int>(port), 3);
    const NoThreadsLeft none;
    EXPECT_TRUE(platform::ClosePort(port));
    EXPECT_EQ(queue.Dropped(), 1);
    EXPECT_TRUE(NoDescriptorIsLost(before));
}

} // namespace

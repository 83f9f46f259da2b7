#include "platform/Threads.h"

#include "platform/Clock.h"
#include "platform/Error.h"
#include "platform/SerialPort.h"
#include "platform/Socket.h"
#include "tests/linux/Listener.h"
#include "tests/linux/PseudoTerminal.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using platform::DeleteThread;
using platform::kStillActive;
using platform::StartThread;
using platform::TerminateThread;
using platform::Thread;
using platform::ThreadExitCode;
using platform::ThreadPriority;
using platform::WaitForThread;

constexpr uint32_t kLong = 600'000; // milliseconds: never in a test

// What the bodies, which take no argument, and the tests share.
std::atomic<int> started = 0;
std::atomic<int> unwound = 0;
std::atomic<uint64_t> rounds = 0;
platform::PortHandle port = platform::kInvalidPort;
platform::SocketHandle connection = -1;
Thread *other = nullptr;

struct Unwound {
    ~Unwound() { ++unwound; }
};

Thread *Start(platform::ThreadBody body) {
    started = 0;
    unwound = 0;
    rounds = 0;
    return StartThread(body, ThreadPriority::normal);
}

// Starts the body, which sets `started` and blocks, and expects that terminating it ends it there.
void ExpectReleased(platform::ThreadBody body) {
    Thread *thread = Start(body);
    ASSERT_NE(thread, nullptr);
    EXPECT_TRUE(Await([] { return started != 0; }));
    EXPECT_FALSE(WaitForThread(thread, 20));
    const Stopwatch watch;
    TerminateThread(thread, 77);
    EXPECT_LT(watch.Elapsed(), 10'000);
    EXPECT_EQ(ThreadExitCode(thread), 77U);
    EXPECT_EQ(unwound, 1) << "what the body owns is released";
    DeleteThread(thread);
}

TEST(Threads, TheResultOfTheBodyIsTheExitCode) {
    Thread *thread = Start([]() -> uint32_t { return 42; });
    ASSERT_NE(thread, nullptr);
    EXPECT_TRUE(WaitForThread(thread, kLong));
    EXPECT_EQ(ThreadExitCode(thread), 42U);
    DeleteThread(thread);
}

TEST(Threads, AThreadAtWorkIsStillActive) {
    Thread *thread = Start([]() -> uint32_t {
        platform::Sleep(kLong);
        return 1;
    });
    EXPECT_EQ(ThreadExitCode(thread), kStillActive);
    const Stopwatch watch;
    EXPECT_FALSE(WaitForThread(thread, 30));
    EXPECT_GE(watch.Elapsed(), 30);
    DeleteThread(thread);
}

TEST(Threads, BothPrioritiesStart) {
    for (const auto priority : {ThreadPriority::highest, ThreadPriority::normal}) {
        Thread *thread = StartThread([]() -> uint32_t { return 5; }, priority);
        ASSERT_NE(thread, nullptr);
        EXPECT_TRUE(WaitForThread(thread, kLong));
        EXPECT_EQ(ThreadExitCode(thread), 5U);
        DeleteThread(thread);
    }
}

TEST(Threads, NoThreadHasAlwaysEndedAndIsIgnored) {
    EXPECT_TRUE(WaitForThread(nullptr, kLong));
    TerminateThread(nullptr, 1);
    DeleteThread(nullptr);
}

TEST(Threads, AnEndedThreadKeepsItsExitCodeWhenTerminated) {
    Thread *thread = Start([]() -> uint32_t { return 1; });
    EXPECT_TRUE(WaitForThread(thread, kLong));
    TerminateThread(thread, 9);
    TerminateThread(thread, 9);
    EXPECT_EQ(ThreadExitCode(thread), 1U);
    EXPECT_TRUE(WaitForThread(thread, 0));
    DeleteThread(thread);
}

TEST(Threads, ATerminatedThreadRunsNoMore) {
    Thread *thread = Start([]() -> uint32_t {
        for (;; ++rounds)
            platform::Sleep(0);
    });
    EXPECT_TRUE(Await([] { return rounds > 10; }));
    TerminateThread(thread, 0);
    const uint64_t last = rounds;
    std::this_thread::yield();
    EXPECT_EQ(rounds, last);
    EXPECT_EQ(ThreadExitCode(thread), 0U);
    EXPECT_TRUE(WaitForThread(thread, 0));
    DeleteThread(thread);
}

TEST(Threads, TerminatingReleasesASleep) {
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        ++started;
        platform::Sleep(kLong);
        return 1;
    });
}

TEST(Threads, TerminatingReleasesATimedEvent) {
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        platform::TimedEvent event;
        ++started;
        event.Wait(kLong);
        return 1;
    });
}

TEST(Threads, TerminatingReleasesAWaitForAnotherThread) {
    other = StartThread(
        []() -> uint32_t {
            platform::Sleep(kLong);
            return 1;
        },
        ThreadPriority::normal);
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        ++started;
        WaitForThread(other, kLong);
        return 1;
    });
    EXPECT_EQ(ThreadExitCode(other), kStillActive);
    DeleteThread(other);
}

class PortThreads : public testing::Test {
  protected:
    void SetUp() override {
        port = platform::OpenPort(line.Name().c_str(), platform::PortAccess::plain);
        ASSERT_NE(port, platform::kInvalidPort);
        ASSERT_TRUE(platform::SetPortEvents(port, platform::PortEvents::received));
        ASSERT_TRUE(platform::SetPortTimeouts(port, {0, 0, kLong, 0, kLong}));
    }
    void TearDown() override { EXPECT_TRUE(platform::ClosePort(port)); }

    PseudoTerminal line;
};

TEST_F(PortThreads, TerminatingReleasesAWaitForReceivedCharacters) {
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        ++started;
        platform::PortEvents events;
        platform::WaitPortEvent(port, events);
        return 1;
    });
}

TEST_F(PortThreads, TerminatingReleasesARead) {
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        ++started;
        uint8_t byte;
        uint32_t got;
        platform::ReadPort(port, &byte, 1, got);
        return 1;
    });
}

TEST_F(PortThreads, TerminatingReleasesAWriteToAPrinterThatTakesNothing) {
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        ++started;
        const std::vector<uint8_t> much(1'000'000);
        uint32_t taken;
        platform::WritePort(port, much.data(), 1'000'000, taken);
        return 1;
    });
}

TEST_F(PortThreads, TerminatingEndsAThreadThatNeverHasToWait) {
    ASSERT_TRUE(line.Write(std::vector<uint8_t>(16, '\n')));
    Thread *thread = Start([]() -> uint32_t {
        for (;; ++rounds) {
            platform::PortEvents events;
            platform::WaitPortEvent(port, events);
        }
    });
    EXPECT_TRUE(Await([] { return rounds > 10; }));
    TerminateThread(thread, 3);
    EXPECT_EQ(ThreadExitCode(thread), 3U);
    DeleteThread(thread);
}

class SocketThreads : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(ConnectTo(listener, socket));
        connection = socket.Handle();
    }

    Listener listener;
    platform::CAsyncSocket socket;
};

TEST_F(SocketThreads, TerminatingReleasesAReceive) {
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        ++started;
        uint8_t byte;
        platform::Receive(connection, &byte, 1);
        return 1;
    });
}

TEST_F(SocketThreads, TerminatingReleasesASendToAPrinterThatTakesNothing) {
    ExpectReleased([]() -> uint32_t {
        const Unwound guard;
        ++started;
        const std::vector<uint8_t> much(50'000'000);
        uint32_t taken;
        platform::Send(connection, much.data(), 50'000'000, taken);
        return 1;
    });
}

TEST(Threads, AFailureInTheBodyEndsTheThreadWithZero) {
    Thread *thread = Start([]() -> uint32_t { throw std::runtime_error("in the body"); });
    EXPECT_TRUE(WaitForThread(thread, kLong));
    EXPECT_EQ(ThreadExitCode(thread), 0U);
    DeleteThread(thread);
}

TEST(Threads, AThreadThatCatchesEverythingEndsAtItsNextWait) {
    Thread *thread = Start([]() -> uint32_t {
        for (;;) {
            try {
                ++started;
                platform::Sleep(kLong);
            } catch (...) {
                ++unwound;
                if (unwound == 2)
                    throw;
            }
        }
    });
    EXPECT_TRUE(Await([] { return started != 0; }));
    TerminateThread(thread, 8);
    EXPECT_EQ(unwound, 2);
    EXPECT_EQ(ThreadExitCode(thread), 8U);
    DeleteThread(thread);
}

TEST(Threads, TakeNoSignalsOfTheHostButTheirOwnFaults) {
    Thread *thread = Start([]() -> uint32_t {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        for (const int signal : {SIGHUP, SIGINT, SIGALRM, SIGTERM, SIGUSR1, SIGCHLD, SIGPIPE})
            if (sigismember(&mask, signal) != 1)
                return static_cast<uint32_t>(signal);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
            if (sigismember(&mask, fault) != 0)
                return static_cast<uint32_t>(fault);
        return 1000;
    });
    EXPECT_TRUE(WaitForThread(thread, kLong));
    EXPECT_EQ(ThreadExitCode(thread), 1000U)
        << "else the signal that it takes, or the fault that it does not";
    DeleteThread(thread);
}

TEST(Threads, StartingOneLeavesTheSignalsOfTheStarterAsTheyWere) {
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    DeleteThread(Start([]() -> uint32_t { return 1; }));
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    for (int signal = 1; signal < 32; ++signal)
        EXPECT_EQ(sigismember(&after, signal), sigismember(&before, signal)) << signal;
}

TEST(Threads, WithoutDescriptorsThereIsNoThread) {
    const auto threads = RunningThreads();
    {
        const NoDescriptorsLeft none;
        EXPECT_EQ(Start([]() -> uint32_t { return 1; }), nullptr);
        EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EMFILE));
    }
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; })) << RunningThreads() << " of " << threads;
}

TEST(Threads, TheLastErrorIsTheCallingThreadsOwn) {
    uint8_t byte = 0;
    uint32_t taken = 0;
    EXPECT_FALSE(platform::WritePort(-5, &byte, 1, taken));
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EBADF));
    Thread *thread = Start([]() -> uint32_t { return platform::LastError(); });
    EXPECT_TRUE(WaitForThread(thread, kLong));
    EXPECT_EQ(ThreadExitCode(thread), 0U);
    DeleteThread(thread);
}

TEST(Threads, AWaitForAThreadIsUnmovedBySignals) {
    Thread *thread = Start([]() -> uint32_t {
        platform::Sleep(kLong);
        return 1;
    });
    {
        const SignalStorm storm;
        const Stopwatch watch;
        EXPECT_FALSE(WaitForThread(thread, 200));
        EXPECT_GE(watch.Elapsed(), 200);
        EXPECT_LT(watch.Elapsed(), 5'000);
    }
    DeleteThread(thread);
}

TEST(Threads, AThousandLeaveNothing) {
    DeleteThread(Start([]() -> uint32_t { return 1; }));
    const auto threads = RunningThreads();
    const auto descriptors = OpenDescriptors();
    for (int i = 0; i < 1000; ++i) {
        Thread *thread = i % 2 == 0 ? Start([]() -> uint32_t { return 1; }) : Start([]() -> uint32_t {
            platform::Sleep(kLong);
            return 1;
        });
        ASSERT_NE(thread, nullptr);
        DeleteThread(thread);
    }
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; })) << RunningThreads() << " of " << threads;
    EXPECT_TRUE(NoDescriptorIsLost(descriptors));
}

} // namespace

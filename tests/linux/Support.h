#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

// What the tests of the Linux back end share.

// More than any wait in a test takes on a busy machine.
inline constexpr auto kGenerous = std::chrono::seconds(20);

class Stopwatch {
  public:
    // Milliseconds since the start.
    double Elapsed() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }

  private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

// Whether the condition comes true within the generous limit.
template <typename Condition>
bool Await(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + kGenerous;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::yield();
    }
    return true;
}

// Waits until every thread but the calling one is blocked in the system.
inline bool AwaitOthersBlocked() {
    const auto blocked = [](const std::filesystem::path &task) {
        long call = -1; // no number is there while the thread runs
        return task.filename() == std::to_string(gettid()) ||
               (std::ifstream(task / "syscall") >> call && call >= 0);
    };
    return Await([&] {
        const std::filesystem::directory_iterator tasks("/proc/self/task");
        return std::all_of(begin(tasks), end(tasks), blocked);
    });
}

// Where the seam waits.
#ifdef SYS_ppoll_time64
inline constexpr long kWaitCall = SYS_ppoll_time64;
#else
inline constexpr long kWaitCall = SYS_ppoll;
#endif

// The number that /proc shows for a call: of an emulated process the emulating machine's, which the process is told.
inline long ShownNumber(long call) {
    const char *const told = std::getenv(call == kWaitCall ? "NADREL_SHOWN_PPOLL" : "NADREL_SHOWN_FUTEX");
    return told == nullptr ? call : std::strtol(told, nullptr, 10);
}

// Waits until the thread is blocked in the system call.
inline bool AwaitBlocked(pid_t thread, long call = kWaitCall) {
    const std::string path = "/proc/self/task/" + std::to_string(thread) + "/syscall";
    call = ShownNumber(call);
    return Await([&] {
        long current = -1; // no number is there while the thread runs
        return std::ifstream(path) >> current && current == call;
    });
}

inline std::ptrdiff_t CountEntries(const char *folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

// Including the one that counting itself needs.
inline std::ptrdiff_t OpenDescriptors() {
    return CountEntries("/proc/self/fd");
}

// Whether no more are open than before. One that a busy machine closes late, of this test or the one before it, is
// waited for.
inline bool NoDescriptorIsLost(std::ptrdiff_t before) {
    return Await([&] { return OpenDescriptors() <= before; });
}

// The system lists a thread for a moment after it has been joined; its flags then say that it is leaving.
inline bool IsLeaving(const std::filesystem::path &task) {
    constexpr unsigned exiting = 4; // PF_EXITING
    std::ifstream file(task / "stat");
    file.ignore(std::numeric_limits<std::streamsize>::max(), ')'); // its number and name
    std::string state, parent, group, session, terminal, foreground;
    unsigned flags = exiting; // of one that has gone meanwhile
    file >> state >> parent >> group >> session >> terminal >> foreground >> flags;
    return (flags & exiting) != 0;
}

inline std::ptrdiff_t RunningThreads() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::count_if(begin(tasks), end(tasks), [](const auto &task) { return !IsLeaving(task.path()); });
}

// Processor time that the calling thread has used, in milliseconds.
inline double ThreadCpuTime() {
    timespec used;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

// Interrupts the thread that makes it some thousand times a second, with a signal that restarts no system
// call; for ten seconds at most, so that a wait that begins anew every time comes to an end and is found out.
class SignalStorm {
  public:
    SignalStorm() {
        struct sigaction action = {};
        action.sa_handler = [](int) { ++count; };
        sigaction(SIGUSR1, &action, &before);
        sender = std::thread([this, target = pthread_self()] { Blow(target); });
    }
    ~SignalStorm() {
        over = true;
        sender.join();
        sigaction(SIGUSR1, &before, nullptr);
    }
    SignalStorm(const SignalStorm &) = delete;
    SignalStorm &operator=(const SignalStorm &) = delete;

    static int Count() { return count; }

    // Waits for a number of further signals.
    static bool AwaitMore(int signals) {
        return Await([end = count + signals] { return count >= end; });
    }

  private:
    void Blow(pthread_t target) {
        const Stopwatch watch;
        while (!over && watch.Elapsed() < 10'000) {
            pthread_kill(target, SIGUSR1);
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    }

    static inline std::atomic<int> count = 0;
    struct sigaction before = {};
    std::atomic<bool> over = false;
    std::thread sender;
};

// Takes every free descriptor number below `end` away, so that the next one is at least that.
class DescriptorsTakenBelow {
  public:
    explicit DescriptorsTakenBelow(int end) {
        rlimit limit;
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = std::max(limit.rlim_cur, std::min<rlim_t>(limit.rlim_max, 4096));
        setrlimit(RLIMIT_NOFILE, &limit);
        int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
        for (; next >= 0 && next < end; next = fcntl(next, F_DUPFD_CLOEXEC, 0))
            taken.push_back(next);
        close(next);
    }
    ~DescriptorsTakenBelow() {
        for (const int number : taken)
            close(number);
    }
    DescriptorsTakenBelow(const DescriptorsTakenBelow &) = delete;
    DescriptorsTakenBelow &operator=(const DescriptorsTakenBelow &) = delete;

  private:
    std::vector<int> taken;
};

// Leaves no descriptor to be had.
class NoDescriptorsLeft {
  public:
    NoDescriptorsLeft() {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none = {0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptorsLeft() { setrlimit(RLIMIT_NOFILE, &before); }
    NoDescriptorsLeft(const NoDescriptorsLeft &) = delete;
    NoDescriptorsLeft &operator=(const NoDescriptorsLeft &) = delete;

  private:
    rlimit before;
};

// Leaves no thread to be had: the system has no stack for it.
class NoThreadsLeft {
  public:
    NoThreadsLeft() {
        pthread_getattr_default_np(&before);
        pthread_attr_t boundless = before;
        pthread_attr_setstacksize(&boundless, SIZE_MAX - SIZE_MAX / 16);
        pthread_setattr_default_np(&boundless);
    }
    ~NoThreadsLeft() {
        pthread_setattr_default_np(&before);
        pthread_attr_destroy(&before);
    }
    NoThreadsLeft(const NoThreadsLeft &) = delete;
    NoThreadsLeft &operator=(const NoThreadsLeft &) = delete;

  private:
    pthread_attr_t before;
};

// Closes descriptor 0, so that the next one opened is that, and puts it back.
class StandardInputClosed {
  public:
    StandardInputClosed() : kept(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)) { close(STDIN_FILENO); }
    ~StandardInputClosed() {
        if (kept < 0)
            return;
        dup2(kept, STDIN_FILENO);
        close(kept);
    }
    StandardInputClosed(const StandardInputClosed &) = delete;
    StandardInputClosed &operator=(const StandardInputClosed &) = delete;

  private:
    int kept;
};

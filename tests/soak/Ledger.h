#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace soak {

using Milliseconds = std::chrono::duration<double, std::milli>;

// Keeps count of the calls, how long they took, and what was wrong with them. Any thread may use it.
class Ledger {
  public:
    // The call took so long, which must not be longer than the limit.
    void Note(const std::string &call, Milliseconds time, Milliseconds limit);
    void Complain(const std::string &what);

    bool IsClean() const;

    // One line for each kind of call: how often, how long at most, and the limit of that one. Then what was
    // wrong.
    std::string Summary() const;

  private:
    struct Entry {
        uint64_t count = 0;
        Milliseconds longest{0};
        Milliseconds itsLimit{0};
    };

    mutable std::mutex mutex;
    std::map<std::string, Entry> entries;
    std::vector<std::string> complaints; // the first ones
    uint64_t complaintCount = 0;
};

// Ends the program when one call does not come back for minutes.
class Watchdog {
  public:
    Watchdog();
    ~Watchdog();
    Watchdog(const Watchdog &) = delete;
    Watchdog &operator=(const Watchdog &) = delete;

    void Enter(const char *call);
    void Leave() { current = nullptr; }

  private:
    void Watch();

    std::atomic<const char *> current = nullptr;
    std::atomic<std::chrono::steady_clock::time_point> entered{};
    std::atomic<bool> over = false;
    std::thread thread;
};

} // namespace soak

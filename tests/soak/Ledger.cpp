#include "tests/soak/Ledger.h"

#include <cmath>
#include <cstdio>
#include <sstream>
#include <unistd.h>

namespace soak {
namespace {

constexpr auto kPatience = std::chrono::minutes(3);
constexpr size_t kMostComplaints = 20;

std::string Shown(Milliseconds time) {
    return std::to_string(std::lround(time.count())) + " ms";
}

} // namespace

void Ledger::Note(const std::string &call, Milliseconds time, Milliseconds limit) {
    {
        const std::lock_guard lock(mutex);
        Entry &entry = entries[call];
        ++entry.count;
        if (time > entry.longest) {
            entry.longest = time;
            entry.itsLimit = limit;
        }
    }
    if (time > limit)
        Complain(call + " took " + Shown(time) + ", at most " + Shown(limit) + " are allowed");
}

void Ledger::Complain(const std::string &what) {
    const std::lock_guard lock(mutex);
    ++complaintCount;
    if (complaints.size() < kMostComplaints)
        complaints.push_back(what);
}

bool Ledger::IsClean() const {
    const std::lock_guard lock(mutex);
    return complaintCount == 0;
}

std::string Ledger::Summary() const {
    const std::lock_guard lock(mutex);
    std::ostringstream out;
    for (const auto &[call, entry] : entries)
        out << "  " << call << ": " << entry.count << " times, longest " << Shown(entry.longest) << " of "
            << Shown(entry.itsLimit) << "\n";
    for (const std::string &complaint : complaints)
        out << "  WRONG: " << complaint << "\n";
    if (complaintCount > complaints.size())
        out << "  WRONG: " << complaintCount - complaints.size() << " more\n";
    return out.str();
}

Watchdog::Watchdog() : thread([this] { Watch(); }) {}

Watchdog::~Watchdog() {
    over = true;
    thread.join();
}

void Watchdog::Enter(const char *call) {
    entered = std::chrono::steady_clock::now();
    current = call;
}

void Watchdog::Watch() {
    while (!over) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const char *call = current;
        if (call == nullptr || std::chrono::steady_clock::now() - entered.load() < kPatience)
            continue;
        std::fprintf(stderr, "nadrel-soak: %s has not come back for three minutes.\n", call);
        _exit(1);
    }
}

} // namespace soak

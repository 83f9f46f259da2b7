#include "tests/soak/Soak.h"

#include "tests/endtoend/Limits.h"
#include "tests/endtoend/Waiting.h"

#include <algorithm>

using namespace endtoend;

namespace soak {
namespace {

constexpr int32_t kSendTimeout = 500; // ms, over TCP

// For what the machine does besides.
constexpr Milliseconds kSlack{1000 * kSlowdown};

constexpr int32_t Attempts(int32_t timeout) { return std::max(timeout, 200) / 200; }

} // namespace

Soak::Soak(uint64_t seed, std::string printerProgram, std::filesystem::path folder)
    : random(seed), program(std::move(printerProgram)), home(std::move(folder)) {
    SetNotificationHandler(&Handle, this);
    SetSendTimeout(kSendTimeout);
}

Soak::~Soak() {
    ClosePrinter();
    SetNotificationHandler(nullptr, nullptr);
}

void Soak::WarmUp() {
    printer.emplace(program, home / "first");
    for (const Medium each : kEveryMedium) {
        Connect(each, true);
        Print();
        Ask();
        Close();
    }
    StopPrinter();
}

void Soak::RunUntil(std::chrono::steady_clock::time_point end) {
    ReplacePrinter();
    while (std::chrono::steady_clock::now() < end)
        Step();
}

void Soak::Rest() {
    Close();
    StopPrinter();
}

void Soak::Step() {
    if (OneIn(25))
        ReplacePrinter();
    if (!isOpen) {
        ConnectAtRandom();
        return;
    }
    switch (Number(0, 9)) {
    case 0:
        Close();
        break;
    case 1:
    case 2:
        Ask();
        break;
    case 3:
        UseDevices();
        break;
    case 4:
        Disturb();
        break;
    case 5:
        BeRefused();
        break;
    default:
        Compose();
        Print();
        break;
    }
}

void Soak::ReplacePrinter() {
    StopPrinter();
    const std::vector<std::string> faults = RandomFaults();
    printer.emplace(program, home / std::to_string(++printers % 10), faults);
}

// Its host sees it vanish, in order or not.
void Soak::StopPrinter() {
    if (!printer)
        return;
    if (!printer->IsRunning())
        ledger.Complain("the printer ended by itself: " + printer->Complaints());
    else if (OneIn(2) && printer->Stop() != 0)
        ledger.Complain("the printer failed: " + printer->Complaints());
    printer.reset();
}

std::vector<std::string> Soak::RandomFaults() {
    std::vector<std::string> faults;
    const auto add = [&](const char *option, std::optional<int> value = {}) {
        faults.push_back(option);
        if (value)
            faults.push_back(std::to_string(*value));
    };
    stalls = false;
    if (OneIn(6))
        add("--silent");
    if (OneIn(4))
        add("--reply-delay", Number(1, 500));
    if (OneIn(4))
        add("--split-replies");
    if (OneIn(3))
        add("--hang-up-after", Number(1, 20'000));
    if (OneIn(4))
        add("--flip-frames", Number(1, 4));
    if (OneIn(5))
        add("--flood");
    if (OneIn(4))
        add("--swipe-after", Number(0, 300));
    if (OneIn(5)) {
        stalls = true;
        if (OneIn(2))
            add("--paper-out", Number(0, 2000));
        else
            add("--read-rate", Number(1000, 50'000));
    }
    return faults;
}

void Soak::ConnectAtRandom() {
    Connect(OneIn(2) ? Medium::serial : Medium::tcp, OneIn(3));
}

void Soak::Connect(Medium over, bool framed) {
    medium = over;
    const int32_t result =
        over == Medium::serial ? ConnectSerial(Number(0, 2), framed) : ConnectTcp(Number(0, 1), framed);
    isOpen = result == NADREL_SUCCESS;
}

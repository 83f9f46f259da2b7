#pragma once

#include "tests/endtoend/Host.h"
#include "tests/soak/Ledger.h"

#include <optional>
#include <random>

namespace soak {

// A host that connects, prints, asks and closes at random, on both kinds of link, while its printer is replaced by
// ever new ones with faults at random. What it does follows from the seed; how the printer and the clock take it
// does not.
class Soak {
  public:
    // The printers' files are kept in the folder.
    Soak(uint64_t seed, std::string printerProgram, std::filesystem::path folder);
    ~Soak();

    // Uses everything once, so that what the process sets up for good is there before anything is measured.
    void WarmUp();

    void RunUntil(std::chrono::steady_clock::time_point end);

    // Closes the link and ends the printer.
    void Rest();

    const Ledger &GetLedger() const { return ledger; }
    uint64_t Printers() const { return printers; }
    uint64_t Told() const { return told; }

  private:
    void Step();

    void ReplacePrinter();
    void StopPrinter();
    std::vector<std::string> RandomFaults();

    void ConnectAtRandom();
    void Connect(endtoend::Medium over, bool framed);
    int32_t ConnectSerial(int way, bool framed);
    int32_t ConnectTcp(int way, bool framed);
    void Close();
    void Compose();
    void Print();
    void Ask();
    void UseDevices();
    void Disturb();
    void BeRefused();

    // Calls, takes the time, and lets a notification close the link meanwhile, now and then.
    template <typename Call>
    int32_t Timed(const char *name, Milliseconds pauses, Call call);
    Milliseconds SendingLimit(uint64_t bytes) const;
    void ExpectOneOf(const char *call, int32_t result, std::initializer_list<int32_t> allowed);

    static void Handle(uint32_t message, uint32_t wParam, intptr_t lParam, void *soak);
    void CloseFromHandler();

    int Number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }
    bool OneIn(int count) { return Number(1, count) == 1; }

    std::mt19937_64 random;
    std::string program;
    std::filesystem::path home;
    std::optional<endtoend::VirtualPrinter> printer;
    uint64_t printers = 0;
    bool stalls = false; // the present printer may take nothing for a long time
    bool isOpen = false;
    endtoend::Medium medium = endtoend::Medium::serial;

    Ledger ledger;
    Watchdog watchdog;
    std::atomic<uint64_t> told = 0;

    // The host's offer to a notification to close the link.
    enum class Offer { none, made, taken, done };
    std::atomic<Offer> offer = Offer::none;
};

} // namespace soak

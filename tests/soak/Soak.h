#pragma once

#include "tests/endtoend/Host.h"
#include "tests/soak/Ledger.h"

#include <initializer_list>
#include <optional>
#include <random>

namespace soak {

// A host that connects, prints, asks and closes at random, on both kinds of link, while its printer is
// replaced by ever new ones with faults at random. What it does follows from the seed; how the printer and
// the clock take it does not.
class Soak {
  public:
    // The printers' files are kept in the folder.
    Soak(uint64_t seed, std::string printerProgram, std::filesystem::path folder);
    Soak(const Soak &) = delete;
    Soak &operator=(const Soak &) = delete;
    ~Soak();

    // Uses everything once, so that what the process sets up for good is there before anything is measured.
    void WarmUp();

    void RunUntil(std::chrono::steady_clock::time_point end);

    // Closes the link and ends the printer.
    void Rest();

    Ledger &GetLedger() { return ledger; }
    uint64_t Printers() const { return printers; }
    uint64_t Told() const { return told; }
    // Descriptors of ports that did not take their settings: they stay open because the interface says so.
    std::ptrdiff_t KeptOpen() const { return keptOpen; }

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
    void UseClosedLink();
    void BeRefused();
    void Compose();
    void AppendAtRandom();
    void Print();
    void Ask();
    void UseDevices();
    void Disturb();

    // Calls and takes the time: the pauses that the function makes and what its sending may take are allowed.
    // Now and then a notification closes the link meanwhile.
    template <typename Call>
    int32_t Timed(const char *name, Milliseconds pauses, Call call);
    void Allow(const char *call, int32_t result, std::initializer_list<int32_t> allowed);
    Milliseconds SendingTime(uint64_t bytes) const;
    void SettleOffer();

    static void Handle(uint32_t message, uint32_t wParam, intptr_t lParam, void *soak);
    void CloseFromHandler();

    int Number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random); }
    bool OneIn(int count) { return Number(1, count) == 1; }
    std::u16string Text(int longest);
    endtoend::Bytes RandomBytes(int longest);

    std::mt19937_64 random;
    std::string program;
    std::filesystem::path home;
    std::optional<endtoend::VirtualPrinter> printer;
    uint64_t printers = 0;
    bool stalls = false; // the present printer may take nothing for a long time
    bool isOpen = false;
    bool isFramed = false;
    endtoend::Medium medium = endtoend::Medium::serial;
    std::ptrdiff_t keptOpen = 0;

    Ledger ledger;
    Watchdog watchdog;
    std::atomic<uint64_t> told = 0;

    bool offersClosing = false; // not before everything has been used once
    // Whether a notification may close the link, or has.
    enum class Offer { none, made, taken, done };
    std::atomic<Offer> offer = Offer::none;
    bool interrupted = false; // the last call, by a notification that closed the link
};

} // namespace soak

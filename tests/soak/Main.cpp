#include "tests/TemporaryFolder.h"
#include "tests/endtoend/Limits.h"
#include "tests/endtoend/Resources.h"
#include "tests/soak/Soak.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace {

using namespace endtoend;

struct Options {
    double minutes = 0;
    double seconds = 0;
    std::string printer;
    uint64_t seed = std::random_device{}();

    std::chrono::steady_clock::duration Time() const {
        return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
            std::chrono::duration<double>(60 * minutes + seconds));
    }
};

struct Footprint {
    Resources used = UsedNow();
    size_t allocated = AllocatedBytes();
    size_t resident = ResidentBytes();
};

std::ostream &operator<<(std::ostream &out, const Footprint &footprint) {
    return out << footprint.used << ", " << footprint.allocated / 1024 << " KB allocated, "
               << footprint.resident / 1024 << " KB resident";
}

// What the bookkeeping of the soak itself and the allocator's caches may add.
constexpr size_t kAllocatedMore = 64 * 1024;
constexpr size_t kResidentMore = 16 * 1024 * 1024;

bool HasLeaked(const Footprint &start, const Footprint &end, std::ptrdiff_t keptOpen) {
    return end.used.threads != start.used.threads ||
           end.used.descriptors != start.used.descriptors + keptOpen ||
           end.allocated > start.allocated + kAllocatedMore ||
           (!kSanitized && end.resident > start.resident + kResidentMore);
}

int Run(const Options &options) {
    const TemporaryFolder folder;
    std::cout << "seed   " << options.seed << " (--seed " << options.seed << " does the same again)"
              << std::endl;
    soak::Soak soak(options.seed, options.printer, folder.Path());
    soak.WarmUp();
    const Footprint start;
    std::cout << "start  " << start << std::endl;
    soak.RunUntil(std::chrono::steady_clock::now() + options.Time());
    soak.Rest();
    const Footprint end;
    std::cout << "end    " << end << "\n"
              << "printers " << soak.Printers() << ", notifications " << soak.Told() << ", ports kept open "
              << soak.KeptOpen() << "\n"
              << soak.GetLedger().Summary();
    const bool leaked = HasLeaked(start, end, soak.KeptOpen());
    if (leaked)
        std::cout << "  WRONG: there is more at the end than at the start\n";
    return leaked || !soak.GetLedger().IsClean() ? 1 : 0;
}

} // namespace

int main(int count, char **arguments) {
    CLI::App app("Uses the library at random against a faulty virtual printer.", "nadrel-soak");
    Options options;
    app.add_option("--minutes", options.minutes, "How long")->check(CLI::NonNegativeNumber);
    app.add_option("--seconds", options.seconds, "How long besides")->check(CLI::NonNegativeNumber);
    app.add_option("--printer", options.printer, "The virtual printer's program")
        ->required()
        ->check(CLI::ExistingFile);
    app.add_option("--seed", options.seed, "What is done at random follows from it");
    CLI11_PARSE(app, count, arguments);
    try {
        return Run(options);
    } catch (const std::exception &error) {
        std::cerr << "nadrel-soak: " << error.what() << '\n';
        return 1;
    }
}

#include "printer/PngFile.h"
#include "printer/Server.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <sys/signalfd.h>

namespace printer {
namespace {

// Becomes readable at SIGINT and SIGTERM. A write to a pipe or socket that nobody reads, or a read in the
// background, is an error here and no signal.
Descriptor CatchSignals() {
    signal(SIGPIPE, SIG_IGN);
    signal(SIGTTIN, SIG_IGN);
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return Descriptor(signalfd(-1, &ending, SFD_CLOEXEC));
}

// The picture of an earlier run must not be taken for this one's, and a place that cannot be written is told
// at once.
void PrepareOutput(const std::string &output) {
    if (output.empty())
        return;
    const std::filesystem::path directory = std::filesystem::path(output).parent_path();
    if (access(directory.empty() ? "." : directory.c_str(), W_OK) != 0)
        throw std::runtime_error("The picture " + output +
                                 " cannot be written: its folder does not exist or is closed to you.");
    std::error_code ignored;
    std::filesystem::remove(output, ignored);
}

int DecodeFile(const Options &options, Printer &printer) {
    std::ifstream input(options.input, std::ios::binary);
    if (!input)
        throw std::runtime_error("The file " + options.input + " cannot be opened for reading.");
    Session session(printer, options.identity, options.faults.flipFrames);
    std::array<char, 4096> buffer;
    while (input.read(buffer.data(), buffer.size()) || input.gcount() > 0)
        session.Receive(
            {reinterpret_cast<const uint8_t *>(buffer.data()), static_cast<size_t>(input.gcount())});
    session.Finish();
    printer.Finish();
    if (!options.output.empty())
        WritePng(options.output, printer.GetPaper().Picture(), options.margin);
    return 0;
}

int Run(const Options &options) {
    std::ofstream file;
    if (options.listing && !options.listing->empty()) {
        file.open(*options.listing);
        if (!file)
            throw std::runtime_error("The listing " + *options.listing + " cannot be opened for writing.");
    }
    Listing listing(file.is_open() ? static_cast<std::ostream &>(file) : std::cout);
    Printer printer(options.paperWidth, options.font, options.listing ? &listing : nullptr, std::cerr);
    PrepareOutput(options.output);
    if (!options.input.empty())
        return DecodeFile(options, printer);
    const Descriptor signals = CatchSignals();
    return Server(options, printer, std::cout).Run(signals.Get(), Console(STDIN_FILENO));
}

} // namespace
} // namespace printer

int main(int argc, char **argv) {
    printer::Options options;
    if (const auto status = printer::ReadOptions(argc, argv, options))
        return *status;
    try {
        return printer::Run(options);
    } catch (const std::exception &error) {
        std::cerr << "nadrel-printer: " << error.what() << '\n';
        return 1;
    }
}

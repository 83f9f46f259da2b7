#include "tests/endtoend/VirtualPrinter.h"

#include "tests/endtoend/Waiting.h"

#include <csignal>
#include <sstream>
#include <stdexcept>

namespace endtoend {
namespace {

std::vector<std::string> WithLinks(std::vector<std::string> options, const std::filesystem::path &folder) {
    const std::string own[] = {"--serial",
                               "--tcp",
                               "0",
                               "--listing",
                               (folder / "listing").string(),
                               "--output",
                               (folder / "paper.png").string()};
    options.insert(options.end(), std::begin(own), std::end(own));
    return options;
}

} // namespace

VirtualPrinter::VirtualPrinter(const std::string &program, const std::filesystem::path &home,
                               std::vector<std::string> options)
    : folder(home) {
    std::filesystem::create_directories(folder);
    process.emplace(program, WithLinks(std::move(options), folder), folder / "printer");
    const bool over = Eventually([this] { return !IsRunning() || !Announced("tcp ").empty(); });
    if (!over || Announced("tcp ").empty() || Announced("serial ").empty())
        throw std::runtime_error("the virtual printer does not start: " + Complaints());
    const std::string address = Announced("tcp ").back();
    tcpPort = static_cast<uint32_t>(std::stoul(address.substr(address.rfind(':') + 1)));
}

// The lines on its standard output, each behind the link's kind.
std::vector<std::string> VirtualPrinter::Announced(const std::string &kind) const {
    std::vector<std::string> names;
    std::istringstream lines(process ? process->Output() : "");
    for (std::string line; std::getline(lines, line) && !lines.eof();)
        if (line.starts_with(kind))
            names.push_back(line.substr(kind.size()));
    return names;
}

size_t VirtualPrinter::Listed(const std::string &text) const {
    size_t count = 0;
    std::istringstream lines(Listing());
    for (std::string line; std::getline(lines, line) && !lines.eof();)
        count += line.find(text) != std::string::npos;
    return count;
}

bool VirtualPrinter::AwaitListed(const std::string &text, size_t count) const {
    return Eventually([&] { return Listed(text) >= count; });
}

int VirtualPrinter::Stop() {
    process->Signal(SIGTERM);
    return process->Wait();
}

} // namespace endtoend

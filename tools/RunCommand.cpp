#include "tools/RunCommand.h"

#include "tools/HexDump.h"
#include "tools/JobRun.h"
#include "tools/PortCapture.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <system_error>

namespace tool {
namespace {

// A file to write to, or the standard output.
class Output {
  public:
    explicit Output(const std::string &fileName) : name(fileName) {
        if (name == "-")
            return;
        file.open(name, std::ios::binary);
        Require(file.good());
    }

    std::ostream &Stream() { return name == "-" ? std::cout : file; }

    void Finish() { Require(Stream().flush().good()); }

  private:
    void Require(bool isGood) const {
        if (!isGood)
            throw std::system_error(errno, std::generic_category(), name + ": cannot be written");
    }

    std::string name;
    std::ofstream file;
};

void RunOnLink(const Job &job, const LinkOptions &options) {
    const Link link(options);
    RunJob(job);
    link.RequireEverythingTaken();
}

// Runs the job on a port that leads nowhere. What it sent before a failure is written too.
void RunToHex(const Job &job, const RunOptions &options) {
    Output output(options.hex);
    HexDump dump(output.Stream());
    PortCapture capture([&dump](std::span<const uint8_t> bytes) { dump.Add(bytes); });
    RunOnLink(job, {.serial = capture.Path(), .framed = options.link.framed});
    capture.Finish();
    dump.Finish();
    output.Finish();
}

} // namespace

ExitStatus RunCommand(const RunOptions &options) {
    const Job job = CheckJob(options.job, ReadJobFile(options.job), LibraryCatalogue());
    if (options.hex.empty())
        RunOnLink(job, options.link);
    else
        RunToHex(job, options);
    return ExitStatus::fine;
}

} // namespace tool

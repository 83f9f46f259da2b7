#pragma once

#include "tools/Descriptor.h"

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace endtoend {

std::string ContentsOf(const std::filesystem::path &file);

// A program that runs beside the test. What it writes is kept in the files LOG.out and LOG.err; lines can be
// said to its standard input. It starts with every signal unblocked and at its default, and is killed with
// its owner. Whatever cannot be done throws std::runtime_error.
class Process {
  public:
    Process(const std::string &program, const std::vector<std::string> &arguments, std::filesystem::path log);
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    ~Process();

    void Say(const std::string &line) const;
    void Signal(int number) const;

    // Waits for the end: the exit status, or 128 and the number of the signal that ended it. Kills what does
    // not end within the generous limit, and throws.
    int Wait();

    bool IsRunning() const;
    std::string Output() const { return ContentsOf(log.string() + ".out"); }
    std::string Errors() const { return ContentsOf(log.string() + ".err"); }

  private:
    int Reap();

    std::filesystem::path log;
    tool::Descriptor input;
    tool::Descriptor ended; // becomes readable at the end
    pid_t number = -1;      // -1 once its status was taken
};

} // namespace endtoend

#pragma once

#include "tools/Catalogue.h"
#include "tools/Fault.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// A job: the calls of a file, every one checked.
namespace tool {

struct Call {
    size_t line; // counted from 1; 0 for the printing that the tool adds
    Entry entry;
    std::vector<Value> arguments;
};

struct Job {
    std::string file;
    std::vector<Call> calls;
};

// Everything that is wrong with a job file, a line of text each.
class JobFault : public Fault {
  public:
    using Fault::Fault;
};

// A longer file is refused, in bytes.
inline constexpr size_t kLongestFile = 4 * 1024 * 1024;

// The check of a file ends when there are more faults than these.
inline constexpr size_t kMostFaultsShown = 20;

// Checks the whole text against the catalogue, which must outlive the job, and the pictures it names. A job
// that leaves something unprinted, or prints nothing, gets a last call that prints. `file` is for messages
// and for its folder, in which pictures are sought. Throws a JobFault.
Job CheckJob(const std::string &file, std::string_view text, const Catalogue &catalogue);

// The text of a job file; - is the standard input. Throws a JobFault when it cannot be read or is too long.
std::string ReadJobFile(const std::string &file);

} // namespace tool

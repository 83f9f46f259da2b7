#pragma once

#include "tools/Job.h"

#include <stdexcept>

namespace tool {

// A call of a job that failed: file, line, what the library answered, and its meaning.
class CallFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Makes the calls of a job in their order, on the link that is open. Throws a CallFailure at the first that
// fails; the calls behind it are not made.
void RunJob(const Job &job);

} // namespace tool

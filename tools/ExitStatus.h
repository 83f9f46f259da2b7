#pragma once

namespace tool {

// What the program tells its caller.
enum class ExitStatus {
    fine = 0,
    failed = 1, // the job or the printer
    misused = 2 // the command line or the job file
};

} // namespace tool

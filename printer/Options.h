#pragma once

#include "printer/Faults.h"
#include "printer/Replies.h"

#include <optional>
#include <string>

namespace printer {

struct Options {
    bool serial = false;
    std::string link;                   // symbolic link to the serial port
    std::optional<uint16_t> tcpPort;    // 0 for any
    std::string bindAddress;            // empty for loopback
    std::string input;                  // a file of captured bytes, in the place of links
    int paperWidth = 384;               // dots
    std::string output;                 // the picture; empty for none
    int margin = 0;                     // dots around the picture
    std::optional<std::string> listing; // a file, or empty for the standard output
    std::string font;                   // a file; empty for the usual one
    std::optional<std::chrono::milliseconds> exitWhenIdle, swipeAfter;
    Identity identity;
    Faults faults;
};

// Reads the command line. When the program is to end at once (help, a mistake), everything has been said and
// the exit status comes back.
std::optional<int> ReadOptions(int argc, const char *const *argv, Options &options);

} // namespace printer

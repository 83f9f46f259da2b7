#pragma once

#include "api/NadrelPrinter.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace bench {

// An open link to a printer that takes everything at once and says nothing but what it is told to. Ends the
// program where there is none.
class PseudoTerminalLink {
  public:
    PseudoTerminalLink() : master(posix_openpt(O_RDWR | O_NOCTTY)) {
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0 || !Connect(ptsname(master))) {
            std::fprintf(stderr, "No pseudo-terminal can be opened as a link; a free one is needed.\n");
            std::exit(1);
        }
        drain = std::thread([this] {
            char bytes[65536];
            while (read(master, bytes, sizeof bytes) > 0) {
            }
        });
    }
    ~PseudoTerminalLink() {
        ClosePrinter(); // the other end hangs up, and the reading ends
        drain.join();
        close(master);
    }
    PseudoTerminalLink(const PseudoTerminalLink &) = delete;
    PseudoTerminalLink &operator=(const PseudoTerminalLink &) = delete;

    // Sends the library what a printer might; false when the link is gone.
    bool Say(const void *bytes, size_t count) const {
        const char *next = static_cast<const char *>(bytes);
        while (count > 0) {
            const ssize_t sent = write(master, next, count);
            if (sent <= 0)
                return false;
            next += sent;
            count -= static_cast<size_t>(sent);
        }
        return true;
    }

  private:
    static bool Connect(const std::string &port) {
        return InitPrinter(std::u16string(port.begin(), port.end()).c_str(), 115200, 0) == NADREL_SUCCESS;
    }

    int master;
    std::thread drain;
};

} // namespace bench

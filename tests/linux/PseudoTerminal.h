#pragma once

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/types.h>
#include <system_error>
#include <unistd.h>
#include <vector>

// A serial line without hardware: a program opens its end by Name, the test holds the printer's. The
// printer's end does not block.
class PseudoTerminal {
  public:
    PseudoTerminal() : printer(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)) {
        char name[64];
        if (printer < 0 || grantpt(printer) != 0 || unlockpt(printer) != 0 ||
            ptsname_r(printer, name, sizeof name) != 0)
            throw std::system_error(errno, std::generic_category(), "pseudo-terminal");
        path = name;
    }
    ~PseudoTerminal() { HangUp(); }
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    const std::string &Path() const { return path; }
    std::u16string Name() const { return {path.begin(), path.end()}; }
    int PrinterEnd() const { return printer; }

    // As a USB adapter pulled out: the printer's end goes, the system hangs the program's up.
    void HangUp() {
        if (printer >= 0)
            close(printer);
        printer = -1;
    }

    // Sends all bytes to the program; false when it has not taken them within ten seconds.
    bool Write(const std::vector<uint8_t> &bytes) {
        size_t sent = 0;
        while (sent < bytes.size()) {
            const ssize_t went = write(printer, bytes.data() + sent, bytes.size() - sent);
            if (went > 0)
                sent += static_cast<size_t>(went);
            else if (!Wait(POLLOUT))
                return false;
        }
        return true;
    }

    // Exactly `count` bytes from the program, fewer when ten seconds pass without any.
    std::vector<uint8_t> Read(size_t count) {
        std::vector<uint8_t> bytes(count);
        size_t came = 0;
        while (came < count) {
            const ssize_t now = read(printer, bytes.data() + came, count - came);
            if (now > 0)
                came += static_cast<size_t>(now);
            else if (!Wait(POLLIN))
                break;
        }
        bytes.resize(came);
        return bytes;
    }

    // Whether the program has sent anything that was not read.
    bool HasInput() const {
        pollfd end = {printer, POLLIN, 0};
        return poll(&end, 1, 0) > 0 && (end.revents & POLLIN) != 0;
    }

  private:
    bool Wait(short events) const {
        pollfd end = {printer, events, 0};
        return poll(&end, 1, 10'000) > 0 && (end.revents & events) != 0;
    }

    int printer;
    std::string path;
};

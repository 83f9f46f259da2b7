#pragma once

#include "printer/Bytes.h"
#include "printer/Descriptor.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace printer::testing {

// The host's end of a link to the printer.
class HostLink {
  public:
    // Of the name that the printer announced: "serial /dev/pts/3" or "tcp 127.0.0.1:9100".
    explicit HostLink(const std::string &announcement);

    void Send(const std::string &bytes) const;

    // Waits until so many bytes have come, 10 s at most; fewer come back when the printer hangs up or time is
    // over.
    std::string Receive(size_t count) const;

    // True when a byte is there now.
    bool HasBytes() const;

    // Waits until the printer has hung up, 10 s at most.
    bool IsHungUp() const;

    void Close() { link_.Close(); }

  private:
    Descriptor link_;
};

// The program nadrel-printer, started with these arguments and ended with its owner.
class RunningPrinter {
  public:
    explicit RunningPrinter(std::vector<std::string> arguments);
    ~RunningPrinter();
    RunningPrinter(const RunningPrinter &) = delete;
    RunningPrinter &operator=(const RunningPrinter &) = delete;

    // The next line of its standard output, waited for at most 10 s.
    std::string NextLine();

    void Type(const std::string &line) const; // on its standard input
    void Signal(int number) const;

    // Waits for its end, 10 s at most; its exit status, none when a signal ended it.
    std::optional<int> Wait();

    // All it has said on its standard error; to be asked after its end.
    std::string Errors() const;

  private:
    pid_t process_ = -1;
    Descriptor input_, output_, errors_;
    std::string text_; // of its output, not yet handed out
};

} // namespace printer::testing

#pragma once

#include "tests/endtoend/Process.h"

#include <cstdint>
#include <optional>

namespace endtoend {

// The virtual printer as a program beside the test, on a pseudo-terminal and on a free TCP port. It is killed
// with its owner.
class VirtualPrinter {
  public:
    // Its files are kept in the folder, which is made. Throws when it does not start.
    VirtualPrinter(const std::string &program, const std::filesystem::path &folder,
                   std::vector<std::string> options = {});

    // Of the present pseudo-terminal: it gets another when it hangs up.
    std::string SerialPath() const { return Announced("serial ").back(); }
    uint32_t TcpPort() const { return tcpPort; }

    // What it has decoded so far, one command a line.
    std::string Listing() const { return ContentsOf(folder / "listing"); }
    // How many lines of the listing hold the text.
    size_t Listed(const std::string &text) const;
    // Waits for that many.
    bool AwaitListed(const std::string &text, size_t count = 1) const;

    std::filesystem::path Picture() const { return folder / "paper.png"; }
    std::string Complaints() const { return process->Errors(); }

    // A line on its console: swipe, paper-out, paper-in, send 30 31, quit.
    void Say(const std::string &line) const { process->Say(line); }

    // Ends it in order; the exit status.
    int Stop();
    void Kill() { process.reset(); }
    bool IsRunning() const { return process && process->IsRunning(); }

    // How many pseudo-terminals it has had.
    size_t SerialPorts() const { return Announced("serial ").size(); }

  private:
    std::vector<std::string> Announced(const std::string &kind) const;

    std::filesystem::path folder;
    std::optional<Process> process;
    uint32_t tcpPort = 0;
};

} // namespace endtoend

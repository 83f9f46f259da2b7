#include "tools/ListenCommand.h"

#include "tools/Notification.h"

#include "api/NadrelPrinter.h"

#include <signal.h>
#include <unistd.h>

#include <iostream>

namespace tool {
namespace {

// Signals that end the program, held back until Wait. Threads that start meanwhile hold them back too.
class EndSignals {
  public:
    EndSignals() {
        sigemptyset(&signals);
        for (const int number : {SIGINT, SIGTERM, SIGHUP})
            sigaddset(&signals, number);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    }

    void Wait() const {
        int number = 0;
        sigwait(&signals, &number);
    }

  private:
    sigset_t signals{};
};

class MsrMode {
  public:
    explicit MsrMode(int32_t track) { EnterMSRMode(track); }
    MsrMode(const MsrMode &) = delete;
    ~MsrMode() { CancelMSRMode(); }
};

void Print(uint32_t, uint32_t wParam, intptr_t lParam, void *) {
    std::cout << Line(CopyNotification(wParam, lParam)) << std::endl;
    if (!std::cout)
        kill(getpid(), SIGTERM);
}

} // namespace

ExitStatus ListenCommand(const ListenOptions &options) {
    signal(SIGPIPE, SIG_IGN);
    const EndSignals end;
    const Link link(options.link);
    const Listening listening(&Print, nullptr);
    std::optional<MsrMode> msr;
    if (options.msrTrack)
        msr.emplace(*options.msrTrack);
    std::cerr << "listening on " << options.link.Name() << std::endl;
    end.Wait();
    return ExitStatus::fine;
}

} // namespace tool

#pragma once

#include <csignal>
#include <initializer_list>

namespace platform {

// Holds every signal back from the calling thread; a thread started meanwhile never gets any, so that the
// host's signal handlers run on the host's threads only.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS})
            sigdelset(&all, fault);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

  private:
    sigset_t before{};
};

} // namespace platform

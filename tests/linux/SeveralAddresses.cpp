// A host name with several addresses, which not every machine has: for the whole test program, "A+B" stands
// for the addresses of A, then those of B.

#include "tests/linux/SystemFaults.h"

#include <cstring>
#include <dlfcn.h>
#include <netdb.h>
#include <string>

namespace {

using Resolve = int (*)(const char *, const char *, const addrinfo *, addrinfo **);

} // namespace

extern "C" int getaddrinfo(const char *host, const char *service, const addrinfo *wanted, addrinfo **found) {
    if (const auto answer = MeetFault(SystemCall::getaddrinfo))
        return static_cast<int>(*answer);
    static const auto real = reinterpret_cast<Resolve>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const char *plus = host == nullptr ? nullptr : std::strchr(host, '+');
    if (plus == nullptr)
        return real(host, service, wanted, found);
    const int error = real(std::string(host, plus).c_str(), service, wanted, found);
    if (error != 0)
        return error;
    addrinfo *last = *found;
    while (last->ai_next != nullptr)
        last = last->ai_next;
    return getaddrinfo(plus + 1, service, wanted, &last->ai_next);
}

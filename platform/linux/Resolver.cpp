#include "platform/linux/Resolver.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <netdb.h>

namespace platform {

namespace {

constexpr uint32_t kHighestPort = 65535;

int FailureOf(int resolverError) {
    switch (resolverError) {
    case EAI_SYSTEM:
        return errno;
    case EAI_MEMORY:
        return ENOMEM;
    case EAI_AGAIN:
        return EAGAIN;
    default:
        return EHOSTUNREACH;
    }
}

Address AddressOf(const addrinfo &found) {
    Address address = {};
    address.length = found.ai_addrlen;
    std::memcpy(&address.storage, found.ai_addr, found.ai_addrlen);
    return address;
}

} // namespace

std::vector<Address> Resolve(const std::string &host, uint32_t port, int &failure) {
    if (host.empty() || port == 0 || port > kHighestPort) {
        failure = EINVAL;
        return {};
    }
    addrinfo wanted = {};
    wanted.ai_family = AF_UNSPEC;
    wanted.ai_socktype = SOCK_STREAM;
    wanted.ai_flags = AI_NUMERICSERV;
    addrinfo *found = nullptr;
    const int error = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found);
    if (error != 0) {
        failure = FailureOf(error);
        return {};
    }
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owned(found, freeaddrinfo);
    std::vector<Address> addresses;
    for (const addrinfo *one = found; one != nullptr; one = one->ai_next)
        addresses.push_back(AddressOf(*one));
    return addresses;
}

} // namespace platform

#pragma once

#include <cstdint>
#include <string>
#include <sys/socket.h>
#include <vector>

namespace platform {

// Where a stream can be connected to.
struct Address {
    sockaddr_storage storage;
    socklen_t length;

    int Family() const { return storage.ss_family; }
    const sockaddr *Get() const { return reinterpret_cast<const sockaddr *>(&storage); }
};

// What a dotted IPv4 or an IPv6 address or a host name stands for, in the order to be tried; none when it
// stands for nothing, and `failure` says why (errno). May block as long as the system's resolver does.
std::vector<Address> Resolve(const std::string &host, uint32_t port, int &failure);

} // namespace platform

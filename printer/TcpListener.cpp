#include "printer/TcpListener.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <stdexcept>
#include <sys/socket.h>

namespace printer {
namespace {

constexpr char Loopback4[] = "127.0.0.1", Loopback6[] = "::1";
constexpr int SmallBuffer = 4096; // bytes; the system makes more of it

struct FreeAddresses {
    void operator()(addrinfo *addresses) const { freeaddrinfo(addresses); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

Addresses Resolve(const std::string &address, uint16_t port) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo *found = nullptr;
    const int error = getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (error != 0)
        throw std::runtime_error("The address " + address + " means nothing: " + gai_strerror(error) + ".");
    return Addresses(found);
}

void SetOption(int socket, int level, int option, int value) {
    setsockopt(socket, level, option, &value, sizeof value);
}

Descriptor Listen(const addrinfo &address, bool smallBuffer) {
    Descriptor listener(
        socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol));
    SetOption(listener.Get(), SOL_SOCKET, SO_REUSEADDR, 1);
    if (address.ai_family == AF_INET6)
        SetOption(listener.Get(), IPPROTO_IPV6, IPV6_V6ONLY, 1);
    if (smallBuffer)
        SetOption(listener.Get(), SOL_SOCKET, SO_RCVBUF, SmallBuffer);
    const bool listens = listener.IsOpen() &&
                         bind(listener.Get(), address.ai_addr, address.ai_addrlen) == 0 &&
                         listen(listener.Get(), SOMAXCONN) == 0;
    return listens ? std::move(listener) : Descriptor();
}

struct BoundTo {
    std::string name;
    uint16_t port = 0;
};

BoundTo NameOf(const Descriptor &socket) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    char host[NI_MAXHOST] = "", service[NI_MAXSERV] = "";
    getsockname(socket.Get(), reinterpret_cast<sockaddr *>(&address), &length);
    getnameinfo(reinterpret_cast<sockaddr *>(&address), length, host, sizeof host, service, sizeof service,
                NI_NUMERICHOST | NI_NUMERICSERV);
    BoundTo bound;
    bound.name = host;
    if (address.ss_family == AF_INET6)
        bound.name.insert(0, 1, '[').push_back(']');
    bound.name.append(":").append(service);
    bound.port = static_cast<uint16_t>(std::strtoul(service, nullptr, 10));
    return bound;
}

} // namespace

TcpListener::TcpListener(const std::string &address, uint16_t port, bool smallBuffer) {
    const std::string first = address.empty() ? Loopback4 : address;
    Descriptor listener = Listen(*Resolve(first, port), smallBuffer);
    if (!listener.IsOpen())
        throw std::runtime_error("Nobody can listen on " + first + ", port " + std::to_string(port) + ": " +
                                 std::strerror(errno) + ".");
    const BoundTo bound = NameOf(listener);
    name_ = bound.name;
    sockets_.push_back(std::move(listener));
    if (!address.empty())
        return;
    Descriptor second = Listen(*Resolve(Loopback6, bound.port), smallBuffer);
    if (second.IsOpen())
        sockets_.push_back(std::move(second));
}

Descriptor TcpListener::Accept(const Descriptor &socket) {
    Descriptor connection(accept4(socket.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (connection.IsOpen())
        SetOption(connection.Get(), IPPROTO_TCP, TCP_NODELAY, 1);
    return connection;
}

} // namespace printer

#include "tools/Address.h"

#include "tools/Descriptor.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>

namespace tool {
namespace {

constexpr int kPatienceMs = 2000;

std::optional<uint16_t> ParsePort(std::string_view text) {
    uint16_t port = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), port);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

std::optional<Address> WithPort(std::string_view host, std::string_view colonAndPort) {
    if (host.empty() || host.find_first_of("[]") != std::string_view::npos)
        return std::nullopt;
    if (colonAndPort.empty())
        return Address{std::string(host)};
    const auto port = colonAndPort.front() == ':' ? ParsePort(colonAndPort.substr(1)) : std::nullopt;
    return port ? std::optional(Address{std::string(host), *port}) : std::nullopt;
}

// The errno value that a connection attempt ends with; 0 when it stands.
int TryToConnect(const addrinfo &target) {
    const Descriptor socket(::socket(target.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (socket.Get() == -1)
        return errno;
    if (connect(socket.Get(), target.ai_addr, target.ai_addrlen) == 0)
        return 0;
    pollfd wait{socket.Get(), POLLOUT, 0};
    if (errno != EINPROGRESS)
        return errno;
    if (poll(&wait, 1, kPatienceMs) != 1)
        return ETIMEDOUT;
    int error = 0;
    socklen_t length = sizeof error;
    getsockopt(socket.Get(), SOL_SOCKET, SO_ERROR, &error, &length);
    return error;
}

} // namespace

std::optional<Address> ParseAddress(std::string_view text) {
    const size_t close = text.find(']');
    if (text.starts_with('[') && close != std::string_view::npos)
        return WithPort(text.substr(1, close - 1), text.substr(close + 1));
    const size_t colon = text.find(':');
    const bool isBareIpv6 = colon != text.rfind(':');
    if (colon == std::string_view::npos || isBareIpv6)
        return WithPort(text, {});
    return WithPort(text.substr(0, colon), text.substr(colon));
}

std::string AddressTrouble(const Address &address) {
    const addrinfo wanted{.ai_flags = AI_NUMERICSERV,
                          .ai_family = AF_UNSPEC,
                          .ai_socktype = SOCK_STREAM,
                          .ai_protocol = 0,
                          .ai_addrlen = 0,
                          .ai_addr = nullptr,
                          .ai_canonname = nullptr,
                          .ai_next = nullptr};
    addrinfo *list = nullptr;
    const int failure =
        getaddrinfo(address.host.c_str(), std::to_string(address.port).c_str(), &wanted, &list);
    if (failure != 0)
        return gai_strerror(failure);
    const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> owner(list, &freeaddrinfo);
    const int reason = TryToConnect(*list);
    return reason == 0 ? "it answers only now" : std::strerror(reason);
}

} // namespace tool

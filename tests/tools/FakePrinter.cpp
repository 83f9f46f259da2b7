#include "FakePrinter.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>

using tool::Descriptor;

void FakePrinter::Start(Descriptor own) {
    end = std::move(own);
    stop = Descriptor(eventfd(0, EFD_CLOEXEC));
    thread = std::thread([this] { Serve(); });
}

Bytes FakePrinter::Finish() {
    if (thread.joinable()) {
        eventfd_write(stop.Get(), 1);
        thread.join();
    }
    return received;
}

// Whether there is something to take before the end. What has been sent by then is taken still.
bool FakePrinter::Wait(int descriptor) const {
    pollfd waits[] = {{descriptor, POLLIN, 0}, {stop.Get(), POLLIN, 0}};
    while (poll(waits, 2, -1) < 0 && errno == EINTR) {
    }
    return waits[0].revents != 0;
}

void FakePrinter::Serve() {
    if (!Wait(end.Get()))
        return;
    end = Accept();
    while (Wait(end.Get())) {
        std::array<uint8_t, 4096> buffer;
        const ssize_t got = read(end.Get(), buffer.data(), buffer.size());
        if (got <= 0)
            return;
        received.insert(received.end(), buffer.begin(), buffer.begin() + got);
        Answer();
    }
}

void FakePrinter::Answer() {
    while (line < script.size()) {
        const auto &[request, answer] = script[line];
        const auto from = received.begin() + static_cast<std::ptrdiff_t>(searched);
        const auto found = std::search(from, received.end(), request.begin(), request.end());
        if (found == received.end())
            return;
        searched = static_cast<size_t>(found - received.begin()) + request.size();
        ++line;
        EXPECT_EQ(write(end.Get(), answer.data(), answer.size()), static_cast<ssize_t>(answer.size()));
    }
}

SerialPrinter::SerialPrinter(Script lines) : FakePrinter(std::move(lines)) {
    Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_EQ(grantpt(terminal.Get()), 0);
    EXPECT_EQ(unlockpt(terminal.Get()), 0);
    std::array<char, 128> name{};
    EXPECT_EQ(ptsname_r(terminal.Get(), name.data(), name.size()), 0);
    path = name.data();
    Start(std::move(terminal));
}

TcpPrinter::TcpPrinter(Script lines, Ip version) : FakePrinter(std::move(lines)) {
    const bool isFour = version == Ip::v4;
    Descriptor listener(socket(isFour ? AF_INET : AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in6 six{};
    six.sin6_family = AF_INET6;
    six.sin6_addr = in6addr_loopback;
    sockaddr_in four{};
    four.sin_family = AF_INET;
    four.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *own = isFour ? reinterpret_cast<sockaddr *>(&four) : reinterpret_cast<sockaddr *>(&six);
    socklen_t length = isFour ? sizeof four : sizeof six;
    EXPECT_EQ(bind(listener.Get(), own, length), 0);
    EXPECT_EQ(listen(listener.Get(), 1), 0);
    EXPECT_EQ(getsockname(listener.Get(), own, &length), 0);
    address =
        (isFour ? "127.0.0.1:" : "[::1]:") + std::to_string(ntohs(isFour ? four.sin_port : six.sin6_port));
    Start(std::move(listener));
}

Descriptor TcpPrinter::Accept() {
    return Descriptor(accept4(end.Get(), nullptr, nullptr, SOCK_CLOEXEC));
}

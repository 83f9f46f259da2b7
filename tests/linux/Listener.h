#pragma once

#include "platform/Socket.h"
#include "tests/linux/Support.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <vector>

// The printer's end of a connection.
class Peer {
  public:
    explicit Peer(int accepted) : socket(accepted) {}
    ~Peer() { Close(); }
    Peer(const Peer &) = delete;
    Peer &operator=(const Peer &) = delete;

    int Number() const { return socket; }

    void Close() {
        if (socket >= 0)
            close(socket);
        socket = -1;
    }

    // Closes so that the other end sees a reset.
    void Reset() {
        const linger atOnce = {1, 0};
        setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        Close();
    }

    bool Write(const std::vector<uint8_t> &bytes) const {
        return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
    }

    // Up to `count` bytes; fewer at the end of the stream, at an error, or when ten seconds pass without any.
    std::vector<uint8_t> Read(size_t count) {
        std::vector<uint8_t> bytes(count);
        size_t came = 0;
        while (came < count) {
            pollfd waited = {socket, POLLIN, 0};
            const ssize_t now =
                poll(&waited, 1, 10'000) > 0 ? recv(socket, bytes.data() + came, count - came, 0) : -1;
            atEnd = now == 0;
            if (now <= 0)
                break;
            came += static_cast<size_t>(now);
        }
        bytes.resize(came);
        return bytes;
    }

    // Whether the last Read met the orderly end of the stream.
    bool AtEnd() const { return atEnd; }

  private:
    int socket;
    bool atEnd = false;
};

enum class Backlog { listening, silent, refusing };

// A printer's address on the loopback interface.
class Listener {
  public:
    // `silent` answers no attempt to connect, `refusing` refuses each; nobody else can get the port
    // meanwhile.
    explicit Listener(int family = AF_INET, Backlog backlog = Backlog::listening)
        : listening(socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_storage address = {};
        socklen_t size = Fill(family, address);
        if (listening < 0 || bind(listening, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
            getsockname(listening, reinterpret_cast<sockaddr *>(&address), &size) != 0)
            throw std::system_error(errno, std::generic_category(), "listener");
        port = ntohs(family == AF_INET ? reinterpret_cast<sockaddr_in &>(address).sin_port
                                       : reinterpret_cast<sockaddr_in6 &>(address).sin6_port);
        if (backlog != Backlog::refusing)
            listen(listening, backlog == Backlog::silent ? 0 : 64);
        if (backlog == Backlog::silent)
            FillQueue(reinterpret_cast<sockaddr *>(&address), size);
    }
    ~Listener() {
        close(listening);
        for (const int one : fillers)
            close(one);
    }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    uint32_t Port() const { return port; }

    // From now on connections are accepted, where they were refused.
    void Listen() { listen(listening, 64); }

    // For connections from now on. The system opens a window that was shut by a sixteenth of this at least.
    void LimitReceiveBuffer(int bytes) { setsockopt(listening, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes); }

    // Waits for the next connection.
    Peer Accept() const { return Peer(AcceptNumber()); }
    // As a descriptor that is the caller's.
    int AcceptNumber() const {
        pollfd waited = {listening, POLLIN, 0};
        return poll(&waited, 1, 10'000) > 0 ? accept4(listening, nullptr, nullptr, SOCK_CLOEXEC) : -1;
    }

  private:
    static socklen_t Fill(int family, sockaddr_storage &address) {
        address.ss_family = static_cast<sa_family_t>(family);
        if (family == AF_INET) {
            reinterpret_cast<sockaddr_in &>(address).sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            return sizeof(sockaddr_in);
        }
        reinterpret_cast<sockaddr_in6 &>(address).sin6_addr = in6addr_loopback;
        return sizeof(sockaddr_in6);
    }

    // The system drops attempts to connect once the queue of those not accepted is full.
    void FillQueue(const sockaddr *address, socklen_t size) {
        for (int i = 0; i < 4; ++i) {
            fillers.push_back(socket(address->sa_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
            connect(fillers.back(), address, size);
        }
    }

    int listening;
    uint32_t port = 0;
    std::vector<int> fillers;
};

// Connects as the library does: without blocking, then waiting, then blocking again.
inline bool ConnectTo(const Listener &listener, platform::CAsyncSocket &socket,
                      const char16_t *host = u"127.0.0.1") {
    bool writable = false;
    return socket.Create(0, platform::kStreamSocket, platform::kAllSocketEvents, nullptr) != 0 &&
           socket.IOCtl(platform::SocketCommand::nonBlocking, 1) != 0 &&
           (socket.Connect(host, listener.Port()), true) &&
           platform::SelectWritable(socket.Handle() + 1, socket.Handle(), 10, 0, writable) == 1 && writable &&
           socket.IOCtl(platform::SocketCommand::nonBlocking, 0) != 0;
}

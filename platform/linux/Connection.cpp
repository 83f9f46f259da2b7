#include "platform/linux/Connection.h"

#include "platform/linux/NeverDestroyed.h"

#include <algorithm>
#include <fcntl.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <thread>

namespace platform {

namespace {

// An idle connection is asked for a sign of life after a minute, then every 15 s; without one it is over
// after two.
constexpr int kKeepAliveIdleSeconds = 60;
constexpr int kKeepAliveIntervalSeconds = 15;
constexpr int kKeepAliveProbes = 4;

void SetOption(int socket, int level, int name, int value) {
    setsockopt(socket, level, name, &value, sizeof value);
}

// Requests are short and wait for answers, so nothing is held back to fill a packet. There is no
// TCP_USER_TIMEOUT: it would end the connection of a printer that lives but takes nothing, out of paper.
void Tune(int socket) {
    SetOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
    SetOption(socket, SOL_SOCKET, SO_KEEPALIVE, 1);
    SetOption(socket, IPPROTO_TCP, TCP_KEEPIDLE, kKeepAliveIdleSeconds);
    SetOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, kKeepAliveIntervalSeconds);
    SetOption(socket, IPPROTO_TCP, TCP_KEEPCNT, kKeepAliveProbes);
}

// 0 when the attempt that reported `report` has led to a connection that stands, else why it has not. A
// refused one is reported as writable, too.
int OutcomeOf(int socket, short report) {
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
        return errno;
    return error == 0 && (report & POLLHUP) != 0 ? ENOTCONN : error;
}

// How long a close may wait for what was sent to arrive.
constexpr std::chrono::milliseconds kLastMoments{100};

// Takes what was received and not read: the system answers a close over such bytes with a reset, which makes
// the peer lose the end of what was sent. Bounded, should the peer send without end.
void DropReceived(int socket) {
    uint8_t dropped[4096];
    for (int i = 0; i < 1024; ++i)
        if (recv(socket, dropped, sizeof dropped, MSG_DONTWAIT) <= 0)
            return;
}

bool HasArrived(int socket) {
    int underway = 0;
    return ioctl(socket, SIOCOUTQ, &underway) != 0 || underway == 0;
}

} // namespace

Descriptor MakeStream(int family) {
    Descriptor made(socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (made.IsOpen())
        Tune(made.Number());
    else
        Fail(errno);
    return made;
}

Connection::~Connection() {
    DropReceived(Number());
}

void Connection::LetArrive() const {
    const auto end = std::chrono::steady_clock::now() + kLastMoments;
    DropReceived(Number());
    while (!HasArrived(Number()) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1)); // an arrival wakes nobody
        DropReceived(Number());
    }
}

bool Connection::Connect(const std::string &host, uint32_t port) {
    const std::lock_guard lock(mutex);
    if (state != State::idle)
        Settle(std::chrono::steady_clock::now());
    if (state != State::idle)
        return Fail(state == State::standing ? EISCONN : EALREADY);
    failure = EHOSTUNREACH;
    addresses = Resolve(host, port, failure);
    std::reverse(addresses.begin(), addresses.end());
    if (!TryNext())
        return Fail(failure);
    if (state == State::connecting && !IsNonBlocking())
        return Settle(kNever);
    return state == State::standing || Fail(EINPROGRESS);
}

bool Connection::AwaitStanding(Deadline deadline) {
    const std::lock_guard lock(mutex);
    return Settle(deadline);
}

// What AwaitStanding does, for a caller that has the mutex.
bool Connection::Settle(Deadline deadline) {
    while (state != State::idle) {
        const auto report = Wait(POLLOUT, deadline);
        if (!report || *report == 0)
            return Fail(report ? ETIMEDOUT : ECANCELED);
        failure = OutcomeOf(Number(), *report);
        state = failure == 0 ? State::standing : State::idle;
        if (state == State::standing)
            return true;
        TryNext();
    }
    return Fail(failure);
}

// Begins an attempt with the first address left that lets one begin. False, with `failure`, when none does.
bool Connection::TryNext() {
    while (state == State::idle && !addresses.empty()) {
        const Address address = addresses.back();
        addresses.pop_back();
        if (!Begin(address))
            failure = errno;
    }
    return state != State::idle;
}

bool Connection::Begin(const Address &address) {
    if (!TakeFamily(address.Family()))
        return false;
    if (connect(Number(), address.Get(), address.length) == 0)
        state = State::standing;
    else if (errno == EINPROGRESS || errno == EINTR)
        state = State::connecting;
    return state != State::idle;
}

// Puts a fresh socket of the family behind the descriptor's number, which stays the handle. The old one may
// carry a failed attempt.
bool Connection::TakeFamily(int family) {
    const Descriptor fresh = MakeStream(family);
    return fresh.IsOpen() &&
           Uninterrupted([&] { return dup3(fresh.Number(), Number(), O_CLOEXEC); }) == Number();
}

HandleTable<Connection> &Connections() {
    static constinit NeverDestroyed<HandleTable<Connection>> connections;
    return connections.object;
}

} // namespace platform

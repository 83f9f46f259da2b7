#pragma once

#include "platform/Socket.h"
#include "platform/linux/Endpoint.h"
#include "platform/linux/HandleTable.h"
#include "platform/linux/Resolver.h"

#include <atomic>
#include <mutex>
#include <string>

namespace platform {

// A stream socket on its way to a connection or with one. Its descriptor never blocks; the calls wait.
class Connection : public Endpoint {
  public:
    Connection(Descriptor open, const CAsyncSocket *belongsTo)
        : Endpoint(std::move(open)), owner(belongsTo) {}
    // What was sent still reaches the peer, also when it has sent something that nobody received.
    ~Connection();

    bool ClosingMayBlock() const { return false; }

    // Before a close: waits until what was sent has arrived, 100 ms at most, and drops what is received. The
    // system answers bytes that come after the close with a reset, too.
    void LetArrive() const;

    const CAsyncSocket *Owner() const { return owner; }

    bool IsNonBlocking() const { return nonBlocking; }
    void SetNonBlocking(bool on) { nonBlocking = on; }

    // Begins to connect, unless it has. True when the connection stands by the system's first answer, or, on
    // a blocking socket, by the end of the wait.
    bool Connect(const std::string &host, uint32_t port);

    // Waits until the connection stands, going on to the host's next address when one fails. False, with the
    // reason recorded, when it does not by the deadline, or there is no address left.
    bool AwaitStanding(Deadline deadline);

  private:
    enum class State { idle, connecting, standing };

    bool Settle(Deadline deadline);
    bool TryNext();
    bool Begin(const Address &address);
    bool TakeFamily(int family);

    const CAsyncSocket *const owner;
    std::atomic<bool> nonBlocking = false;

    std::mutex mutex; // guards what follows
    State state = State::idle;
    std::vector<Address> addresses; // to be tried, the next one last
    int failure = ENOTCONN;         // why the state is idle
};

// Makes a stream socket that does not block; none, with the reason recorded, when there is none to be had.
Descriptor MakeStream(int family);

HandleTable<Connection> &Connections();

} // namespace platform

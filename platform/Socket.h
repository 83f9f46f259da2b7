#pragma once

#include <cstdint>

// Stream sockets, as far as one TCP connection to a printer needs them.
//
// Calls that fail leave the reason in LastError. One thread may receive while another sends.
namespace platform {

// Zero is a handle like any other; the link-open flag, not the handle, says whether there is a connection.
using SocketHandle = intptr_t;

// Starts the system's socket support; calls are counted, each is undone by one StopSocketSupport, also one
// that failed. False when it is not to be had.
bool StartSocketSupport();
void StopSocketSupport();

inline constexpr int32_t kStreamSocket = 1;
inline constexpr int32_t kAllSocketEvents = 63;
enum class SocketCommand : int32_t { nonBlocking }; // FIONBIO

// A socket that connects without blocking. Not copied, not moved: its address is its identity.
class CAsyncSocket {
  public:
    CAsyncSocket();
    // Closes the handle unless CloseSocket has.
    virtual ~CAsyncSocket();
    CAsyncSocket(const CAsyncSocket &) = delete;
    CAsyncSocket &operator=(const CAsyncSocket &) = delete;

    // Makes the handle of a stream, bound to any local port and address: 0 for another type, another `port`
    // than 0 or another `address` than null. Non-zero on success.
    int32_t Create(uint32_t port, int32_t type, int32_t events, const char16_t *address);

    // nonBlocking with 1 makes Connect return at once, with 0 makes Send and Receive wait. Non-zero on
    // success, 0 or -1 on failure.
    int32_t IOCtl(SocketCommand command, uint32_t argument);

    // Begins to connect to an address (dotted IPv4, IPv6) or host name. Non-zero only when the connection
    // stands at once; 0 when it is in progress, stands already, or failed, which SelectWritable tells apart.
    // Resolving a name may block as long as the system's resolver does. A null or empty host is one that is
    // not found.
    int32_t Connect(const char16_t *host, uint32_t port);

    virtual int32_t Receive(void *bytes, int32_t count, int32_t flags);
    virtual void OnConnect(int32_t error);

    SocketHandle Handle() const { return handle; }

  private:
    SocketHandle handle;
};

// Waits until the connection stands, at most so long; negative times count as none. The number of sockets
// ready, 0 when the time is over or the connection has failed, -1 when the handle cannot be waited for.
// `writable` is true only for a connection that stands. `readLimit` is the handle + 1.
int32_t SelectWritable(SocketHandle readLimit, SocketHandle socket, int32_t seconds, int32_t microseconds,
                       bool &writable);

// Blocks until the system has taken all bytes, without a limit unless one is set; -1 when the connection has
// died, the socket is closed, or no byte went for as long as the limit. `taken` counts the bytes that went
// either way. Never raises a signal.
int32_t Send(SocketHandle socket, const uint8_t *bytes, uint32_t count, uint32_t &taken);

// Blocks until bytes have been received, and gives up to `count` of them. 0 or -1 when the connection is
// over; then it pauses first, so that callers may simply ask again. A terminated thread leaves here (see
// Threads.h).
int32_t Receive(SocketHandle socket, uint8_t *bytes, uint32_t count);

// Releases every thread that is in a call on the socket. 0 on success.
int32_t CloseSocket(SocketHandle socket);

} // namespace platform

// What moves bytes through a connection, and waits for them.

#include "platform/Socket.h"

#include "platform/Clock.h"
#include "platform/windows/LastError.h"
#include "platform/windows/OpenSocket.h"
#include "platform/windows/Overlapped.h"

#include <algorithm>
#include <cstring>

namespace platform {

namespace {

constexpr uint32_t kChunk = 255;

// How long a receive on a connection that is over pauses before it fails, in milliseconds.
constexpr uint32_t kPauseWhenGone = 50;

// Of the one receive in progress. Not on the stack of the thread that waits for it, which may be ended by
// force.
constinit Overlapped receiving;
constinit char chunk[kChunk] = {};

// The bytes that came, 0 or -1 when the connection is over.
int32_t ReceiveChunk(HANDLE socket, uint32_t count) {
    WSABUF buffer = {std::min(count, kChunk), chunk};
    if (!receiving.Begin())
        return -1;
    const int begun = WSARecv(reinterpret_cast<SOCKET>(socket), &buffer, 1, nullptr, &receiving.Word(),
                              receiving.Get(), nullptr);
    DWORD got = 0;
    const bool came = receiving.Finish(socket, begun == 0 || WSAGetLastError() == WSA_IO_PENDING, got);
    return came ? static_cast<int32_t>(got) : -1;
}

// How often a send that waits looks whether the socket is still open, in milliseconds.
constexpr long kLook = 20;

// False, with the reason recorded, when waiting has become useless.
bool WaitForSpace(SOCKET socket) {
    fd_set sockets = {1, {socket}};
    TIMEVAL time = {0, kLook * 1000};
    return select(0, nullptr, &sockets, nullptr, &time) != SOCKET_ERROR;
}

// What the system takes of the bytes: 0 when it had no space for any, -1 when none will be taken again.
int32_t SendPart(SocketHandle socket, const uint8_t *bytes, uint32_t count) {
    const HandleUse use = UseSocket(socket);
    if (!use.IsOpen())
        return -1;
    const auto part = static_cast<int>(std::min<uint32_t>(count, 1u << 20));
    const int sent = send(static_cast<SOCKET>(socket), reinterpret_cast<const char *>(bytes), part, 0);
    if (sent >= 0)
        return sent;
    return WSAGetLastError() == WSAEWOULDBLOCK && WaitForSpace(static_cast<SOCKET>(socket)) ? 0 : -1;
}

int32_t ReceiveFrom(SocketHandle socket, uint32_t count) {
    const HandleUse use = UseSocket(socket);
    return use.IsOpen() ? ReceiveChunk(use.Get(), count) : -1;
}

} // namespace

int32_t Send(SocketHandle socket, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    taken = 0;
    while (taken < count) {
        const int32_t sent = SendPart(socket, bytes + taken, count - taken);
        if (sent < 0)
            return -1;
        taken += static_cast<uint32_t>(sent);
    }
    return static_cast<int32_t>(taken);
}

int32_t Receive(SocketHandle socket, uint8_t *bytes, uint32_t count) {
    const int32_t got = ReceiveFrom(socket, count);
    if (got > 0) {
        std::memcpy(bytes, chunk, static_cast<size_t>(got));
        return got;
    }
    const DWORD error = GetLastError();
    Sleep(kPauseWhenGone);
    Fail(error);
    return got;
}

} // namespace platform

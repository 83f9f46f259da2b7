#include "platform/Socket.h"

#include "platform/windows/LastError.h"
#include "platform/windows/OpenSocket.h"
#include "platform/windows/WideText.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>

namespace platform {

namespace {

constexpr auto kNoSocket = static_cast<SocketHandle>(INVALID_SOCKET);

static_assert(kNoSocket == OpenHandle::kNone);

// The one connection's.
constinit OpenHandle openSocket;

std::atomic<int> failedStarts = 0;

SOCKET Of(SocketHandle handle) {
    return static_cast<SOCKET>(handle);
}

struct AddressesFreed {
    void operator()(ADDRINFOW *addresses) const { FreeAddrInfoW(addresses); }
};
using Addresses = std::unique_ptr<ADDRINFOW, AddressesFreed>;

Addresses Resolve(const char16_t *host, uint32_t port) {
    if (host == nullptr || *host == 0 || port > 65535) {
        WSASetLastError(WSAHOST_NOT_FOUND);
        return nullptr;
    }
    ADDRINFOW hints = {};
    hints.ai_socktype = SOCK_STREAM;
    ADDRINFOW *found = nullptr;
    const int error = GetAddrInfoW(Wide(host), std::to_wstring(port).c_str(), &hints, &found);
    if (error != 0)
        WSASetLastError(error);
    return Addresses(error == 0 ? found : nullptr);
}

// The first IPv4 address where the host has one: that is what the socket was made for.
const ADDRINFOW *Preferred(const ADDRINFOW *addresses) {
    for (const ADDRINFOW *address = addresses; address != nullptr; address = address->ai_next)
        if (address->ai_family == AF_INET)
            return address;
    return addresses;
}

// Bound to any local port and address.
SocketHandle MakeStream(int family) {
    const SOCKET made = socket(family, SOCK_STREAM, IPPROTO_TCP);
    SOCKADDR_STORAGE any = {};
    any.ss_family = static_cast<ADDRESS_FAMILY>(family);
    const int size = family == AF_INET ? sizeof(SOCKADDR_IN) : sizeof(SOCKADDR_IN6);
    if (made != INVALID_SOCKET && bind(made, reinterpret_cast<const SOCKADDR *>(&any), size) == 0)
        return static_cast<SocketHandle>(made);
    const int error = WSAGetLastError();
    closesocket(made);
    WSASetLastError(error);
    return kNoSocket;
}

int FamilyOf(SocketHandle handle) {
    WSAPROTOCOL_INFOW protocol;
    int size = sizeof protocol;
    auto *const bytes = reinterpret_cast<char *>(&protocol);
    const bool known = getsockopt(Of(handle), SOL_SOCKET, SO_PROTOCOL_INFOW, bytes, &size) == 0;
    return known ? protocol.iAddressFamily : AF_INET;
}

bool StopBlocking(SocketHandle handle) {
    u_long nonBlocking = 1;
    return ioctlsocket(Of(handle), static_cast<long>(FIONBIO), &nonBlocking) == 0;
}

// A socket for the other family in place of this one.
SocketHandle Replace(SocketHandle handle, int family) {
    CloseSocket(handle);
    const SocketHandle made = MakeStream(family);
    openSocket.Set(made);
    StopBlocking(made);
    return made;
}

// How long a close may wait for the peer to have taken what was sent, in milliseconds.
constexpr DWORD kLastMoments = 100;

// As select: 1 when a receive has something to take, 0 when the time is over.
int AwaitBytes(SOCKET socket, DWORD milliseconds) {
    fd_set sockets = {1, {socket}};
    TIMEVAL time = {0, static_cast<long>(milliseconds * 1000)};
    return select(0, &sockets, nullptr, nullptr, &time);
}

// False when the connection is over.
bool DropBytes(SOCKET socket, DWORD milliseconds) {
    char dropped[4096];
    const int ready = AwaitBytes(socket, milliseconds);
    return ready == 0 || (ready == 1 && recv(socket, dropped, sizeof dropped, 0) > 0);
}

// Says that nothing more will be sent, and takes what the peer says until it ends the connection, too: the
// system answers what comes after a close with a reset, which makes the peer lose the end of what was sent.
// Nothing is to be done for a socket that is not connected.
void LetArrive(SOCKET socket) {
    if (shutdown(socket, SD_SEND) != 0)
        return;
    const ULONGLONG end = GetTickCount64() + kLastMoments;
    ULONGLONG now = GetTickCount64();
    while (now < end && DropBytes(socket, static_cast<DWORD>(end - now)))
        now = GetTickCount64();
}

} // namespace

HandleUse UseSocket(SocketHandle socket) {
    return HandleUse(openSocket, socket, WSAENOTSOCK);
}

bool StartSocketSupport() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) == 0)
        return true;
    ++failedStarts;
    return false;
}

void StopSocketSupport() {
    int failed = failedStarts;
    while (failed != 0 && !failedStarts.compare_exchange_weak(failed, failed - 1)) {
    }
    if (failed == 0)
        WSACleanup();
}

CAsyncSocket::CAsyncSocket() : handle(kNoSocket) {}

CAsyncSocket::~CAsyncSocket() {
    CloseSocket(handle);
}

int32_t CAsyncSocket::Create(uint32_t port, int32_t type, int32_t, const char16_t *address) {
    if (port != 0 || type != kStreamSocket || address != nullptr || !openSocket.IsNone())
        return Fail(WSAEINVAL);
    handle = MakeStream(AF_INET);
    openSocket.Set(handle);
    return handle != kNoSocket;
}

// The socket itself never blocks from here on: Send and Receive wait, whatever the argument.
int32_t CAsyncSocket::IOCtl(SocketCommand, uint32_t) {
    return StopBlocking(handle);
}

int32_t CAsyncSocket::Connect(const char16_t *host, uint32_t port) {
    const Addresses addresses = Resolve(host, port);
    const ADDRINFOW *const address = Preferred(addresses.get());
    if (address == nullptr)
        return 0;
    if (address->ai_family != FamilyOf(handle))
        handle = Replace(handle, address->ai_family);
    return connect(Of(handle), address->ai_addr, static_cast<int>(address->ai_addrlen)) == 0;
}

int32_t CAsyncSocket::Receive(void *bytes, int32_t count, int32_t flags) {
    if (count < 0 || flags != 0) {
        Fail(WSAEINVAL);
        return -1;
    }
    return platform::Receive(handle, static_cast<uint8_t *>(bytes), static_cast<uint32_t>(count));
}

void CAsyncSocket::OnConnect(int32_t) {}

int32_t SelectWritable(SocketHandle readLimit, SocketHandle socket, int32_t seconds, int32_t microseconds,
                       bool &writable) {
    fd_set sockets = {};
    sockets.fd_count = 1;
    sockets.fd_array[0] = Of(socket);
    TIMEVAL time = {std::max(seconds, 0), std::max(microseconds, 0)};
    const int ready = select(static_cast<int>(readLimit), nullptr, &sockets, nullptr, &time);
    writable = ready > 0 && sockets.fd_count == 1;
    return ready;
}

int32_t CloseSocket(SocketHandle socket) {
    if (!openSocket.Remove(socket)) {
        Fail(WSAENOTSOCK);
        return -1;
    }
    LetArrive(Of(socket));
    return closesocket(Of(socket));
}

} // namespace platform

#include "platform/Socket.h"

#include "platform/linux/Connection.h"
#include "platform/linux/SystemText.h"

#include <algorithm>
#include <new>

namespace platform {

namespace {

constexpr SocketHandle kNoSocket = -1;

// The connection behind the handle, if it is still this object's: another may have been given the same
// number.
std::shared_ptr<Connection> FindOwn(SocketHandle handle, const CAsyncSocket *owner) {
    auto connection = Connections().Find(handle);
    return connection && connection->Owner() == owner ? connection : nullptr;
}

SocketHandle MakeConnection(const CAsyncSocket *owner) {
    Descriptor stream = MakeStream(AF_INET);
    if (!stream.IsOpen())
        return kNoSocket;
    const auto connection = std::make_shared<Connection>(std::move(stream), owner);
    if (!connection->IsValid()) {
        Fail(EMFILE);
        return kNoSocket;
    }
    Connections().Add(connection);
    return connection->Number();
}

uint64_t NotNegative(int32_t time) {
    return static_cast<uint64_t>(std::max(time, 0));
}

} // namespace

bool StartSocketSupport() {
    return true;
}

void StopSocketSupport() {}

CAsyncSocket::CAsyncSocket() : handle(kNoSocket) {}

CAsyncSocket::~CAsyncSocket() {
    if (FindOwn(handle, this))
        CloseSocket(handle);
}

int32_t CAsyncSocket::Create(uint32_t port, int32_t type, int32_t, const char16_t *address) {
    if (port != 0 || type != kStreamSocket || address != nullptr || FindOwn(handle, this))
        return Fail(EINVAL);
    try {
        handle = MakeConnection(this);
    } catch (const std::bad_alloc &) {
        Fail(ENOMEM);
    }
    return handle != kNoSocket;
}

int32_t CAsyncSocket::IOCtl(SocketCommand, uint32_t argument) {
    const auto connection = FindOwn(handle, this);
    if (!connection)
        return Fail(EBADF);
    connection->SetNonBlocking(argument != 0);
    return true;
}

int32_t CAsyncSocket::Connect(const char16_t *host, uint32_t port) {
    const auto connection = FindOwn(handle, this);
    if (!connection)
        return Fail(EBADF);
    try {
        return connection->Connect(ToSystemText(host), port);
    } catch (const std::bad_alloc &) {
        return Fail(ENOMEM);
    }
}

int32_t CAsyncSocket::Receive(void *bytes, int32_t count, int32_t flags) {
    if (count < 0 || flags != 0) {
        Fail(EINVAL);
        return -1;
    }
    return platform::Receive(handle, static_cast<uint8_t *>(bytes), static_cast<uint32_t>(count));
}

void CAsyncSocket::OnConnect(int32_t) {}

int32_t SelectWritable(SocketHandle, SocketHandle socket, int32_t seconds, int32_t microseconds,
                       bool &writable) {
    writable = false;
    const auto connection = Connections().FindOrFail(socket);
    if (!connection)
        return -1;
    writable = connection->AwaitStanding(
        AfterMicroseconds(NotNegative(seconds) * 1'000'000 + NotNegative(microseconds)));
    return writable;
}

int32_t CloseSocket(SocketHandle socket) {
    constexpr long tableAndThis = 2;
    // A call in progress holds it as well; what that has not sent is given up.
    if (const auto connection = Connections().Find(socket); connection.use_count() == tableAndThis)
        connection->LetArrive();
    return CloseHandle(Connections(), socket) ? 0 : -1;
}

} // namespace platform

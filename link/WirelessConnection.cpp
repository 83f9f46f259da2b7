#include "api/NadrelPrinter.h"

#include "link/Connection.h"
#include "link/MySocket.h"
#include "link/Pacing.h"
#include "spool/Guarded.h"
#include "spool/State.h"

#include <new>
#include <string>

using namespace nadrel;

namespace {

// The two functions tell the same situations with different codes; hosts know them apart.
enum InitWlanResult : int32_t { kWlanFailed = -1, kWlanTimedOut = -2, kWlanAlreadyConnected = -3 };
enum ConnectWirelessResult : int32_t {
    kWirelessAlreadyConnected = -1,
    kWirelessFailed = -2,
    kWirelessNotWritable = -3,
    kWirelessTimedOut = -7
};

constexpr int32_t kPollMicroseconds = 200;

// What goes wrong in here shows later, as a socket that cannot be waited for or is never writable.
MySocket &CreateSocket() {
    DisposeOfSocket(); // what a connect that ran out of memory has left
    auto *const socket = new MySocket;
    WirelessSocket = socket;
    platform::StartSocketSupport();
    socket->Create(0, platform::kStreamSocket, platform::kAllSocketEvents, nullptr);
    return *socket;
}

int32_t Select(const MySocket &socket, int32_t seconds, int32_t microseconds, bool &writable) {
    const platform::SocketHandle handle = socket.Handle();
    writable = false;
    return platform::SelectWritable(handle + 1, handle, seconds, microseconds, writable);
}

int32_t CloseAndReturn(int32_t result) {
    ClosePrinter();
    DisposeOfSocket();
    return result;
}

int32_t FailAndDispose(int32_t result) {
    FailConnect(result);
    DisposeOfSocket();
    return result;
}

int32_t LinkUp(const MySocket &socket) {
    CreateConversionBuffer();
    LinkSocket = socket.Handle();
    WirelessLinkOpen = 1;
    StartReceiveSide();
    return ProbePrinter();
}

int32_t InitWlan(const char16_t *address, uint32_t port, int32_t timeout, int32_t framed) {
    if (LinkIsTaken())
        return kWlanAlreadyConnected;
    FramedMode = framed;
    ResetCounters();
    MySocket &socket = CreateSocket();
    if (socket.IOCtl(platform::SocketCommand::nonBlocking, 1) == -1)
        return CloseAndReturn(kWlanFailed);
    socket.Connect(address, port);
    bool writable = false;
    if (Select(socket, timeout / 1000, 0, writable) == -1)
        return CloseAndReturn(kWlanFailed);
    if (!writable)
        return CloseAndReturn(kWlanTimedOut);
    if (socket.IOCtl(platform::SocketCommand::nonBlocking, 0) == -1)
        return CloseAndReturn(kWlanFailed);
    return LinkUp(socket);
}

// 1 when the connection stands, else what is returned when this was the last attempt. A connect that
// completes at once does not count: only the writability test says that a connection stands, on the next
// attempt.
int32_t Attempt(MySocket &socket, const char16_t *address, uint32_t port) {
    if (socket.Connect(address, port) != 0)
        return kWirelessNotWritable;
    bool writable = false;
    const int32_t ready = Select(socket, 0, kPollMicroseconds, writable);
    if (ready == 0)
        return kWirelessTimedOut;
    if (ready < 0)
        return kWirelessFailed;
    return writable ? static_cast<int32_t>(NADREL_SUCCESS) : static_cast<int32_t>(kWirelessNotWritable);
}

int32_t AttemptWithin(AttemptPause &pause, MySocket &socket, const char16_t *address, uint32_t port,
                      int32_t attempts) {
    int32_t result = kWirelessTimedOut;
    for (int32_t attempt = 0; attempt < attempts && result != NADREL_SUCCESS; ++attempt) {
        pause.Wait();
        result = Attempt(socket, address, port);
    }
    return result;
}

int32_t ConnectWireless(const char16_t *address, uint32_t port, int32_t timeout, int32_t framed) {
    AttemptPause pause;
    if (LinkIsTaken())
        return kWirelessAlreadyConnected;
    ResetLinkState();
    ResetCounters();
    FramedMode = framed;
    MySocket &socket = CreateSocket();
    if (socket.IOCtl(platform::SocketCommand::nonBlocking, 1) == 0)
        return FailAndDispose(kWirelessFailed);
    const int32_t result = AttemptWithin(pause, socket, address, port, AttemptsWithin(timeout));
    if (result != NADREL_SUCCESS)
        return FailAndDispose(result);
    if (socket.IOCtl(platform::SocketCommand::nonBlocking, 0) == -1)
        return CloseAndReturn(kWirelessFailed);
    return LinkUp(socket);
}

} // namespace

int32_t InitWlanPrinter(const NadrelChar *address, uint32_t port, int32_t timeout, int32_t framed) {
    return Guarded([=] { return InitWlan(address, port, timeout, framed); });
}

int32_t ConnectWirelessPrinter(const NadrelChar *address, uint32_t port, int32_t timeout, int32_t framed) {
    return Guarded([=] { return ConnectWireless(address, port, timeout, framed); });
}

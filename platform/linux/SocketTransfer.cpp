// What moves bytes through a connection, and waits for them.

#include "platform/Socket.h"

#include "platform/linux/Connection.h"
#include "platform/linux/PeerSilence.h"
#include "platform/linux/SendTimeout.h"
#include "platform/linux/ThreadExit.h"

#include <algorithm>
#include <atomic>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

namespace platform {

namespace {

// How often a send that waits looks at what the peer does, in milliseconds.
constexpr uint64_t kLook = 250;

std::atomic<int32_t> sendTimeout = 0;

// What a peer that has stopped reading still does. Bytes that it acknowledges are progress as well as bytes
// that the system takes: the system's buffer makes room in large steps only.
class Progress {
  public:
    explicit Progress(const Connection &to) : connection(to), limit(static_cast<uint64_t>(sendTimeout)) {
        Restart();
    }

    void Restart() {
        end = limit == 0 ? kNever : AfterMilliseconds(limit);
        unacknowledged = Unacknowledged();
    }

    Deadline NextLook() const { return std::min(end, AfterMilliseconds(kLook)); }

    // Whether there is reason to wait on.
    bool GoesOn() {
        if (Unacknowledged() < unacknowledged)
            Restart();
        return std::chrono::steady_clock::now() < end && !PeerIsSilent(Signs());
    }

  private:
    int Unacknowledged() const {
        int bytes = 0;
        ioctl(connection.Number(), SIOCOUTQ, &bytes);
        return bytes;
    }

    LifeSigns Signs() const {
        tcp_info info = {};
        socklen_t size = sizeof info;
        getsockopt(connection.Number(), IPPROTO_TCP, TCP_INFO, &info, &size);
        return {info.tcpi_last_ack_recv, std::max(info.tcpi_retransmits, info.tcpi_probes)};
    }

    const Connection &connection;
    const uint64_t limit; // milliseconds, 0 for none
    Deadline end;
    int unacknowledged = 0;
};

// False, with the reason recorded, when the socket is being closed or waiting has become useless.
bool WaitForSpace(const Connection &connection, Progress &progress) {
    if (connection.IsNonBlocking())
        return Fail(EAGAIN);
    for (;;) {
        const auto report = connection.Wait(POLLOUT, progress.NextLook());
        if (!report)
            return Fail(ECANCELED);
        if (*report != 0)
            return true;
        if (!progress.GoesOn())
            return Fail(ETIMEDOUT);
    }
}

bool SendAll(const Connection &connection, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    constexpr int kFlags = MSG_NOSIGNAL | MSG_DONTWAIT;
    Progress progress(connection);
    while (taken < count) {
        const ssize_t sent =
            Uninterrupted([&] { return send(connection.Number(), bytes + taken, count - taken, kFlags); });
        if (sent > 0) {
            taken += static_cast<uint32_t>(sent);
            progress.Restart();
        } else if (sent < 0 && errno != EAGAIN) {
            return Fail(errno);
        } else if (!WaitForSpace(connection, progress)) {
            return false;
        }
    }
    return true;
}

// What the socket has received just now: up to `count` bytes, 0 at the end of the stream, -1 with errno.
ssize_t TakeReceived(const Connection &connection, uint8_t *bytes, uint32_t count) {
    return Uninterrupted([&] { return recv(connection.Number(), bytes, count, MSG_DONTWAIT); });
}

bool WaitForBytes(const Connection &connection) {
    if (connection.IsNonBlocking())
        return Fail(EAGAIN);
    return connection.Wait(POLLIN, kNever) || Fail(ECANCELED);
}

int32_t OverAfterPause(const Connection &connection, ssize_t came) {
    const int error = errno;
    connection.PauseWhenGone();
    if (came < 0)
        Fail(error);
    return static_cast<int32_t>(came);
}

} // namespace

bool SetSendTimeout(int32_t milliseconds) {
    if (milliseconds < 0)
        return Fail(EINVAL);
    sendTimeout = milliseconds;
    return true;
}

int32_t Send(SocketHandle socket, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    taken = 0;
    LeaveIfTerminated();
    const auto connection = Connections().FindOrFail(socket);
    return connection && SendAll(*connection, bytes, count, taken) ? static_cast<int32_t>(taken) : -1;
}

int32_t Receive(SocketHandle socket, uint8_t *bytes, uint32_t count) {
    LeaveIfTerminated();
    const auto connection = Connections().FindOrFail(socket);
    if (!connection) {
        WaitUntil(AfterMilliseconds(kPauseWhenGone));
        return -1;
    }
    for (;;) {
        const ssize_t came = TakeReceived(*connection, bytes, count);
        if (came > 0)
            return static_cast<int32_t>(came);
        if (came == 0 || errno != EAGAIN)
            return OverAfterPause(*connection, came);
        if (!WaitForBytes(*connection))
            return -1;
    }
}

} // namespace platform

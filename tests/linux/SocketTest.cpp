#include "platform/Socket.h"

#include "platform/Error.h"
#include "tests/linux/Listener.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/tcp.h>

namespace {

using platform::CAsyncSocket;
using platform::SelectWritable;
using platform::SocketCommand;
using platform::SocketHandle;

int Error() {
    return static_cast<int>(platform::LastError());
}

bool Create(CAsyncSocket &socket) {
    return socket.Create(0, platform::kStreamSocket, platform::kAllSocketEvents, nullptr) != 0;
}

// A socket that connects without blocking.
class Connecting {
  public:
    Connecting() {
        EXPECT_TRUE(Create(socket));
        EXPECT_NE(socket.IOCtl(SocketCommand::nonBlocking, 1), 0);
    }

    int32_t Connect(uint32_t port, const char16_t *host = u"127.0.0.1") { return socket.Connect(host, port); }

    int32_t Select(int32_t seconds, int32_t microseconds = 0) {
        writable = true;
        return SelectWritable(socket.Handle() + 1, socket.Handle(), seconds, microseconds, writable);
    }

    CAsyncSocket socket;
    bool writable = false;
};

TEST(Socket, SupportIsToBeHadAnyNumberOfTimes) {
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(platform::StartSocketSupport());
    for (int i = 0; i < 5; ++i)
        platform::StopSocketSupport();
    EXPECT_TRUE(platform::StartSocketSupport());
    platform::StopSocketSupport();
}

TEST(Socket, ConnectsToAnAddress) {
    const Listener listener;
    Connecting client;
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 1);
    EXPECT_TRUE(client.writable);
    EXPECT_GE(listener.Accept().Number(), 0);
}

TEST(Socket, ConnectsToAnIpv6Address) {
    std::optional<Listener> listener;
    try {
        listener.emplace(AF_INET6);
    } catch (const std::system_error &) {
        GTEST_SKIP() << "no IPv6 here";
    }
    Connecting client;
    client.Connect(listener->Port(), u"::1");
    EXPECT_EQ(client.Select(10), 1);
    EXPECT_TRUE(client.writable);
    EXPECT_GE(listener->Accept().Number(), 0);
}

TEST(Socket, ConnectsToAHostNameThatListensOnIpv4Only) {
    const Listener listener;
    Connecting client;
    client.Connect(listener.Port(), u"localhost");
    EXPECT_EQ(client.Select(10), 1);
    EXPECT_TRUE(client.writable);
    EXPECT_GE(listener.Accept().Number(), 0);
}

TEST(Socket, TheNextAddressIsTriedWhenOneRefusesOrCannotBeReached) {
    // The listener has 127.0.0.1 only; an address of the local link without an interface is no destination.
    for (const char16_t *host : {u"127.0.0.2+127.0.0.1", u"::1+127.0.0.1", u"127.0.0.2+127.0.0.3+127.0.0.1",
                                 u"fe80::1+127.0.0.1", u"127.0.0.2+fe80::1+127.0.0.1"}) {
        const Listener listener;
        Connecting client;
        client.Connect(listener.Port(), host);
        EXPECT_EQ(client.Select(10), 1);
        EXPECT_TRUE(client.writable);
        EXPECT_GE(listener.Accept().Number(), 0);
    }
}

TEST(Socket, TheNextAddressIsTriedAlsoBetweenTwoShortWaits) {
    const Listener listener;
    Connecting client;
    client.Connect(listener.Port(), u"127.0.0.2+127.0.0.3+127.0.0.1");
    EXPECT_TRUE(Await([&] { return client.Select(0, 200) == 1; }));
    EXPECT_TRUE(client.writable);
}

TEST(Socket, ABlockingConnectTriesAllAddressesToo) {
    const Listener listener;
    CAsyncSocket socket;
    ASSERT_TRUE(Create(socket));
    EXPECT_NE(socket.Connect(u"127.0.0.2+127.0.0.1", listener.Port()), 0);
}

TEST(Socket, KeepsItsHandleWhateverTheFamily) {
    std::optional<Listener> listener;
    try {
        listener.emplace(AF_INET6);
    } catch (const std::system_error &) {
        GTEST_SKIP() << "no IPv6 here";
    }
    Connecting client;
    const SocketHandle before = client.socket.Handle();
    client.Connect(listener->Port(), u"::1");
    EXPECT_EQ(client.Select(10), 1);
    EXPECT_EQ(client.socket.Handle(), before);
    const int number = static_cast<int>(before);
    EXPECT_EQ(fcntl(number, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(fcntl(number, F_GETFL) & O_NONBLOCK, O_NONBLOCK);
}

TEST(Socket, ARefusedConnectionIsNeverWritable) {
    const Listener listener(AF_INET, Backlog::refusing);
    Connecting client;
    EXPECT_EQ(client.Connect(listener.Port()), 0);
    const Stopwatch watch;
    EXPECT_EQ(client.Select(30), 0);
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ECONNREFUSED);
    EXPECT_LT(watch.Elapsed(), 10'000) << "it is over at once, not at the end of the time";
    EXPECT_EQ(client.Select(0), 0) << "and stays so";
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ECONNREFUSED);
}

TEST(Socket, ANameWhoseAddressesAllRefuseIsRefused) {
    const Listener listener(AF_INET, Backlog::refusing);
    Connecting client;
    client.Connect(listener.Port(), u"127.0.0.1+127.0.0.2");
    EXPECT_EQ(client.Select(30), 0);
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ECONNREFUSED);
}

TEST(Socket, AnUnansweredConnectionEndsWithTheTimeout) {
    const Listener listener(AF_INET, Backlog::silent);
    Connecting client;
    EXPECT_EQ(client.Connect(listener.Port()), 0);
    const Stopwatch watch;
    EXPECT_EQ(client.Select(0, 300'000), 0);
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 10'000);
}

TEST(Socket, SignalsNeitherShortenNorProlongTheWait) {
    const Listener listener(AF_INET, Backlog::silent);
    Connecting client;
    EXPECT_EQ(client.Connect(listener.Port()), 0);
    const SignalStorm storm;
    const Stopwatch watch;
    EXPECT_EQ(client.Select(0, 300'000), 0);
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 300);
    EXPECT_LT(watch.Elapsed(), 5'000);
}

TEST(Socket, ANegativeTimeIsNone) {
    const Listener listener(AF_INET, Backlog::silent);
    Connecting client;
    EXPECT_EQ(client.Connect(listener.Port()), 0);
    const Stopwatch watch;
    EXPECT_EQ(client.Select(-5, -5), 0);
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_LT(watch.Elapsed(), 5'000);
}

TEST(Socket, ASecondConnectNeverReportsSuccess) {
    const Listener silent(AF_INET, Backlog::silent);
    Connecting waiting;
    EXPECT_EQ(waiting.Connect(silent.Port()), 0);
    EXPECT_EQ(waiting.Connect(silent.Port()), 0);
    EXPECT_EQ(Error(), EALREADY);

    const Listener listener;
    Connecting client;
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 1);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(client.Connect(listener.Port()), 0);
        EXPECT_EQ(Error(), EISCONN);
    }
    EXPECT_EQ(client.Select(0), 1) << "the connection has not been touched";
    EXPECT_TRUE(client.writable);
}

TEST(Socket, AnAttemptInProgressIsNotBegunAnew) {
    const Listener listener;
    Connecting client;
    client.Connect(listener.Port());
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(client.Connect(listener.Port()), 0);
    EXPECT_EQ(client.Select(10), 1);
    const Peer first = listener.Accept();
    EXPECT_GE(first.Number(), 0);
    pollfd further = {static_cast<int>(client.socket.Handle()), POLLIN, 0};
    EXPECT_EQ(poll(&further, 1, 0), 0) << "the one connection lives";
}

TEST(Socket, AfterAFailureConnectBeginsAnew) {
    Listener listener(AF_INET, Backlog::refusing);
    Connecting client;
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 0);
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 0);
    EXPECT_EQ(Error(), ECONNREFUSED);
    listener.Listen();
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 1);
    EXPECT_TRUE(client.writable);
    EXPECT_GE(listener.Accept().Number(), 0);
}

TEST(Socket, ConnectNoticesItselfThatTheLastAttemptHasFailed) {
    Listener listener(AF_INET, Backlog::refusing);
    Connecting client;
    client.Connect(listener.Port());
    listener.Listen();
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 1);
    EXPECT_TRUE(client.writable);
}

TEST(Socket, ABlockingConnectWaitsForTheConnection) {
    const Listener listener;
    CAsyncSocket socket;
    ASSERT_TRUE(Create(socket));
    EXPECT_NE(socket.Connect(u"127.0.0.1", listener.Port()), 0);
    EXPECT_EQ(socket.Connect(u"127.0.0.1", listener.Port()), 0);
    const Listener refusing(AF_INET, Backlog::refusing);
    CAsyncSocket other;
    ASSERT_TRUE(Create(other));
    EXPECT_EQ(other.Connect(u"127.0.0.1", refusing.Port()), 0);
    EXPECT_EQ(Error(), ECONNREFUSED);
}

TEST(Socket, HostsAndPortsThatDoNotExistFailAtOnce) {
    const struct {
        const char16_t *host;
        uint32_t port;
        int error;
    } kRows[] = {
        {nullptr, 9100, EINVAL},
        {u"", 9100, EINVAL},
        {u"127.0.0.1", 0, EINVAL},
        {u"127.0.0.1", 65536, EINVAL},
        {u"127.0.0.1", UINT32_MAX, EINVAL},
        {u"256.1.1.1.", 9100, 0},
        {u"no such host", 9100, 0},
        {u"[::1]", 9100, 0},
    };
    for (const auto &row : kRows) {
        Connecting client;
        EXPECT_EQ(client.Connect(row.port, row.host), 0);
        const int reason = Error();
        EXPECT_TRUE(row.error != 0 ? reason == row.error : reason != 0) << reason;
        EXPECT_EQ(client.Select(30), 0);
        EXPECT_FALSE(client.writable);
        EXPECT_EQ(Error(), reason);
    }
}

TEST(Socket, ASocketThatNeverConnectedIsNotWritable) {
    Connecting client;
    EXPECT_EQ(client.Select(30), 0);
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ENOTCONN);
}

TEST(Socket, AConnectionThatHasBeenResetIsNotWritable) {
    const Listener listener;
    Connecting client;
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 1);
    listener.Accept().Reset();
    EXPECT_TRUE(Await([&] { return client.Select(0) == 0; }));
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ECONNRESET);
}

TEST(Socket, WithoutAHandleThereIsNothingToWaitForOrToClose) {
    bool writable = true;
    for (const SocketHandle handle :
         {SocketHandle{-1}, SocketHandle{0}, SocketHandle{9999}, SocketHandle{INTPTR_MAX / 2 + 1}}) {
        EXPECT_EQ(SelectWritable(handle + 1, handle, 30, 0, writable), -1);
        EXPECT_EQ(Error(), EBADF);
        EXPECT_FALSE(writable);
        EXPECT_EQ(platform::CloseSocket(handle), -1);
    }
    CAsyncSocket socket;
    EXPECT_EQ(socket.IOCtl(SocketCommand::nonBlocking, 1), 0);
    EXPECT_EQ(Error(), EBADF);
    EXPECT_EQ(socket.Connect(u"127.0.0.1", 9100), 0);
    EXPECT_EQ(Error(), EBADF);
}

TEST(Socket, CreateMakesStreamsBoundToNothingOnly) {
    CAsyncSocket socket;
    EXPECT_EQ(socket.Create(9100, platform::kStreamSocket, 63, nullptr), 0);
    EXPECT_EQ(Error(), EINVAL);
    EXPECT_EQ(socket.Create(0, 2, 63, nullptr), 0);
    EXPECT_EQ(socket.Create(0, platform::kStreamSocket, 63, u"127.0.0.1"), 0);
    EXPECT_TRUE(Create(socket));
    EXPECT_FALSE(Create(socket)) << "it has a handle already";
}

TEST(Socket, WithoutDescriptorsNoneIsMade) {
    CAsyncSocket socket;
    const NoDescriptorsLeft none;
    EXPECT_FALSE(Create(socket));
    EXPECT_EQ(Error(), EMFILE);
}

TEST(Socket, WaitsForAnswersWithoutHoldingAnythingBackAndNoticesADeadPeer) {
    const Listener listener;
    Connecting client;
    client.Connect(listener.Port());
    ASSERT_EQ(client.Select(10), 1);
    const auto option = [&](int level, int name) {
        int value = -1;
        socklen_t size = sizeof value;
        getsockopt(static_cast<int>(client.socket.Handle()), level, name, &value, &size);
        return value;
    };
    EXPECT_NE(option(IPPROTO_TCP, TCP_NODELAY), 0);
    EXPECT_NE(option(SOL_SOCKET, SO_KEEPALIVE), 0);
    EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPIDLE) +
                  option(IPPROTO_TCP, TCP_KEEPINTVL) * option(IPPROTO_TCP, TCP_KEEPCNT),
              120)
        << "seconds";
    EXPECT_EQ(option(IPPROTO_TCP, TCP_USER_TIMEOUT), 0)
        << "it would end the connection of a printer out of paper";
}

TEST(Socket, ClosingReleasesAWaitForTheConnection) {
    const Listener listener(AF_INET, Backlog::silent);
    Connecting client;
    client.Connect(listener.Port());
    std::thread host([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        EXPECT_EQ(platform::CloseSocket(client.socket.Handle()), 0);
    });
    const Stopwatch watch;
    EXPECT_EQ(client.Select(60), 0);
    EXPECT_EQ(Error(), ECANCELED);
    EXPECT_LT(watch.Elapsed(), 30'000);
    host.join();
}

TEST(Socket, TheObjectClosesItsHandle) {
    SocketHandle handle = -1;
    {
        Connecting client;
        handle = client.socket.Handle();
        EXPECT_GE(fcntl(static_cast<int>(handle), F_GETFD), 0);
    }
    EXPECT_EQ(fcntl(static_cast<int>(handle), F_GETFD), -1);
}

TEST(Socket, TheObjectLeavesANumberAloneThatIsNotItsOwnAnyMore) {
    CAsyncSocket second;
    {
        CAsyncSocket first;
        ASSERT_TRUE(Create(first));
        const SocketHandle handle = first.Handle();
        EXPECT_EQ(platform::CloseSocket(handle), 0);
        EXPECT_EQ(platform::CloseSocket(handle), -1);
        ASSERT_TRUE(Create(second));
        ASSERT_EQ(second.Handle(), handle);
        EXPECT_EQ(first.IOCtl(SocketCommand::nonBlocking, 1), 0);
        EXPECT_EQ(first.Connect(u"127.0.0.1", 9100), 0);
    }
    EXPECT_GE(fcntl(static_cast<int>(second.Handle()), F_GETFD), 0);
    EXPECT_NE(second.IOCtl(SocketCommand::nonBlocking, 1), 0);
}

TEST(Socket, OnConnectDoesNothingByItself) {
    CAsyncSocket socket;
    socket.OnConnect(0);
    EXPECT_EQ(socket.Handle(), -1);
}

// Sends a byte each way.
void ExpectSocketWorks(const Listener &listener, CAsyncSocket &socket) {
    Peer peer = listener.Accept();
    uint32_t taken = 0;
    uint8_t byte = 0x1B;
    EXPECT_EQ(platform::Send(socket.Handle(), &byte, 1, taken), 1);
    EXPECT_EQ(peer.Read(1), std::vector<uint8_t>{0x1B});
    EXPECT_TRUE(peer.Write({0x06}));
    EXPECT_EQ(platform::Receive(socket.Handle(), &byte, 1), 1);
    EXPECT_EQ(byte, 0x06);
}

TEST(Socket, DescriptorZeroIsASocketLikeAnyOther) {
    const Listener listener;
    const StandardInputClosed closed;
    CAsyncSocket socket;
    EXPECT_TRUE(ConnectTo(listener, socket));
    EXPECT_EQ(socket.Handle(), 0);
    ExpectSocketWorks(listener, socket);
}

TEST(Socket, DescriptorsAboveAThousandWork) {
    const Listener listener;
    const DescriptorsTakenBelow taken(1100);
    CAsyncSocket socket;
    EXPECT_TRUE(ConnectTo(listener, socket));
    EXPECT_GE(socket.Handle(), 1100);
    ExpectSocketWorks(listener, socket);
}

TEST(Socket, AThousandConnectionsLeaveNothing) {
    const Listener listener;
    {
        CAsyncSocket socket;
        EXPECT_TRUE(ConnectTo(listener, socket));
        listener.Accept();
    }
    const auto descriptors = OpenDescriptors();
    const auto threads = RunningThreads();
    for (int i = 0; i < 1000; ++i) {
        CAsyncSocket socket;
        ASSERT_TRUE(ConnectTo(listener, socket));
        listener.Accept();
        ASSERT_EQ(platform::CloseSocket(socket.Handle()), 0);
    }
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; })) << RunningThreads() << " of " << threads;
}

} // namespace

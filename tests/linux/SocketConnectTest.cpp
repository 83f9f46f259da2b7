// How a socket comes to a connection, or does not.

#include "platform/Socket.h"

#include "tests/linux/Connecting.h"
#include "tests/linux/Listener.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

namespace {

using platform::CAsyncSocket;

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

} // namespace

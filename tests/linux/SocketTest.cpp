#include "platform/Socket.h"

#include "tests/linux/Connecting.h"
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

TEST(Socket, SupportIsToBeHadAnyNumberOfTimes) {
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(platform::StartSocketSupport());
    for (int i = 0; i < 5; ++i)
        platform::StopSocketSupport();
    EXPECT_TRUE(platform::StartSocketSupport());
    platform::StopSocketSupport();
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
    EXPECT_TRUE(NoDescriptorIsLost(descriptors));
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; })) << RunningThreads() << " of " << threads;
}

} // namespace

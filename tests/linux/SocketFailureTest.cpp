#include "platform/Socket.h"

#include "tests/linux/Connecting.h"
#include "tests/linux/Listener.h"
#include "tests/linux/Support.h"
#include "tests/linux/SystemFaults.h"
#include "tests/platform/ScriptedAllocation.h"

#include <gtest/gtest.h>

#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>

namespace {

using platform::CAsyncSocket;
using Bytes = std::vector<uint8_t>;

// A printer to which one can connect and print, at no cost of descriptors, whatever has failed before.
class SocketFailure : public testing::Test {
  protected:
    void TearDown() override {
        EXPECT_TRUE(NoDescriptorIsLost(descriptors));
        Connecting again;
        again.Connect(listener.Port());
        EXPECT_EQ(again.Select(10), 1);
        ExpectSends(again.socket);
    }

    void ExpectSends(const CAsyncSocket &socket) {
        Peer printer = listener.Accept();
        const uint8_t byte = 0x1B;
        uint32_t taken = 0;
        EXPECT_EQ(platform::Send(socket.Handle(), &byte, 1, taken), 1);
        EXPECT_EQ(printer.Read(1), Bytes{0x1B});
    }

    // What the system's own call does, at once or behind the back of its answer.
    void ConnectNow(const Connecting &client) const {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<uint16_t>(listener.Port()));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connect(static_cast<int>(client.socket.Handle()), reinterpret_cast<sockaddr *>(&address),
                sizeof address);
    }

    const Listener listener;
    const std::ptrdiff_t descriptors = OpenDescriptors();
};

TEST_F(SocketFailure, ASocketThatTheSystemDoesNotMakeFailsWithItsReason) {
    const SystemFault fault({.call = SystemCall::socket, .error = ENFILE});
    CAsyncSocket socket;
    EXPECT_FALSE(Create(socket));
    EXPECT_EQ(Error(), ENFILE);
    EXPECT_EQ(socket.Handle(), -1);
    EXPECT_TRUE(Create(socket));
}

TEST_F(SocketFailure, WithoutDescriptorsForItsEventsNoSocketIsMade) {
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    for (rlim_t few = 1; few < 3; ++few) {
        const DescriptorsTakenBelow taken(64);
        const rlimit tight = {64 + few, limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &tight);
        CAsyncSocket socket;
        EXPECT_FALSE(Create(socket)) << few;
        EXPECT_EQ(Error(), EMFILE);
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

// Tries the call with one allocation failing, the first, the second and so on until none does.
template <typename Call>
void ExpectEndsOfMemoryReported(Call call) {
    if (!scripted::allocation::CanFail())
        GTEST_SKIP() << "the sanitizer has an operator new of its own";
    int failures = 1;
    int nth = 0;
    while (failures != 0 && nth < 100) {
        scripted::allocation::FailNth(++nth, 0, SIZE_MAX);
        const int32_t result = call();
        failures = scripted::allocation::Failures();
        scripted::allocation::Allow();
        if (failures == 0)
            break;
        EXPECT_EQ(result, 0) << nth;
        EXPECT_EQ(Error(), ENOMEM) << nth;
    }
    EXPECT_GT(nth, 1);
    EXPECT_LT(nth, 100);
}

TEST_F(SocketFailure, WithoutMemoryNoSocketIsMade) {
    CAsyncSocket socket;
    ExpectEndsOfMemoryReported(
        [&] { return socket.Create(0, platform::kStreamSocket, platform::kAllSocketEvents, nullptr); });
    EXPECT_GE(socket.Handle(), 0);
}

TEST_F(SocketFailure, WithoutMemoryNoAttemptToConnectBegins) {
    Connecting client;
    ExpectEndsOfMemoryReported(
        [&] { return client.Connect(listener.Port(), u"0000:0000:0000:0000::1+127.0.0.1"); });
    EXPECT_EQ(client.Select(10), 1);
    ExpectSends(client.socket);
}

TEST_F(SocketFailure, ANameThatCannotBeLookedUpTellsWhy) {
    const struct {
        int resolverError;
        int systemError;
        int reason;
    } kRows[] = {{EAI_SYSTEM, EMFILE, EMFILE},
                 {EAI_MEMORY, 0, ENOMEM},
                 {EAI_AGAIN, 0, EAGAIN},
                 {EAI_NONAME, 0, EHOSTUNREACH},
                 {EAI_FAIL, 0, EHOSTUNREACH}};
    Connecting client;
    for (const auto &row : kRows) {
        const SystemFault fault(
            {.call = SystemCall::getaddrinfo, .answer = row.resolverError, .error = row.systemError});
        EXPECT_EQ(client.Connect(listener.Port()), 0);
        EXPECT_EQ(Error(), row.reason);
        EXPECT_EQ(client.Select(10), 0);
        EXPECT_EQ(Error(), row.reason) << "as long as nothing else is tried";
    }
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 1);
    ExpectSends(client.socket);
}

TEST_F(SocketFailure, AnAddressForWhichThereIsNoSocketIsPassedOver) {
    for (const SystemCall call : {SystemCall::socket, SystemCall::dup3}) {
        Connecting client;
        const SystemFault fault({.call = call, .error = EMFILE});
        client.Connect(listener.Port(), u"127.0.0.1+127.0.0.1");
        EXPECT_EQ(fault.Met(), 1);
        EXPECT_EQ(client.Select(10), 1);
        ExpectSends(client.socket);
    }
}

TEST_F(SocketFailure, WithoutASocketForAnyAddressConnectingFails) {
    for (const SystemCall call : {SystemCall::socket, SystemCall::dup3}) {
        Connecting client;
        const SystemFault fault({.call = call, .error = EMFILE, .times = 2});
        EXPECT_EQ(client.Connect(listener.Port(), u"127.0.0.1+127.0.0.1"), 0);
        EXPECT_EQ(Error(), EMFILE);
        EXPECT_EQ(client.Select(10), 0);
        EXPECT_EQ(Error(), EMFILE);
    }
}

TEST_F(SocketFailure, AnInterruptedMoveOfTheNumberIsBegunAgain) {
    Connecting client;
    const SystemFault fault({.call = SystemCall::dup3, .error = EINTR, .times = 2});
    client.Connect(listener.Port());
    EXPECT_EQ(fault.Met(), 2);
    EXPECT_EQ(client.Select(10), 1);
    ExpectSends(client.socket);
}

TEST_F(SocketFailure, AConnectionThatStandsAtOnceNeedsNoWait) {
    Connecting client;
    const SystemFault network(
        {.call = SystemCall::connect, .answer = 0, .before = [&] { ConnectNow(client); }});
    EXPECT_EQ(client.Connect(listener.Port()), 1);
    EXPECT_EQ(client.Connect(listener.Port()), 0);
    EXPECT_EQ(Error(), EISCONN);
    ExpectSends(client.socket);
}

TEST_F(SocketFailure, AnAttemptThatASignalInterruptsGoesOn) {
    Connecting client;
    const SystemFault fault(
        {.call = SystemCall::connect, .error = EINTR, .before = [&] { ConnectNow(client); }});
    EXPECT_EQ(client.Connect(listener.Port()), 0);
    EXPECT_EQ(Error(), EINPROGRESS);
    EXPECT_EQ(client.Select(10), 1);
    ExpectSends(client.socket);
}

TEST_F(SocketFailure, AnAttemptWhoseOutcomeTheSystemDoesNotTellHasFailed) {
    Connecting client;
    const SystemFault fault({.call = SystemCall::getsockopt, .error = ENOBUFS, .only = SO_ERROR});
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 0);
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ENOBUFS);
    listener.Accept();
    client.Connect(listener.Port());
    EXPECT_EQ(client.Select(10), 1) << "the next attempt is one from the beginning";
    ExpectSends(client.socket);
}

TEST_F(SocketFailure, AConnectionWhoseResetHasBeenReceivedIsNotWritable) {
    Connecting client;
    client.Connect(listener.Port());
    ASSERT_EQ(client.Select(10), 1);
    EXPECT_NE(client.socket.IOCtl(platform::SocketCommand::nonBlocking, 0), 0);
    listener.Accept().Reset();
    uint8_t byte = 0;
    EXPECT_EQ(client.socket.Receive(&byte, 1, 0), -1);
    EXPECT_EQ(Error(), ECONNRESET);
    EXPECT_EQ(client.Select(10), 0);
    EXPECT_FALSE(client.writable);
    EXPECT_EQ(Error(), ENOTCONN);
}

class ConnectionFailure : public SocketFailure {
  protected:
    void SetUp() override {
        socket.emplace();
        ASSERT_TRUE(ConnectTo(listener, *socket));
        printer.emplace(listener.AcceptNumber());
    }
    void TearDown() override {
        socket.reset();
        printer.reset();
        SocketFailure::TearDown();
    }

    int32_t Send(const Bytes &bytes) {
        return platform::Send(socket->Handle(), bytes.data(), static_cast<uint32_t>(bytes.size()), taken);
    }

    std::optional<CAsyncSocket> socket;
    std::optional<Peer> printer;
    uint32_t taken = 99;
};

TEST_F(ConnectionFailure, InterruptedTransfersAreBegunAgain) {
    const SystemFault sending({.call = SystemCall::send, .error = EINTR, .times = 2});
    EXPECT_EQ(Send({1, 2}), 2);
    EXPECT_EQ(sending.Met(), 2);
    EXPECT_EQ(printer->Read(2), (Bytes{1, 2}));
    ASSERT_TRUE(printer->Write({6}));
    const SystemFault receiving({.call = SystemCall::recv, .error = EINTR, .times = 2});
    uint8_t byte = 0;
    EXPECT_EQ(socket->Receive(&byte, 1, 0), 1);
    EXPECT_EQ(receiving.Met(), 2);
    EXPECT_EQ(byte, 6);
}

TEST_F(ConnectionFailure, ASystemThatTakesNothingForNowIsWaitedFor) {
    for (const long answer : {0L, -1L}) {
        const SystemFault fault({.call = SystemCall::send, .answer = answer, .error = EAGAIN});
        EXPECT_EQ(Send({1, 2}), 2);
        EXPECT_EQ(fault.Met(), 1);
        EXPECT_EQ(printer->Read(2), (Bytes{1, 2}));
    }
}

TEST_F(ConnectionFailure, ASendThatFailsTellsWhyAndWhatWasTaken) {
    const SystemFault fault({.call = SystemCall::send, .error = ENETDOWN});
    EXPECT_EQ(Send({1, 2}), -1);
    EXPECT_EQ(Error(), ENETDOWN);
    EXPECT_EQ(taken, 0U);
    EXPECT_EQ(Send({3}), 1);
    EXPECT_EQ(printer->Read(1), Bytes{3});
}

TEST_F(ConnectionFailure, AReceiveThatFailsTellsWhy) {
    const SystemFault fault({.call = SystemCall::recv, .error = ENOMEM});
    uint8_t byte = 0;
    EXPECT_EQ(socket->Receive(&byte, 1, 0), -1);
    EXPECT_EQ(Error(), ENOMEM);
    ASSERT_TRUE(printer->Write({6}));
    EXPECT_EQ(socket->Receive(&byte, 1, 0), 1);
    EXPECT_EQ(byte, 6);
}

TEST_F(ConnectionFailure, APrinterThatHasAnsweredNothingForTwoMinutesEndsASendThatWaits) {
    int looks = 0;
    const auto signs = [&](void *value) {
        auto &info = *static_cast<tcp_info *>(value);
        info.tcpi_last_ack_recv = 120'000; // milliseconds
        info.tcpi_probes = ++looks < 3 ? 4 : 5;
    };
    const SystemFault silence(
        {.call = SystemCall::getsockopt, .answer = 0, .times = 1000, .only = TCP_INFO, .gives = signs});
    EXPECT_EQ(Send(Bytes(50'000'000)), -1);
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_EQ(looks, 3);
    EXPECT_GT(taken, 0U);
}

TEST_F(ConnectionFailure, APrinterThatSpeaksWithoutEndDoesNotHoldTheCloseUp) {
    constexpr int kWithoutEnd = 1'000'000;
    const SystemFault speaking({.call = SystemCall::recv, .answer = 4096, .times = kWithoutEnd});
    EXPECT_EQ(platform::CloseSocket(socket->Handle()), 0);
    EXPECT_GT(speaking.Met(), 0);
    EXPECT_LT(speaking.Met(), kWithoutEnd);
}

TEST_F(ConnectionFailure, ClosingDoesNotWaitWhereTheSystemDoesNotTellWhatHasArrived) {
    const SystemFault fault({.call = SystemCall::ioctl, .error = EINVAL, .times = 1000, .only = SIOCOUTQ});
    EXPECT_EQ(Send({1}), 1);
    EXPECT_EQ(platform::CloseSocket(socket->Handle()), 0);
    EXPECT_GT(fault.Met(), 0);
    EXPECT_EQ(printer->Read(1), Bytes{1});
}

} // namespace

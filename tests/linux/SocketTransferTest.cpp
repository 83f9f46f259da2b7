#include "platform/Socket.h"

#include "platform/Error.h"
#include "platform/linux/SendTimeout.h"
#include "tests/linux/Listener.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <numeric>
#include <thread>

namespace {

using Bytes = std::vector<uint8_t>;

// More than all the buffers between two ends hold together.
constexpr size_t kMuch = 50'000'000;

Bytes AllValues() {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

class SocketTransfer : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(ConnectTo(listener, socket)); }
    void TearDown() override { platform::SetSendTimeout(0); }

    int32_t Send(const Bytes &bytes) {
        return platform::Send(socket.Handle(), bytes.data(), static_cast<uint32_t>(bytes.size()), taken);
    }

    // What came; `result` is that of the call.
    Bytes Receive(size_t count) {
        Bytes bytes(count);
        result = platform::Receive(socket.Handle(), bytes.data(), static_cast<uint32_t>(count));
        bytes.resize(static_cast<size_t>(std::max(result, 0)));
        return bytes;
    }

    Bytes ReceiveAll(size_t count) {
        Bytes all;
        do {
            const Bytes some = Receive(count - all.size());
            all.insert(all.end(), some.begin(), some.end());
        } while (result > 0 && all.size() < count);
        return all;
    }

    static int Error() { return static_cast<int>(platform::LastError()); }

    Listener listener;
    platform::CAsyncSocket socket;
    uint32_t taken = 0;
    int32_t result = 0;
};

TEST_F(SocketTransfer, EveryByteReachesThePrinterUnchanged) {
    Peer printer = listener.Accept();
    EXPECT_EQ(Send(AllValues()), 256);
    EXPECT_EQ(taken, 256U);
    EXPECT_EQ(printer.Read(256), AllValues());
}

TEST_F(SocketTransfer, EveryByteOfThePrinterArrivesUnchanged) {
    const Peer printer = listener.Accept();
    ASSERT_TRUE(printer.Write(AllValues()));
    EXPECT_EQ(ReceiveAll(256), AllValues());
}

TEST_F(SocketTransfer, BothDirectionsWorkAtTheSameTime) {
    Peer printer = listener.Accept();
    Bytes out(3'000'000);
    std::iota(out.begin(), out.end(), uint8_t{0});
    const Bytes in(out.rbegin(), out.rend());
    Bytes received;
    Bytes printed;
    std::thread reader([&] { received = ReceiveAll(in.size()); });
    std::thread printing([&] { printed = printer.Read(out.size()); });
    std::thread speaking([&] { EXPECT_TRUE(printer.Write(in)); });
    EXPECT_EQ(Send(out), 3'000'000);
    for (std::thread *thread : {&reader, &printing, &speaking})
        thread->join();
    EXPECT_TRUE(printed == out);
    EXPECT_TRUE(received == in);
}

TEST_F(SocketTransfer, ReceivingGivesWhatThereIsUpToTheCount) {
    const Peer printer = listener.Accept();
    ASSERT_TRUE(printer.Write({1, 2, 3}));
    EXPECT_EQ(Receive(2), (Bytes{1, 2}));
    EXPECT_EQ(Receive(255), Bytes{3});
}

TEST_F(SocketTransfer, ReceivingWaitsForBytesWhateverSignalsArrive) {
    const Peer printer = listener.Accept();
    const SignalStorm storm;
    std::thread speaking([&] {
        EXPECT_TRUE(SignalStorm::AwaitMore(100));
        EXPECT_TRUE(printer.Write({9}));
    });
    EXPECT_EQ(Receive(255), Bytes{9});
    speaking.join();
}

TEST_F(SocketTransfer, TheObjectReceivesToo) {
    const Peer printer = listener.Accept();
    ASSERT_TRUE(printer.Write({1, 2, 3}));
    uint8_t bytes[255] = {};
    EXPECT_EQ(socket.Receive(bytes, 3, 0), 3);
    EXPECT_EQ(bytes[2], 3);
    EXPECT_EQ(socket.Receive(bytes, -1, 0), -1);
    EXPECT_EQ(Error(), EINVAL);
    EXPECT_EQ(socket.Receive(bytes, 1, MSG_PEEK), -1);
    EXPECT_EQ(Error(), EINVAL);
}

TEST_F(SocketTransfer, WithoutBlockingNothingWaits) {
    const Peer printer = listener.Accept();
    EXPECT_NE(socket.IOCtl(platform::SocketCommand::nonBlocking, 1), 0);
    Receive(1);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(Error(), EAGAIN);
    EXPECT_EQ(Send(Bytes(kMuch)), -1);
    EXPECT_EQ(Error(), EAGAIN);
    EXPECT_GT(taken, 0U);
    EXPECT_LT(taken, kMuch);
}

TEST_F(SocketTransfer, SendingWaitsForAPrinterThatHasStoppedReadingAndGoesOnWithIt) {
    Peer printer = listener.Accept();
    const SignalStorm storm;
    Bytes out(kMuch);
    std::iota(out.begin(), out.end(), uint8_t{0});
    Bytes printed;
    std::thread printing([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        printed = printer.Read(out.size());
    });
    EXPECT_EQ(Send(out), static_cast<int32_t>(kMuch));
    EXPECT_EQ(taken, kMuch);
    printing.join();
    EXPECT_TRUE(printed == out);
}

TEST_F(SocketTransfer, ASendWithoutProgressEndsAfterTheTimeoutSet) {
    const Peer printer = listener.Accept();
    ASSERT_TRUE(platform::SetSendTimeout(400));
    const Stopwatch watch;
    EXPECT_EQ(Send(Bytes(kMuch)), -1);
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 400);
    EXPECT_LT(watch.Elapsed(), 10'000);
    EXPECT_GT(taken, 0U);
    EXPECT_LT(taken, kMuch);
}

TEST_F(SocketTransfer, SignalsDoNotProlongASendThatTimesOut) {
    const Peer printer = listener.Accept();
    ASSERT_TRUE(platform::SetSendTimeout(400));
    const SignalStorm storm;
    const Stopwatch watch;
    EXPECT_EQ(Send(Bytes(kMuch)), -1);
    EXPECT_EQ(Error(), ETIMEDOUT);
    EXPECT_GE(watch.Elapsed(), 400);
    EXPECT_LT(watch.Elapsed(), 8'000);
}

TEST_F(SocketTransfer, APrinterThatReadsSlowlyMakesProgress) {
    Listener smaller;
    smaller.LimitReceiveBuffer(100'000);
    platform::CAsyncSocket client;
    ASSERT_TRUE(ConnectTo(smaller, client));
    Peer printer = smaller.Accept();
    ASSERT_TRUE(platform::SetSendTimeout(500));
    Bytes printed;
    std::thread printing([&] {
        // So slow that the system takes no more for longer than the limit, for three times the limit.
        for (const Stopwatch watch; watch.Elapsed() < 1'500;) {
            const Bytes some = printer.Read(50'000);
            printed.insert(printed.end(), some.begin(), some.end());
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        const Bytes rest = printer.Read(10'000'000 - printed.size());
        printed.insert(printed.end(), rest.begin(), rest.end());
    });
    const Stopwatch watch;
    const Bytes out(10'000'000);
    EXPECT_EQ(platform::Send(client.Handle(), out.data(), 10'000'000, taken), 10'000'000);
    EXPECT_GE(watch.Elapsed(), 1'500);
    printing.join();
    EXPECT_EQ(printed.size(), out.size());
}

TEST_F(SocketTransfer, TheTimeoutIsNoneForZeroAndRefusedBelow) {
    EXPECT_TRUE(platform::SetSendTimeout(0));
    EXPECT_TRUE(platform::SetSendTimeout(1));
    EXPECT_TRUE(platform::SetSendTimeout(INT32_MAX));
    EXPECT_FALSE(platform::SetSendTimeout(-1));
    EXPECT_EQ(Error(), EINVAL);
    EXPECT_FALSE(platform::SetSendTimeout(INT32_MIN));
}

TEST_F(SocketTransfer, ARefusedTimeoutChangesNothing) {
    const Peer printer = listener.Accept();
    ASSERT_TRUE(platform::SetSendTimeout(300));
    EXPECT_FALSE(platform::SetSendTimeout(-1));
    EXPECT_EQ(Send(Bytes(kMuch)), -1);
    EXPECT_EQ(Error(), ETIMEDOUT);
}

TEST_F(SocketTransfer, ClosingReleasesASendToAPrinterThatReadsNothing) {
    const Peer printer = listener.Accept();
    const Bytes out(kMuch);
    std::atomic<bool> closed = false;
    std::thread host([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        closed = true;
        const Stopwatch watch;
        EXPECT_EQ(platform::CloseSocket(socket.Handle()), 0);
        EXPECT_LT(watch.Elapsed(), 5'000);
        EXPECT_EQ(fcntl(static_cast<int>(socket.Handle()), F_GETFD), -1) << "closed on return";
    });
    EXPECT_EQ(Send(out), -1);
    EXPECT_EQ(Error(), ECANCELED);
    EXPECT_TRUE(closed);
    EXPECT_GT(taken, 0U);
    host.join();
}

TEST_F(SocketTransfer, ClosingReleasesAReceive) {
    const Peer printer = listener.Accept();
    std::thread host([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting));
        EXPECT_EQ(platform::CloseSocket(socket.Handle()), 0);
    });
    Receive(1);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(Error(), ECANCELED);
    host.join();
}

TEST_F(SocketTransfer, AConnectionThatDiesWhileSendingIsAnErrorAndNoSignal) {
    std::thread printing([&] {
        Peer printer = listener.Accept();
        printer.Read(1'000);
        printer.Reset();
    });
    EXPECT_EQ(Send(Bytes(kMuch)), -1);
    EXPECT_TRUE(Error() == ECONNRESET || Error() == EPIPE) << Error();
    EXPECT_LT(taken, kMuch);
    printing.join();
    EXPECT_EQ(Send({1}), -1);
    EXPECT_EQ(Error(), EPIPE) << "no SIGPIPE either";
    EXPECT_EQ(taken, 0U);
}

// Asks again and again for half a second, as the receive thread does.
void ExpectNoSpinning(platform::SocketHandle handle, int32_t expected) {
    const double before = ThreadCpuTime();
    const Stopwatch watch;
    int calls = 0;
    for (; watch.Elapsed() < 500; ++calls) {
        uint8_t byte;
        EXPECT_EQ(platform::Receive(handle, &byte, 1), expected);
    }
    EXPECT_LE(calls, 11) << "fifty milliseconds each";
    EXPECT_LT(ThreadCpuTime() - before, 100);
}

TEST_F(SocketTransfer, APrinterThatHasHungUpMakesNoThreadSpin) {
    listener.Accept().Close();
    ExpectNoSpinning(socket.Handle(), 0);
}

TEST_F(SocketTransfer, AConnectionThatWasResetMakesNoThreadSpin) {
    listener.Accept().Reset();
    Receive(1);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(Error(), ECONNRESET);
    ExpectNoSpinning(socket.Handle(), 0);
}

TEST_F(SocketTransfer, AHandleThatIsNotOpenMakesNoThreadSpin) {
    ExpectNoSpinning(-1, -1);
    EXPECT_EQ(Error(), EBADF);
    ExpectNoSpinning(0, -1);
}

TEST_F(SocketTransfer, WhatCameBeforeThePrinterHungUpIsReceived) {
    {
        const Peer printer = listener.Accept();
        ASSERT_TRUE(printer.Write({1, 2, 3}));
    }
    EXPECT_EQ(ReceiveAll(4), (Bytes{1, 2, 3}));
    EXPECT_EQ(result, 0);
}

TEST_F(SocketTransfer, ANumberGivenToSomethingElseIsNotTouched) {
    const platform::SocketHandle closed = socket.Handle();
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends), 0);
    ASSERT_EQ(platform::CloseSocket(closed), 0);
    ASSERT_EQ(dup2(ends[1], static_cast<int>(closed)), closed);
    ASSERT_EQ(send(ends[0], "x", 1, 0), 1);
    uint8_t byte = 'y';
    EXPECT_EQ(platform::Send(closed, &byte, 1, taken), -1);
    EXPECT_EQ(Error(), EBADF);
    EXPECT_EQ(platform::Receive(closed, &byte, 1), -1);
    EXPECT_EQ(Error(), EBADF);
    EXPECT_EQ(platform::CloseSocket(closed), -1);
    EXPECT_EQ(byte, 'y');
    EXPECT_EQ(recv(ends[0], &byte, 1, 0), -1) << "nothing was sent";
    EXPECT_EQ(recv(ends[1], &byte, 1, 0), 1) << "nothing was received";
    for (const int number : {ends[0], ends[1], static_cast<int>(closed)})
        close(number);
}

TEST_F(SocketTransfer, ThePrinterGetsTheWholeReceiptAlsoWhenNobodyReadWhatItSaid) {
    Peer printer = listener.Accept();
    ASSERT_TRUE(printer.Write(Bytes(1'000, 'S')));
    int unread = 0;
    ASSERT_TRUE(Await(
        [&] { return recv(static_cast<int>(socket.Handle()), &unread, 1, MSG_PEEK | MSG_DONTWAIT) == 1; }));
    ASSERT_EQ(Send(Bytes(100'000, 'R')), 100'000);
    ASSERT_EQ(platform::CloseSocket(socket.Handle()), 0);
    EXPECT_EQ(printer.Read(100'001), Bytes(100'000, 'R'));
    EXPECT_TRUE(printer.AtEnd()) << "an orderly end, no reset";
}

// As a printer does that answers each piece of what it is sent.
Bytes ReadAndAnswer(Peer &printer, size_t count) {
    Bytes all;
    for (Bytes some = printer.Read(10'000); !some.empty(); some = printer.Read(10'000)) {
        all.insert(all.end(), some.begin(), some.end());
        printer.Write({0x06});
        if (all.size() >= count)
            break;
    }
    return all;
}

TEST(SocketClose, LetsWhatWasSentArriveThoughThePeerAnswersInTheMiddle) {
    // The close waits for a moment only: a machine that stands still for longer may lose a round.
    constexpr size_t count = 200'000;
    bool arrived = false;
    for (int round = 0; round < 5 && !arrived; ++round) {
        Listener listener;
        listener.LimitReceiveBuffer(50'000);
        platform::CAsyncSocket client;
        ASSERT_TRUE(ConnectTo(listener, client));
        Peer printer = listener.Accept();
        const Bytes bytes(count);
        uint32_t taken = 0;
        EXPECT_EQ(platform::Send(client.Handle(), bytes.data(), count, taken), int32_t{count});
        std::atomic<bool> closing = false;
        Bytes read;
        std::thread printing([&] {
            closing.wait(false);
            read = ReadAndAnswer(printer, count);
        });
        closing = true;
        closing.notify_one();
        EXPECT_EQ(platform::CloseSocket(client.Handle()), 0);
        printing.join();
        arrived = read.size() == count;
    }
    EXPECT_TRUE(arrived);
}

TEST_F(SocketTransfer, ClosingWhileOthersSendAndReceiveIsSafe) {
    const Bytes out(kMuch);
    for (int i = 0; i < 50; ++i) {
        Peer printer = listener.Accept();
        std::thread sender([&] { Send(out); });
        std::thread receiver([&] {
            while (Receive(255), result >= 0) {
            }
        });
        std::thread speaker([&] { printer.Write(Bytes(100'000)); });
        EXPECT_EQ(platform::CloseSocket(socket.Handle()), 0);
        printer.Read(1);
        for (std::thread *thread : {&sender, &receiver, &speaker})
            thread->join();
        ASSERT_TRUE(ConnectTo(listener, socket));
    }
}

} // namespace

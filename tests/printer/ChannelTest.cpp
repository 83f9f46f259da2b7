#include "printer/Channel.h"

#include "printer/Descriptor.h"
#include "tests/printer/Decoding.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sstream>
#include <sys/socket.h>

using namespace printer;
using namespace printer::testing;

namespace {

Time At(int ms) {
    return Time(std::chrono::hours(1)) + milliseconds(ms);
}

// A channel whose time is told by the test.
class PrinterChannel : public ::testing::Test {
  protected:
    PrinterChannel() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
        printerEnd = Descriptor(ends[0]);
        hostEnd = Descriptor(ends[1]);
    }

    Channel Make(const Faults &faults, std::optional<milliseconds> swipeAfter = {}) {
        return {printerEnd.Get(), Session(printer, {"AB", "V1"}), faults, swipeAfter};
    }

    void Send(const std::string &bytes) {
        EXPECT_EQ(write(hostEnd.Get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    std::string Received() {
        Bytes bytes(1 << 20);
        const ssize_t got = read(hostEnd.Get(), bytes.data(), bytes.size());
        return HexOf(ByteView(bytes).first(static_cast<size_t>(std::max<ssize_t>(got, 0))));
    }

    std::ostringstream told;
    Printer printer{384, "", nullptr, told};
    Descriptor printerEnd, hostEnd;
};

} // namespace

TEST_F(PrinterChannel, GivesUpAFrameWhoseEndDoesNotComeFor3Seconds) {
    Channel channel = Make({});
    Send("\x00\xC0\x44\x31\x30"s);
    EXPECT_TRUE(channel.Handle(POLLIN, At(0)));
    EXPECT_EQ(channel.NextTime(), At(3000));
    EXPECT_TRUE(channel.Handle(0, At(2999)));
    EXPECT_EQ(Received(), "");
    EXPECT_TRUE(channel.Handle(0, At(3000)));
    EXPECT_EQ(Received(), "C0 15");
    EXPECT_EQ(channel.NextTime(), std::nullopt);
}

TEST_F(PrinterChannel, ReadsNothingBeforeItsTimeAtALowRate) {
    Faults faults;
    faults.readRate = 1;
    Channel channel = Make(faults);
    Send("\x1B\x76");
    EXPECT_EQ(channel.EventsToWaitFor(At(0)), POLLIN);
    EXPECT_TRUE(channel.Handle(POLLIN, At(0)));
    EXPECT_EQ(channel.EventsToWaitFor(At(999)), 0);
    EXPECT_EQ(channel.LastActive(At(999)), At(999));
    EXPECT_EQ(channel.NextTime(), At(1000));
    EXPECT_EQ(channel.EventsToWaitFor(At(1000)), POLLIN);
    EXPECT_TRUE(channel.Handle(POLLIN, At(1000)));
    EXPECT_EQ(Received(), "40");
}

TEST_F(PrinterChannel, HangsUpAtTheVeryByte) {
    Faults faults;
    faults.hangUpAfter = 3;
    Channel channel = Make(faults);
    Send("12");
    EXPECT_TRUE(channel.Handle(POLLIN, At(0)));
    Send("3456");
    EXPECT_FALSE(channel.Handle(POLLIN, At(1)));
    char left[8];
    EXPECT_EQ(read(printerEnd.Get(), left, sizeof left), 3);
}

TEST_F(PrinterChannel, KeepsRepliesForAHostThatDoesNotRead) {
    Channel channel = Make({});
    const Bytes flood(60000, uint8_t{'x'});
    int rounds = 0;
    for (; !channel.NextTime() && rounds < 1000; ++rounds) {
        channel.GetSession().Send(flood);
        ASSERT_TRUE(channel.Handle(0, At(rounds)));
    }
    EXPECT_LT(rounds, 1000) << "the socket takes everything";
    const size_t before = Received().size();
    EXPECT_GT(before, 60000U);
    EXPECT_TRUE(channel.Handle(0, *channel.NextTime()));
    EXPECT_NE(Received(), "");
}

TEST_F(PrinterChannel, EndsWhenTheHostIsGone) {
    Channel channel = Make({});
    hostEnd.Close();
    EXPECT_FALSE(channel.Handle(POLLIN | POLLHUP, At(0)));
}

TEST_F(PrinterChannel, WatchesForAHostThatLeavesWhileItWaitsForPaper) {
    printer.EndPaperAfter(0);
    Channel channel = Make({});
    Send("text\x0A");
    EXPECT_TRUE(channel.Handle(POLLIN, At(0)));
    EXPECT_EQ(channel.EventsToWaitFor(At(0)), POLLRDHUP);
    EXPECT_FALSE(channel.Handle(POLLRDHUP, At(1)));
}

TEST_F(PrinterChannel, SwipesOnceForEachTimeAReaderIsEntered) {
    Channel channel = Make({}, milliseconds(500));
    Send("\x1B\x4D\x46");
    channel.Handle(POLLIN, At(0));
    EXPECT_EQ(channel.NextTime(), At(500));
    channel.Handle(0, At(500));
    EXPECT_NE(Received(), "");
    EXPECT_EQ(channel.NextTime(), std::nullopt);
}

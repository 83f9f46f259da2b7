#include "tests/faults/FaultPoint.h"

namespace nadrel::faults {
namespace {

struct Link {
    bool wireless;
    bool framed;
    const char *name;
};

void PrintTo(const Link &link, std::ostream *out) {
    *out << link.name;
}

// A call, and the operations that it needs of a port or of a socket.
struct Use {
    const char *name;
    std::set<std::string> ofPort;
    std::set<std::string> ofSocket;
};

// What the printing functions do on an open link. None of them needs memory.
class LinkFaultsTest : public testing::TestWithParam<Link> {
  protected:
    void TryEveryPoint(const Use &use, const std::function<int32_t(Point &)> &act,
                       const std::function<void(Point &, int32_t)> &check) {
        const auto failed = faults::TryEveryPoint(
            {.name = use.name,
             .sources = {Source::system},
             .prepare =
                 [](Point &point) { EXPECT_TRUE(point.OpenLink(GetParam().wireless, GetParam().framed)); },
             .act = act,
             .check = check});
        EXPECT_EQ(GetParam().wireless ? use.ofSocket : use.ofPort, failed);
    }
};

constexpr uint8_t kRaw[] = {0x1B, '@'};

// Text in each of the ways there are, and whether the spool took the raw bytes.
int32_t PrintText(int32_t &raw) {
    raw = ControlCommand(kRaw, sizeof kRaw);
    SaveSpool(u"one ", 0, 1);
    TextSaveSpool(u"two");
    return PrintSpool(1);
}

// With the raw bytes and without.
std::string Text(bool framed, bool raw) {
    if (framed)
        return raw ? "00 C0 44 31 30 30 31 35 1B 40 1D 21 00 1B 45 01 6F 6E 65 20 74 77 6F 52 42 C1"
                   : "00 C0 44 31 30 30 31 33 1D 21 00 1B 45 01 6F 6E 65 20 74 77 6F 49 02 C1";
    return raw ? "1B 40 1D 21 00 1B 45 01 6F 6E 65 20 74 77 6F" : "1D 21 00 1B 45 01 6F 6E 65 20 74 77 6F";
}

} // namespace

// Memory that cannot be read is left out; a refused write is in the report alone.
TEST_P(LinkFaultsTest, PrintingText) {
    int32_t raw = 0;
    TryEveryPoint(
        {"text", {"MemoryIsReadable", "WritePort"}, {"MemoryIsReadable", "Send"}},
        [&](Point &) { return PrintText(raw); },
        [&](Point &point, int32_t result) {
            EXPECT_EQ(NADREL_SUCCESS, result);
            const bool readable = !point.FailedAtAny("MemoryIsReadable");
            EXPECT_EQ(readable ? 2 : 0, raw);
            EXPECT_EQ(0, SpoolLength);
            const std::string text = Text(GetParam().framed, readable);
            EXPECT_EQ(1u, point.Asked());
            EXPECT_EQ(point.Refused() != 0 ? "" : text, HexOf(point.Written()));
            EXPECT_EQ(point.Refused() != 0 ? kIoError : kNoReason, LastLinkError);
            point.ExpectReported((text.size() + 1) / 3);
        });
}

// Three queries survive any one failure; from a failure on, one byte is an answer.
TEST_P(LinkFaultsTest, AskingForTheStatus) {
    TryEveryPoint(
        {"status",
         {"WritePort", "SetPortEvents", "WaitPortEvent", "ReadPort", "GetModemStatus"},
         {"Send", "Receive"}},
        [](Point &) { return GetPrinterStatus(600); },
        [](Point &point, int32_t result) {
            const bool answered = point.RecoversAtOnce() || point.Delivered() != 0;
            EXPECT_EQ(answered ? 1 : -7, result);
            EXPECT_TRUE(LinkIsOpen());
            const size_t most = point.Came() ? 2 : 1;
            EXPECT_LE(answered ? 1 + point.Refused() : 3, point.Asked());
            EXPECT_GE(answered ? most : 3, point.Asked());
            EXPECT_EQ(point.Refused() != 0 ? kIoError : kNoReason, LastLinkError);
            point.ExpectReported(GetParam().framed ? 4 : 2);
            // A framed reply of which bytes come too late is none, though it has answered.
            const bool whole = !GetParam().framed || !point.FailedAtAny("ReadPort");
            point.Serve();
            EXPECT_TRUE(point.ToldStatus() || !point.RecoversAtOnce() || !whole);
        });
}

// A port that would not close is the one thing that a close tells.
TEST_P(LinkFaultsTest, Closing) {
    TryEveryPoint(
        {"close", {"SetPortEvents", "ClosePort", "SignalPort", "PurgePort"}, {"CloseSocket"}},
        [](Point &) { return ClosePrinter(); },
        [](Point &point, int32_t result) {
            const bool kept = point.FailedAtAny("ClosePort");
            EXPECT_EQ(kept ? 0 : 1, result);
            EXPECT_EQ(kept ? kIoError : kNoReason, LastLinkError);
            EXPECT_FALSE(LinkIsOpen());
            EXPECT_EQ(0u, point.Asked());
            if (kept)
                point.KeepPort();
        });
}

INSTANTIATE_TEST_SUITE_P(Links, LinkFaultsTest,
                         testing::Values(Link{false, false, "Serial"}, Link{false, true, "SerialFramed"},
                                         Link{true, false, "Tcp"}, Link{true, true, "TcpFramed"}),
                         [](const auto &tested) { return tested.param.name; });

} // namespace nadrel::faults

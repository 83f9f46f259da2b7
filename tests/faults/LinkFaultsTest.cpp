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

// What the printing functions do on an open link.
class LinkFaultsTest : public testing::TestWithParam<Link> {
  protected:
    void TryEveryPoint(const std::string &name, const std::function<int32_t(Point &)> &act,
                       const std::function<void(Point &, int32_t)> &check) {
        faults::TryEveryPoint(
            {.name = name,
             .sources = {Source::system, Source::memory},
             .prepare =
                 [](Point &point) { EXPECT_TRUE(point.OpenLink(GetParam().wireless, GetParam().framed)); },
             .act = act,
             .check = check});
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

void ExpectReported(const Point &point) {
    const bool refused = point.FailedAtAny("WritePort") || point.FailedAtAny("Send");
    EXPECT_EQ(refused ? 1u : 0u, Counters.errorCount);
    EXPECT_EQ(refused, point.Written().empty());
}

} // namespace

// Memory that cannot be read is left out; a refused write is in the report alone.
TEST_P(LinkFaultsTest, PrintingText) {
    int32_t raw = 0;
    TryEveryPoint(
        "text", [&](Point &) { return PrintText(raw); },
        [&](Point &point, int32_t result) {
            EXPECT_EQ(NADREL_SUCCESS, result);
            EXPECT_EQ(point.FailedAtAny("MemoryIsReadable") ? 0 : 2, raw);
            EXPECT_EQ(0, SpoolLength);
            ExpectReported(point);
        });
}

// The query says whether a byte came.
TEST_P(LinkFaultsTest, AskingForTheStatus) {
    TryEveryPoint(
        "status", [](Point &) { return GetPrinterStatus(600); },
        [](Point &, int32_t result) {
            EXPECT_EQ(StatusCaptureByte < kCaptureArmed ? 1 : -7, result);
            EXPECT_EQ(result == 1, Counters.bytesReceived > (GetParam().framed ? 3 : 0));
            EXPECT_TRUE(LinkIsOpen());
        });
}

// A port that would not close is the one thing that a close tells.
TEST_P(LinkFaultsTest, Closing) {
    TryEveryPoint(
        "close", [](Point &) { return ClosePrinter(); },
        [](Point &point, int32_t result) {
            EXPECT_EQ(point.FailedAtAny("ClosePort") ? 0 : 1, result);
            EXPECT_FALSE(LinkIsOpen());
            if (result == 0)
                point.KeepPort();
        });
}

INSTANTIATE_TEST_SUITE_P(Links, LinkFaultsTest,
                         testing::Values(Link{false, false, "Serial"}, Link{false, true, "SerialFramed"},
                                         Link{true, false, "Tcp"}, Link{true, true, "TcpFramed"}),
                         [](const auto &tested) { return tested.param.name; });

} // namespace nadrel::faults

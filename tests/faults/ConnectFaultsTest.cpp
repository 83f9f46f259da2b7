#include "tests/faults/FaultPoint.h"

#include <optional>

namespace nadrel::faults {
namespace {

enum class Connect { initPrinter, serial, serialEx, initWlan, wireless };

struct Case {
    Connect connect;
    const char *name;
    bool framed = false;

    bool IsWireless() const { return connect == Connect::initWlan || connect == Connect::wireless; }
};

constexpr int32_t kTimeout = 400; // two attempts

int32_t Call(const Case &given) {
    switch (given.connect) {
    case Connect::initPrinter:
        return InitPrinter(kPort, 9600, given.framed);
    case Connect::serial:
        return ConnectSerialPrinter(kPort, 9600, kTimeout, given.framed);
    case Connect::serialEx:
        return ConnectSerialPrinterEx("COM1:", 9600, 8, 0, 0, kTimeout, given.framed);
    case Connect::initWlan:
        return InitWlanPrinter(u"printer", 9100, kTimeout, given.framed);
    case Connect::wireless:
        return ConnectWirelessPrinter(u"a printer with a name of some length", 9100, kTimeout, given.framed);
    }
    return 0;
}

// What the header says of a connect that ends before there is a link.
std::optional<int32_t> SerialFailure(const Case &given, const Point &point) {
    const int attempts = given.connect == Connect::initPrinter ? 1 : 2;
    if (point.FailedAt("OpenPort " + std::to_string(attempts)))
        return ERR_OPEN_PORT;
    if (point.FailedAtAny("SetLineSettings"))
        return ERR_SET_COMM_STATE;
    if (point.FailedAtAny("SetPortTimeouts"))
        return ERR_SET_TIMEOUTS;
    return std::nullopt;
}

// ConnectWirelessPrinter takes a socket that refused to stop blocking, and finds out when it waits for it.
std::optional<int32_t> WirelessFailure(const Case &given, const Point &point) {
    const bool once = given.connect == Connect::initWlan;
    const int32_t failed = once ? -1 : -2;
    if (point.FailedAtAny("Create") || point.FailedAt("IOCtl 2"))
        return failed;
    if (once && (point.FailedAtAny("IOCtl") || point.FailedAtAny("SelectWritable")))
        return failed;
    if (point.FailedAt("SelectWritable 2"))
        return failed;
    return std::nullopt;
}

// The first two bytes of a framed status are enough: a link that fails behind them has been answered.
bool Answered(const Point &point) {
    return point.ToldStatus() || Counters.bytesReceived == 2;
}

int32_t Documented(const Case &given, const Point &point) {
    const auto failure = given.IsWireless() ? WirelessFailure(given, point) : SerialFailure(given, point);
    if (failure)
        return *failure;
    return given.framed && !Answered(point) ? ERR_NO_ANSWER : NADREL_SUCCESS;
}

void Check(const Case &given, Point &point, int32_t result) {
    if (result != 0 || !point.AllocationFailed()) {
        EXPECT_EQ(Documented(given, point), result);
    }
    EXPECT_EQ(result == NADREL_SUCCESS, LinkIsOpen());
    const bool refusesSettings =
        !given.IsWireless() && (result == ERR_SET_COMM_STATE || result == ERR_SET_TIMEOUTS);
    if (refusesSettings || point.FailedAtAny("ClosePort"))
        point.KeepPort();
    if (result != NADREL_SUCCESS) {
        EXPECT_EQ(refusesSettings || point.FailedAtAny("ClosePort"),
                  GetPortHandle() != NADREL_INVALID_HANDLE);
    }
}

void PrintTo(const Case &given, std::ostream *out) {
    *out << given.name;
}

class ConnectFaultsTest : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(ConnectFaultsTest, GivesItsResultAndGivesEverythingBack) {
    const Case given = GetParam();
    TryEveryPoint({.name = given.name,
                   .sources = {Source::system, Source::memory},
                   .prepare = [](Point &) {},
                   .act = [&](Point &) { return Call(given); },
                   .check = [&](Point &point, int32_t result) { Check(given, point, result); }});
}

INSTANTIATE_TEST_SUITE_P(Connects, ConnectFaultsTest,
                         testing::Values(Case{Connect::initPrinter, "InitPrinter"},
                                         Case{Connect::initPrinter, "InitPrinterFramed", true},
                                         Case{Connect::serial, "ConnectSerialPrinter"},
                                         Case{Connect::serial, "ConnectSerialPrinterFramed", true},
                                         Case{Connect::serialEx, "ConnectSerialPrinterEx"},
                                         Case{Connect::serialEx, "ConnectSerialPrinterExFramed", true},
                                         Case{Connect::initWlan, "InitWlanPrinter"},
                                         Case{Connect::initWlan, "InitWlanPrinterFramed", true},
                                         Case{Connect::wireless, "ConnectWirelessPrinter"},
                                         Case{Connect::wireless, "ConnectWirelessPrinterFramed", true}),
                         [](const auto &tested) { return tested.param.name; });

} // namespace nadrel::faults

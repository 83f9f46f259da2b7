#include "tests/faults/FaultPoint.h"

#include <optional>

namespace nadrel::faults {
namespace {

enum class Connect { initPrinter, serial, serialEx, initWlan, wireless };

struct Case {
    Connect connect;
    const char *name;
    int attempts = 1;
    bool framed = false;
    int32_t failedIOCtl = -1; // what IOCtl gives when it fails

    bool IsWireless() const { return connect == Connect::initWlan || connect == Connect::wireless; }
};

int32_t Call(const Case &given) {
    const int32_t timeout = 200 * given.attempts;
    switch (given.connect) {
    case Connect::initPrinter:
        return InitPrinter(kPort, 9600, given.framed);
    case Connect::serial:
        return ConnectSerialPrinter(kPort, 9600, timeout, given.framed);
    case Connect::serialEx:
        return ConnectSerialPrinterEx("a port with a name of some length:", 9600, 8, 0, 0, timeout,
                                      given.framed);
    case Connect::initWlan:
        return InitWlanPrinter(u"printer", 9100, timeout, given.framed);
    case Connect::wireless:
        return ConnectWirelessPrinter(u"a printer with a name of some length", 9100, timeout, given.framed);
    }
    return 0;
}

// Of the attempts the last decides.
bool FailedAtLast(const Case &given, const Point &point, const std::string &operation) {
    return point.FailedAt(operation + ' ' + std::to_string(given.attempts));
}

bool HasNoSocket(const Point &point) {
    return point.FailedAtAny("StartSocketSupport") || point.FailedAtAny("Create");
}

// What the header says of a connect that ends before there is a link.
std::optional<int32_t> SerialFailure(const Case &given, const Point &point) {
    if (FailedAtLast(given, point, "OpenPort"))
        return ERR_OPEN_PORT;
    if (point.FailedAtAny("SetLineSettings"))
        return ERR_SET_COMM_STATE;
    if (point.FailedAtAny("SetPortTimeouts"))
        return ERR_SET_TIMEOUTS;
    return std::nullopt;
}

// A socket that refused to stop blocking is refused by either function for one of the two results that say
// so; the other one shows, if at all, when the socket is waited for.
std::optional<int32_t> WirelessFailure(const Case &given, const Point &point) {
    const bool init = given.connect == Connect::initWlan;
    const int32_t failed = init ? -1 : -2;
    if (HasNoSocket(point) || (point.FailedAt("IOCtl 1") && given.failedIOCtl == (init ? -1 : 0)))
        return failed;
    if (FailedAtLast(given, point, "SelectWritable"))
        return failed;
    if (FailedAtLast(given, point, "Connect"))
        return init ? -2 : -7;
    if (point.FailedAt("IOCtl 2") && given.failedIOCtl == -1)
        return failed;
    return std::nullopt;
}

// Four queries survive any one failure but that of what the answer needs to be heard at all. From a failure
// on, the first two bytes of a framed status, of which all would be three, are enough.
bool IsUnanswered(const Point &point) {
    if (point.RingFailed() || point.FailedAtAny("StartThread"))
        return true;
    return !point.RecoversAtOnce() && point.Delivered() < 2;
}

int32_t Documented(const Case &given, const Point &point) {
    if (point.AllocationFailed() && !point.RingFailed())
        return 0;
    const auto failure = given.IsWireless() ? WirelessFailure(given, point) : SerialFailure(given, point);
    if (failure)
        return *failure;
    return given.framed && IsUnanswered(point) ? ERR_NO_ANSWER : NADREL_SUCCESS;
}

bool KeepsTheReason(const Case &given, const Point &point, int32_t result) {
    if (point.Refused() != 0 || point.FailedAtAny("ClosePort"))
        return true;
    if (!given.IsWireless())
        return result < 0 && result != ERR_NO_ANSWER;
    return given.connect == Connect::wireless && (result == -2 || result == -7) && !point.FailedAt("IOCtl 2");
}

uint32_t DocumentedReason(const Case &given, const Point &point, int32_t result) {
    if (!KeepsTheReason(given, point, result))
        return kNoReason;
    const bool socketRefusedTheRest = HasNoSocket(point) && point.RecoversAtOnce();
    return socketRefusedTheRest ? scripted::kBadHandle : kIoError;
}

void ExpectQueried(const Case &given, const Point &point, int32_t result) {
    point.ExpectReported(4);
    if (result == ERR_NO_ANSWER) {
        EXPECT_EQ(4u, point.Asked());
    } else if (!given.framed || result != NADREL_SUCCESS) {
        EXPECT_EQ(0u, point.Asked());
    } else {
        EXPECT_GT(point.Asked(), point.Refused());
        EXPECT_LE(point.Asked(), 2u);
    }
}

void Check(const Case &given, Point &point, int32_t result) {
    const int32_t documented = Documented(given, point);
    EXPECT_EQ(documented, result);
    EXPECT_EQ(documented == NADREL_SUCCESS, LinkIsOpen());
    if (documented == NADREL_SUCCESS) {
        EXPECT_EQ(point.FailedAtAny("RegisterNotification"), NotifyMessageId == 0);
    }
    EXPECT_EQ(DocumentedReason(given, point, documented), LastLinkError);
    ExpectQueried(given, point, documented);
    const bool refusesSettings =
        !given.IsWireless() && (documented == ERR_SET_COMM_STATE || documented == ERR_SET_TIMEOUTS);
    const bool keepsPort = refusesSettings || point.FailedAtAny("ClosePort");
    if (keepsPort)
        point.KeepPort();
    if (documented != NADREL_SUCCESS) {
        EXPECT_EQ(keepsPort, GetPortHandle() != NADREL_INVALID_HANDLE);
    }
}

void PrintTo(const Case &given, std::ostream *out) {
    *out << given.name;
}

// Without memory for it there is no socket, and no name in the system's characters.
bool NeedsMemoryFirst(const Case &given) {
    return given.IsWireless() || given.connect == Connect::serialEx;
}

using Operations = std::set<std::string>;

// All that the system can refuse on the way, and on the way back where there was no answer.
Operations OperationsOf(const Case &given) {
    Operations all = {"RegisterNotification", "StartThread"};
    if (given.IsWireless())
        all.merge(Operations{"StartSocketSupport", "Create", "IOCtl", "Connect", "SelectWritable"});
    else
        all.merge(Operations{"OpenPort", "GetLineSettings", "SetLineSettings", "GetPortTimeouts",
                             "SetPortTimeouts", "SignalPort"});
    if (given.connect == Connect::serial || given.connect == Connect::serialEx)
        all.merge(Operations{"SetPortEvents", "PurgePort"});
    if (given.framed && given.IsWireless())
        all.merge(Operations{"Send", "Receive", "CloseSocket"});
    if (given.framed && !given.IsWireless())
        all.merge(Operations{"SetPortEvents", "WritePort", "WaitPortEvent", "ReadPort", "GetModemStatus",
                             "ClosePort"});
    return all;
}

class ConnectFaultsTest : public testing::TestWithParam<Case> {};

constexpr Case kCases[] = {
    {Connect::initPrinter, "InitPrinter"},
    {Connect::initPrinter, "InitPrinterFramed", 1, true},
    {Connect::serial, "ConnectSerialPrinter", 2},
    {Connect::serial, "ConnectSerialPrinterFramed", 2, true},
    {Connect::serialEx, "ConnectSerialPrinterEx", 2},
    {Connect::serialEx, "ConnectSerialPrinterExFramed", 2, true},
    {Connect::initWlan, "InitWlanPrinter"},
    {Connect::initWlan, "InitWlanPrinterFramed", 1, true},
    {Connect::initWlan, "InitWlanPrinterIOCtl0", 1, false, 0},
    {Connect::wireless, "ConnectWirelessPrinterOnce"},
    {Connect::wireless, "ConnectWirelessPrinter", 2},
    {Connect::wireless, "ConnectWirelessPrinterFramed", 2, true},
    {Connect::wireless, "ConnectWirelessPrinterIOCtl0", 2, false, 0},
};

} // namespace

TEST_P(ConnectFaultsTest, GivesItsResultAndGivesEverythingBack) {
    const Case given = GetParam();
    std::set<int32_t> results;
    const Operations failed =
        TryEveryPoint({.name = given.name,
                       .sources = {Source::system, Source::memory},
                       .prepare = [&](Point &point) { point.FailIOCtlWith(given.failedIOCtl); },
                       .act = [&](Point &) { return Call(given); },
                       .check =
                           [&](Point &point, int32_t result) {
                               results.insert(result);
                               Check(given, point, result);
                           }});
    EXPECT_EQ(OperationsOf(given), failed);
    EXPECT_EQ(NeedsMemoryFirst(given) && allocation::CanFail(), results.contains(0));
    EXPECT_EQ(given.framed, results.contains(ERR_NO_ANSWER));
}

INSTANTIATE_TEST_SUITE_P(Connects, ConnectFaultsTest, testing::ValuesIn(kCases),
                         [](const auto &tested) { return tested.param.name; });

} // namespace nadrel::faults

#include "tests/faults/FaultPoint.h"

#include "link/ReceiveThread.h"
#include "link/ResponseParser.h"

#include <limits>

namespace nadrel::faults {

namespace {

constexpr int kMostPoints = 1000; // a scenario with more never ends
constexpr uint64_t kReceiveMs = 20, kParseMs = 320;
constexpr uint8_t kStatus = 0x10;

int pointsTried = 0;

NadrelLinkReport Report() {
    NadrelLinkReport report = {};
    report.size = sizeof report;
    EXPECT_EQ(1, GetLinkReport(&report));
    return report;
}

std::string Shown(const Fault &fault) {
    static constexpr const char *kSources[] = {"operation", "file operation", "allocation"};
    return std::string(kSources[static_cast<size_t>(fault.source)]) + ' ' + std::to_string(fault.nth) +
           (fault.onward ? " and all behind it fail" : " fails");
}

// Whether the fault came, and adds to the operations.
bool TryPoint(const Scenario &scenario, const Fault &fault, std::set<std::string> &operations) {
    SCOPED_TRACE(scenario.name + ": " + Shown(fault));
    Point point;
    point.AttachPrinter();
    scenario.prepare(point);
    point.ForgetWritten();
    point.Arm(fault);
    const int32_t result = scenario.act(point);
    point.Disarm();
    scenario.check(point, result);
    point.ExpectUsable();
    for (const std::string &call : point.Failed())
        operations.insert(call.substr(0, call.find(' ')));
    return point.Came();
}

} // namespace

Point::Point() = default;

Point::~Point() {
    os.ForgetScript();
}

void Point::Arm(const Fault &armed) {
    fault = armed;
    before = Report();
    deliveredBefore = os.Delivered();
    notifiedBefore = os.Notifications().size();
    LastLinkError = kNoReason;
    switch (fault.source) {
    case Source::system:
        return fault.onward ? os.FailFromCall(fault.nth, kIoError) : os.FailCall(fault.nth, kIoError);
    case Source::files:
        return files.FailNth(fault.nth, fault.onward);
    case Source::memory:
        return allocation::FailNth(fault.nth, 0, std::numeric_limits<size_t>::max(), fault.onward);
    }
}

void Point::Disarm() {
    firstAllocation = allocation::FirstFailure();
    fileFailures = files.Failures();
    allocation::Allow();
    files.Fail(0);
    for (const std::string &call : os.Failed())
        failed.insert(call);
    os.ForgetScript();
}

size_t Point::FailuresOf(const std::string &operation) const {
    return static_cast<size_t>(std::count_if(failed.begin(), failed.end(), [&](const std::string &call) {
        return call.starts_with(operation + ' ');
    }));
}

void Point::AttachPrinter() {
    os.OnEveryCall("Sleep", [this] { Serve(); });
    os.OnEveryCall("Wait", [this] { Serve(); });
}

// The library's own threads pause as well.
void Point::Serve() {
    if (serving || !LinkIsOpen())
        return;
    serving = true;
    AnswerQueries();
    const allocation::Counted ofTheLibrary;
    if (ReceiveThreadObject != nullptr)
        os.RunThread(ReceiveThreadBody, kReceiveMs);
    if (ParserThreadObject != nullptr)
        os.RunThread(ParserThreadBody, kParseMs);
    serving = false;
}

void Point::AnswerQueries() {
    const std::vector<std::string> written = WrittenHex();
    for (; heard < written.size(); ++heard) {
        if (written[heard] == "00 C0 51 C1")
            os.PrinterSends({0xC0, 'S', kStatus});
        if (written[heard] == "1B 76")
            os.PrinterSends({kStatus});
    }
}

bool Point::ToldStatus() const {
    const auto told = os.Notifications();
    return std::any_of(told.begin() + static_cast<ptrdiff_t>(notifiedBefore), told.end(),
                       [](const auto &one) { return one.Kind() == 'S'; });
}

void Point::ExpectReported(size_t bytesOfAWrite) const {
    const NadrelLinkReport report = Report();
    EXPECT_EQ(Asked() * bytesOfAWrite, report.bytesAsked - before.bytesAsked);
    EXPECT_EQ(Written().size(), report.bytesTaken - before.bytesTaken);
    EXPECT_EQ((Asked() - Refused()) * bytesOfAWrite, Written().size());
    EXPECT_EQ(Refused(), report.errorCount - before.errorCount);
    EXPECT_EQ(Refused() == 0 ? 0 : kIoError, report.lastError);
    EXPECT_EQ(Delivered(), report.bytesReceived - before.bytesReceived);
    EXPECT_EQ(RingFailed() ? Delivered() : 0, report.bytesDropped - before.bytesDropped);
    EXPECT_EQ(os.Notifications().size() - notifiedBefore,
              report.notificationsPosted - before.notificationsPosted);
}

bool Point::OpenLink(bool wireless, bool framed) {
    return wireless ? InitWlanPrinter(u"printer", 9100, 1000, framed) == 1
                    : InitPrinter(kPort, 9600, framed) == 1;
}

std::vector<uint8_t> Point::Written() const {
    std::vector<uint8_t> all;
    for (const scripted::Bytes &bytes : os.Written())
        all.insert(all.end(), bytes.begin(), bytes.end());
    return all;
}

void Point::ForgetWritten() {
    os.ForgetCalls();
    heard = 0;
}

void Point::ExpectNothingHeld() {
    EXPECT_FALSE(LinkIsOpen());
    EXPECT_EQ(0, os.LiveThreads()) << "threads not given back";
    EXPECT_EQ(0, os.OpenSockets()) << "sockets not closed";
    EXPECT_EQ(0, os.SocketSupport()) << "starts and stops of socket support differ";
    EXPECT_EQ(keptPorts, os.OpenPorts()) << "ports not closed";
    EXPECT_EQ(0, files.StillOpen()) << "files not closed";
    EXPECT_EQ(0, SendingCalls);
    EXPECT_EQ(0, LinkClosing);
}

void Point::ExpectPrints(int32_t connected) {
    ASSERT_EQ(1, connected);
    ClearSpool();
    TextSaveSpool(u"again");
    ForgetWritten();
    EXPECT_EQ(1, PrintSpool(1));
    EXPECT_EQ("61 67 61 69 6E", HexOf(Written()));
    EXPECT_EQ(1, ClosePrinter());
    ExpectNothingHeld();
    EXPECT_EQ(nullptr, ReceiveQueue);
    EXPECT_EQ(nullptr, WirelessSocket);
    EXPECT_EQ(nullptr, ConversionBuffer);
    EXPECT_TRUE(IsAllZero(SpoolBuffer));
}

void Point::ExpectUsable() {
    AttachPrinter();
    if (LinkIsOpen()) {
        EXPECT_EQ(1, ClosePrinter());
    }
    ExpectNothingHeld();
    ExpectPrints(InitPrinter(keptPorts == 0 ? kPort : kOtherPort, 9600, 0));
    ExpectPrints(ConnectWirelessPrinter(u"printer", 9100, 200, 0));
    os.ForgetScript();
}

namespace {

// One run more than there are points: the last is that in which nothing fails.
int TryPoints(const Scenario &scenario, Source source, bool onward, std::set<std::string> &operations) {
    int tried = 0;
    while (tried < kMostPoints && TryPoint(scenario, {source, onward, tried + 1}, operations))
        ++tried;
    EXPECT_LT(tried, kMostPoints) << scenario.name << " goes on failing";
    return tried;
}

} // namespace

std::set<std::string> TryEveryPoint(const Scenario &scenario) {
    std::set<std::string> operations;
    for (const Source source : {Source::system, Source::files, Source::memory}) {
        if (source == Source::memory && !allocation::CanFail())
            continue;
        for (const bool onward : {false, true}) {
            const int tried = TryPoints(scenario, source, onward, operations);
            EXPECT_EQ(scenario.sources.contains(source), tried != 0)
                << scenario.name << ": " << Shown({source, onward, tried});
            pointsTried += tried;
        }
    }
    return operations;
}

int PointsTried() {
    return pointsTried;
}

} // namespace nadrel::faults

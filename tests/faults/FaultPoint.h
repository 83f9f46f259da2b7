#pragma once

#include "api/NadrelHost.h"
#include "tests/image/PictureTest.h"

#include <functional>
#include <set>
#include <string>

// One operation of the system or one allocation fails, the first, the second and so on until a scenario runs
// through, once and from then on.
namespace nadrel::faults {

enum class Source { system, files, memory };

struct Fault {
    Source source = Source::system;
    bool onward = false;
    int nth = 1;
};

// The reason of every failure that is scripted, and what stands in LastLinkError before.
inline constexpr uint32_t kIoError = 5;
inline constexpr uint32_t kNoReason = 77;

// The port that connects of the scenarios open. One that does not take its settings, or does not close, stays
// open.
inline constexpr char16_t kPort[] = u"COM1";
inline constexpr char16_t kOtherPort[] = u"COM2";

// The library just loaded, a printer that answers queries, and the fault.
class Point : public PictureTest {
  public:
    Point();
    ~Point() override;

    void Arm(const Fault &fault);
    void Disarm();
    // Whether the fault has come, and at what: an operation of the system with its number among those of its
    // name, or any of them.
    bool Came() const { return FileFailed() || AllocationFailed() || !failed.empty(); }
    bool FileFailed() const { return fileFailures != 0; }
    bool AllocationFailed() const { return firstAllocation != 0; }
    // It was the first allocation to fail.
    bool RingFailed() const { return firstAllocation == sizeof(ReceiveRing); }
    bool FailedAt(const std::string &call) const { return failed.contains(call); }
    bool FailedAtAny(const std::string &operation) const { return FailuresOf(operation) != 0; }
    size_t FailuresOf(const std::string &operation) const;
    const std::set<std::string> &Failed() const { return failed; }
    // All that the printer needs to be heard works but for the one failure.
    bool RecoversAtOnce() const { return !fault.onward || !Came(); }

    // A printer that answers status queries, heard by the library's threads while it pauses.
    void AttachPrinter();
    void Serve();
    // Since the fault was armed: bytes of the printer that the system gave the library, and whether the host
    // was told a status.
    size_t Delivered() const { return os.Delivered() - deliveredBefore; }
    bool ToldStatus() const;

    // Writes that the system was asked for since, and those that it refused.
    size_t Asked() const { return os.CountOf("WritePort") + os.CountOf("Send"); }
    size_t Refused() const { return FailuresOf("WritePort") + FailuresOf("Send"); }
    // The host's report says so, and what was received and told. All writes were of so many bytes.
    void ExpectReported(size_t bytesOfAWrite) const;

    void FailIOCtlWith(int32_t result) { os.failedIOCtl = result; }

    bool OpenLink(bool wireless, bool framed);
    void Give(const BmpBuilder &file) { PictureTest::Give(file); }
    const char16_t *Picture() const { return kName; }
    // What went over the link since, in one piece.
    std::vector<uint8_t> Written() const;
    void ForgetWritten();
    void ExpectFilesClosed() { EXPECT_EQ(0, files.StillOpen()); }
    // Printing needs none of its operations.
    void ExpectNoDisplay() { EXPECT_THAT(display.calls, testing::IsEmpty()); }

    // Closes what is open, looks for what was not given back, and uses both links once more.
    void ExpectUsable();
    void KeepPort() { keptPorts = 1; }

  private:
    void TestBody() override {}
    void AnswerQueries();
    void ExpectNothingHeld();
    void ExpectPrints(int32_t connected);

    bool serving = false;
    size_t heard = 0; // writes that the printer has seen
    Fault fault;
    NadrelLinkReport before = {};
    size_t deliveredBefore = 0;
    size_t notifiedBefore = 0;
    int fileFailures = 0;
    size_t firstAllocation = 0; // bytes
    std::set<std::string> failed;
};

struct Scenario {
    std::string name;
    std::set<Source> sources; // what it uses: in each there is something to fail, and in the others nothing
    std::function<void(Point &)> prepare;
    std::function<int32_t(Point &)> act;
    std::function<void(Point &, int32_t result)> check; // also after an act in which nothing failed
};

// Fails what the scenario uses, point by point, and expects that there was something to fail. Gives the names
// of the operations that failed.
std::set<std::string> TryEveryPoint(const Scenario &scenario);

// Of all scenarios so far.
int PointsTried();

} // namespace nadrel::faults

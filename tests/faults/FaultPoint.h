#pragma once

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
    bool AllocationFailed() const { return allocationFailures != 0; }
    bool FailedAt(const std::string &call) const { return failed.contains(call); }
    bool FailedAtAny(const std::string &operation) const;

    // A printer that answers status queries, heard by the library's threads while it pauses.
    void AttachPrinter();
    bool ToldStatus() const;

    bool OpenLink(bool wireless, bool framed);
    void Give(const BmpBuilder &file) { PictureTest::Give(file); }
    const char16_t *Picture() const { return kName; }
    // What went over the link since, in one piece.
    std::vector<uint8_t> Written() const;
    void ForgetWritten() { os.ForgetCalls(); }
    void ExpectFilesClosed() { EXPECT_EQ(0, files.StillOpen()); }

    // Closes what is open, looks for what was not given back, and uses both links once more.
    void ExpectUsable();
    void KeepPort() { keptPorts = 1; }

  private:
    void TestBody() override {}
    void Serve();
    void AnswerQueries();
    void ExpectNothingHeld();
    void ExpectPrints(int32_t connected);

    bool serving = false;
    size_t heard = 0; // writes that the printer has seen
    int fileFailures = 0;
    int allocationFailures = 0;
    std::set<std::string> failed;
};

struct Scenario {
    std::string name;
    std::vector<Source> sources;
    std::function<void(Point &)> prepare;
    std::function<int32_t(Point &)> act;
    std::function<void(Point &, int32_t result)> check; // also after an act in which nothing failed
};

// Gives the points tried.
int TryEveryPoint(const Scenario &scenario);

// Of all scenarios so far.
int PointsTried();

} // namespace nadrel::faults

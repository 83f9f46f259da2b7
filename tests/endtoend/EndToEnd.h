#pragma once

#include "tests/TemporaryFolder.h"
#include "tests/endtoend/Host.h"
#include "tests/endtoend/NotificationRecorder.h"
#include "tests/endtoend/Resources.h"
#include "tests/endtoend/Waiting.h"

#include <gtest/gtest.h>

namespace endtoend {

// A test has a folder and a printer of its own, and listens to what the library tells. At its end the link is
// closed, the printer has ended in order, and no thread and no descriptor is left.
class EndToEnd : public testing::Test {
  protected:
    EndToEnd();
    ~EndToEnd() override;

    VirtualPrinter &StartPrinter(std::vector<std::string> options = {});
    VirtualPrinter &Printer() { return *printer; }
    // Ends it in order; what it has kept stays.
    void StopPrinter();

    // Starts a printer, connects and says whether that succeeded. The answers to the query frames of a framed
    // connect have been heard.
    testing::AssertionResult Open(Link link, std::vector<std::string> options = {});

    // Has the printer say '0' and hears everything up to it. From then on the parser pauses for 200 ms, so
    // that what the printer says next reaches it whole. Only once the printer has taken something from this
    // link.
    void Settle();

    // Open, until the printer has taken something, and Settle.
    void Meet(Link link, std::vector<std::string> options = {});

    // Waits until the printer's listing holds the text.
    testing::AssertionResult HasListed(const std::string &text, size_t count = 1);

    TemporaryFolder folder;
    NotificationRecorder heard;
    std::ptrdiff_t keptOpen = 0; // descriptors that the library keeps because its interface says so

    // Whether these resources are used now. Emulated, a joined thread goes a little later: it is waited for, and
    // may have been counted before.
    static bool UsesOnly(const Resources &expected);

  private:
    Resources atStart;
    std::optional<VirtualPrinter> printer;
};

class OnEveryLink : public EndToEnd, public testing::WithParamInterface<Link> {
  protected:
    bool IsFramed() const { return GetParam().form == Form::framed; }
};
class OnEveryMedium : public EndToEnd, public testing::WithParamInterface<Medium> {
  protected:
    Link Plain() const { return {GetParam(), Form::plain}; }
    Link Framed() const { return {GetParam(), Form::framed}; }
};

template <typename Parameter>
std::string ParameterName(const testing::TestParamInfo<Parameter> &info) {
    return NameOf(info.param);
}

} // namespace endtoend

// Runs the suite's tests over serial and TCP, plain and framed; once plain and once framed, where the kind of
// link makes no difference; over serial and TCP.
#define NADREL_ON_EVERY_LINK(suite)                                                                          \
    INSTANTIATE_TEST_SUITE_P(, suite, testing::ValuesIn(endtoend::kEveryLink), endtoend::ParameterName<Link>)
#define NADREL_IN_BOTH_FORMS(suite)                                                                          \
    INSTANTIATE_TEST_SUITE_P(, suite, testing::ValuesIn(endtoend::kBothForms), endtoend::ParameterName<Link>)
#define NADREL_ON_EVERY_MEDIUM(suite)                                                                        \
    INSTANTIATE_TEST_SUITE_P(, suite, testing::ValuesIn(endtoend::kEveryMedium),                             \
                             endtoend::ParameterName<Medium>)

#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/Limits.h"

#include <future>

using namespace endtoend;
using namespace std::chrono_literals;

namespace {

class ClosePrinterCall : public OnEveryMedium {
  protected:
    // Closes in time; nothing of the connection is left then, and nothing is told any more.
    void ExpectToClose() {
        const Closing closed = TimedClose();
        const size_t told = heard.Count();
        EXPECT_EQ(closed.result, 1);
        EXPECT_LT(closed.time, kLongestClose);
        if (Printer().IsRunning()) {
            EXPECT_TRUE(UsesOnly(whileClosed)) << UsedNow() << "; while closed: " << whileClosed;
        }
        EXPECT_EQ(ClosePrinter(), 0);
        EXPECT_EQ(GetPortHandle(), NADREL_INVALID_HANDLE);
        StopPrinter();
        EXPECT_EQ(heard.Count(), told);
    }

    void Begin(std::vector<std::string> options = {}) {
        StartPrinter(std::move(options));
        whileClosed = UsedNow();
        ASSERT_EQ(Connect(Printer(), Plain()), 1);
        EXPECT_GT(UsedNow().threads, whileClosed.threads);
    }

    Resources whileClosed;
};
NADREL_ON_EVERY_MEDIUM(ClosePrinterCall);

} // namespace

TEST_P(ClosePrinterCall, IsQuickRightAfterTheConnect) {
    Begin();
    ExpectToClose();
}

TEST_P(ClosePrinterCall, IsQuickOnAnIdleLink) {
    Begin();
    EXPECT_EQ(PrintLine("idle after this"), 1);
    EXPECT_TRUE(HasListed("\"idle after this\""));
    Settle();
    ExpectToClose();
}

// Which the parser takes within 200 ms, to pause for 500 ms then: the close comes before or within that.
TEST_P(ClosePrinterCall, IsQuickWhileCardDataIsBeingAwaited) {
    Begin();
    EXPECT_EQ(PrintLine("ready"), 1);
    EXPECT_TRUE(HasListed("\"ready\""));
    Settle();
    const uint64_t before = Report().bytesReceived;
    Printer().Say("send 1B 01 42 43");
    EXPECT_TRUE(Eventually([=] { return Report().bytesReceived == before + 4; }));
    ExpectToClose();
}

TEST_P(ClosePrinterCall, IsQuickWhileThePrinterSendsWithoutEnd) {
    Begin({"--flood"});
    EXPECT_TRUE(Eventually([] { return Report().bytesReceived > 100'000; }));
    ExpectToClose();
}

TEST_P(ClosePrinterCall, IsQuickWhenThePrinterIsGone) {
    Begin();
    EXPECT_EQ(PrintLine("gone after this"), 1);
    EXPECT_TRUE(HasListed("\"gone after this\""));
    StopPrinter();
    ExpectToClose();
}

TEST_P(ClosePrinterCall, WaitsForAHandlerThatRuns) {
    Begin();
    EXPECT_EQ(PrintLine("ready"), 1);
    EXPECT_TRUE(HasListed("\"ready\""));
    struct {
        std::promise<void> entered;
        std::promise<void> leave;
        std::atomic<bool> running = true;
    } state;
    const auto handle = [](uint32_t, uint32_t, intptr_t, void *context) {
        auto &shared = *static_cast<decltype(state) *>(context);
        shared.entered.set_value();
        shared.leave.get_future().wait();
        shared.running = false;
    };
    SetNotificationHandler(handle, &state);
    Printer().Say("send 30");
    state.entered.get_future().wait();
    auto closing = std::async(std::launch::async, [&] { return ClosePrinter() == 1 && !state.running; });
    EXPECT_EQ(closing.wait_for(50ms), std::future_status::timeout);
    state.leave.set_value();
    EXPECT_TRUE(closing.get());
    heard.Listen();
}

#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/Limits.h"

#include <atomic>
#include <functional>
#include <future>

using namespace endtoend;
using namespace std::chrono_literals;

namespace {

// A handler that is any callable; it stays set until another one is.
using Reaction = std::function<void(const Notification &)>;

void React(uint32_t, uint32_t wParam, intptr_t lParam, void *reaction) {
    (*static_cast<const Reaction *>(reaction))(CopyOf(wParam, lParam));
}

void Set(const Reaction &reaction) {
    SetNotificationHandler(&React, const_cast<Reaction *>(&reaction));
}

// A door that one thread opens for others.
class Gate {
  public:
    void Open() { opened.set_value(); }
    bool Await() { return future.wait_for(kGenerous) == std::future_status::ready; }

  private:
    std::promise<void> opened;
    std::shared_future<void> future = opened.get_future().share();
};

class Handlers : public EndToEnd {
  protected:
    void Begin() { Meet({Medium::tcp, Form::plain}); }
};

class ClosingHandlers : public OnEveryMedium {};
NADREL_ON_EVERY_MEDIUM(ClosingHandlers);

} // namespace

TEST_F(Handlers, AreSwappedOutOnlyWhenTheyHaveReturned) {
    Begin();
    Gate entered;
    Gate leave;
    std::atomic<bool> running = false;
    const Reaction first = [&](const Notification &) {
        running = true;
        entered.Open();
        EXPECT_TRUE(leave.Await());
        running = false;
    };
    Set(first);
    Printer().Say("send 30 31");
    ASSERT_TRUE(entered.Await());
    auto swap = std::async(std::launch::async, [&] {
        heard.Listen();
        return running.load();
    });
    EXPECT_EQ(swap.wait_for(50ms), std::future_status::timeout);
    leave.Open();
    EXPECT_FALSE(swap.get());
    Settle();
    EXPECT_EQ(heard.Count(), 2u); // the two of Settle
}

TEST_F(Handlers, AreNeverCalledWithAContextThatWasSwappedOut) {
    ASSERT_TRUE(Open({Medium::tcp, Form::plain}, {"--flood"}));
    std::atomic<int> calls = 0;
    while (calls < 2) {
        auto alive = std::make_unique<std::atomic<bool>>(true);
        const Reaction reaction = [&calls, owned = alive.get()](const Notification &) {
            for (const Stopwatch watch; watch.Elapsed() < 2;)
                EXPECT_TRUE(*owned);
            ++calls;
        };
        Set(reaction);
        heard.Listen();
        *alive = false;
    }
}

TEST_F(Handlers, MayPutAnotherInTheirPlace) {
    Begin();
    Gate swapped;
    const Reaction once = [&](const Notification &) {
        heard.Listen();
        swapped.Open();
    };
    Set(once);
    Printer().Say("send 30 31");
    ASSERT_TRUE(swapped.Await());
    Printer().Say("send 30 32");
    EXPECT_EQ(heard.Next(), Reply('T', "02"));
}

TEST_F(Handlers, StaySetFromOneConnectionToTheNext) {
    Begin();
    EXPECT_EQ(ClosePrinter(), 1);
    ASSERT_EQ(Connect(Printer(), {Medium::tcp, Form::plain}), 1);
    EXPECT_EQ(PrintLine("next"), 1);
    EXPECT_TRUE(HasListed("\"next\""));
    Settle();
}

TEST_F(Handlers, AreNotNeededForCounting) {
    Begin();
    heard.StopListening();
    const uint32_t before = Report().notificationsPosted;
    Printer().Say("send 30");
    EXPECT_TRUE(Eventually([&] { return Report().notificationsPosted == before + 1; }));
    heard.Listen();
    Settle();
    EXPECT_EQ(heard.Count(), 2u);
}

TEST_F(Handlers, ThatAreSlowDoNotMergeReplies) {
    Begin();
    Gate leave;
    std::promise<Notification> first;
    const Reaction slow = [&](const Notification &notification) {
        if (notification.length == 2) {
            first.set_value(notification);
            EXPECT_TRUE(leave.Await());
        }
        heard.Add(notification);
    };
    Set(slow);
    uint32_t posted = Report().notificationsPosted;
    for (const char *reply : {"send 30 31", "send 30 31 32", "send 30 31 32 33"}) {
        Printer().Say(reply);
        ++posted;
        EXPECT_TRUE(Eventually([&] { return Report().notificationsPosted == posted; }));
    }
    EXPECT_EQ(first.get_future().get(), Reply('T', "01"));
    leave.Open();
    EXPECT_EQ(heard.Next(), Reply('T', "01"));
    EXPECT_EQ(heard.Next().length, 3u); // the buffer holds the last reply by now
    EXPECT_EQ(heard.Next(), Reply('T', "0123"));
    heard.Listen();
}

TEST_F(Handlers, MayCallTheOtherFunctions) {
    Begin();
    std::promise<int32_t> printed;
    std::promise<int32_t> answered;
    const Reaction busy = [&](const Notification &notification) {
        if (notification.kind == 'T') {
            printed.set_value(PrintLine("from the handler"));
            answered.set_value(GetPrinterStatus(5000));
        }
        heard.Add(notification);
    };
    Set(busy);
    Printer().Say("send 30 31");
    EXPECT_EQ(printed.get_future().get(), 1);
    EXPECT_EQ(answered.get_future().get(), 1);
    EXPECT_TRUE(HasListed("\"from the handler\""));
    EXPECT_EQ(heard.Next().kind, uint32_t{'T'});
    EXPECT_EQ(heard.Next().kind, uint32_t{'S'});
    heard.Listen();
}

TEST_P(ClosingHandlers, MayCloseThePrinter) {
    Meet(Plain());
    std::promise<Closing> closing;
    std::atomic<int> calls = 0;
    const Reaction close = [&](const Notification &) {
        ++calls;
        closing.set_value(TimedClose());
    };
    Set(close);
    Printer().Say("send 30 31");
    const Closing closed = closing.get_future().get();
    EXPECT_EQ(closed.result, 1);
    EXPECT_LT(closed.time, kLongestClose);
    EXPECT_EQ(ClosePrinter(), 0);
    EXPECT_EQ(PrintLine("closed"), ERR_NOT_CONNECTED);
    heard.Listen();
    EXPECT_EQ(calls, 1);
    ASSERT_EQ(Connect(Printer(), Plain()), 1);
    EXPECT_EQ(PrintLine("open again"), 1);
    EXPECT_TRUE(HasListed("\"open again\""));
}

TEST_P(ClosingHandlers, MayOpenTheNextLinkThemselves) {
    Meet(Plain());
    std::promise<int32_t> result;
    const Reaction reopen = [&](const Notification &notification) {
        if (notification.length == 2)
            result.set_value(ClosePrinter() == 1 ? Connect(Printer(), Plain()) : 0);
        else
            heard.Add(notification);
    };
    Set(reopen);
    Printer().Say("send 30 31");
    EXPECT_EQ(result.get_future().get(), 1);
    EXPECT_EQ(PrintLine("reopened"), 1);
    EXPECT_TRUE(HasListed("\"reopened\""));
    Settle();
    heard.Listen();
}

TEST_P(ClosingHandlers, ReleaseASendThatWaitsOnAnotherThread) {
    Meet(Plain());
    std::promise<Closing> closing;
    const Reaction close = [&](const Notification &notification) {
        if (notification.length == 2)
            closing.set_value(TimedClose());
    };
    Set(close);
    Printer().Say("paper-out");
    const std::vector<uint8_t> much(400'000, '\n');
    EXPECT_EQ(ControlCommand(much.data(), 400'000), 400'000);
    auto sending = std::async(std::launch::async, [] { return PrintUntilAnError(); });
    EXPECT_EQ(sending.wait_for(200ms), std::future_status::timeout);
    Printer().Say("send 30 31");
    const Closing closed = closing.get_future().get();
    EXPECT_EQ(closed.result, 1);
    EXPECT_LT(closed.time, kLongestClose);
    EXPECT_EQ(sending.get(), 1);
    EXPECT_LT(Report().bytesTaken, Report().bytesAsked);
    EXPECT_EQ(Report().lastError, static_cast<uint32_t>(ECANCELED));
    heard.Listen();
}

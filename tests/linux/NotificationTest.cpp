#include "platform/Notification.h"

#include "platform/linux/NotificationHandler.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <stdexcept>

namespace {

using platform::CloseNotifications;
using platform::OpenNotifications;
using platform::PostNotification;
using platform::RegisterNotification;
using platform::SetNotificationHandler;

struct Told {
    uint32_t message;
    uint32_t wParam;
    intptr_t lParam;

    bool operator==(const Told &) const = default;
};

// A host: keeps what it is told, and does `action` with each.
class Host {
  public:
    explicit Host(std::function<void(const Told &)> does = {}) : action(std::move(does)) {
        SetNotificationHandler(&Host::Hear, this);
    }
    ~Host() {
        CloseNotifications();
        SetNotificationHandler(nullptr, nullptr);
    }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    static void Hear(uint32_t message, uint32_t wParam, intptr_t lParam, void *context) {
        static_cast<Host *>(context)->Take({message, wParam, lParam});
    }

    std::vector<Told> Heard() {
        const std::lock_guard lock(mutex);
        return heard;
    }
    bool AwaitHeard(size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, kGenerous, [&] { return heard.size() >= count; });
    }
    // The most that were at work at the same time.
    int MostAtOnce() const { return mostAtOnce; }
    bool AtWork() const { return atWork != 0; }

  private:
    void Take(const Told &told) {
        const int now = ++atWork;
        mostAtOnce = std::max(mostAtOnce.load(), now);
        {
            const std::lock_guard lock(mutex);
            heard.push_back(told);
        }
        changed.notify_all();
        if (action)
            action(told);
        --atWork;
    }

    std::function<void(const Told &)> action;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Told> heard;
    std::atomic<int> atWork = 0;
    std::atomic<int> mostAtOnce = 0;
};

// A door that the handler stands at until the test opens it.
class Door {
  public:
    void Pass() {
        std::unique_lock lock(mutex);
        ++waiting;
        changed.notify_all();
        changed.wait_for(lock, kGenerous, [&] { return open; });
    }
    void Open() {
        const std::lock_guard lock(mutex);
        open = true;
        changed.notify_all();
    }
    bool AwaitSomebody(int count = 1) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, kGenerous, [&] { return waiting >= count; });
    }

  private:
    std::mutex mutex;
    std::condition_variable changed;
    bool open = false;
    int waiting = 0;
};

// Opens the door once the calling thread waits in what it does next.
std::thread OpenWhenAwaited(Door &door, std::atomic<bool> &opened) {
    return std::thread([&, waiting = gettid()] {
        EXPECT_TRUE(AwaitBlocked(waiting, SYS_futex));
        opened = true;
        door.Open();
    });
}

TEST(Notification, TheSameNameHasTheSameNumberEveryTime) {
    const uint32_t number = RegisterNotification(u"NADREL_PRT_OK");
    EXPECT_GE(number, 0xC000U);
    EXPECT_LE(number, 0xFFFFU);
    const std::u16string copy = u"NADREL_PRT_OK";
    EXPECT_EQ(RegisterNotification(copy.c_str()), number);
    EXPECT_NE(RegisterNotification(u"NADREL_PRT_OL"), number);
}

TEST(Notification, NoNameHasNoNumber) {
    EXPECT_EQ(RegisterNotification(nullptr), 0U);
    EXPECT_EQ(RegisterNotification(u""), 0U);
}

TEST(Notification, MessagesArriveInTheOrderPosted) {
    Host host;
    OpenNotifications();
    std::vector<Told> posted;
    for (uint32_t i = 0; i < 1000; ++i) {
        posted.push_back({0xC123, i, static_cast<intptr_t>(i) * -3});
        PostNotification(posted.back().message, posted.back().wParam, posted.back().lParam);
    }
    ASSERT_TRUE(host.AwaitHeard(1000));
    EXPECT_EQ(host.Heard(), posted);
    EXPECT_EQ(host.MostAtOnce(), 1);
}

TEST(Notification, AddressesArriveWhole) {
    Host host;
    OpenNotifications();
    PostNotification(0xFFFFFFFF, 0xFFFFFFFF, INTPTR_MIN);
    ASSERT_TRUE(host.AwaitHeard(1));
    EXPECT_EQ(host.Heard().front(), (Told{0xFFFFFFFF, 0xFFFFFFFF, INTPTR_MIN}));
}

TEST(Notification, PostingDoesNotWaitForASlowHandlerAndTenThousandAreKept) {
    Door door;
    Host host([&](const Told &) { door.Pass(); });
    OpenNotifications();
    PostNotification(1, 0, 0);
    ASSERT_TRUE(door.AwaitSomebody());
    for (uint32_t i = 1; i <= 10'001; ++i)
        PostNotification(1, i, 0);
    door.Open();
    ASSERT_TRUE(host.AwaitHeard(10'001));
    PostNotification(2, 0, 0);
    ASSERT_TRUE(host.AwaitHeard(10'002));
    EXPECT_EQ(host.Heard()[10'000], (Told{1, 10'000, 0}));
    EXPECT_EQ(host.Heard()[10'001], (Told{2, 0, 0})) << "the newest is dropped when the queue is full";
}

TEST(Notification, NothingIsToldBeforeOpeningOrAfterClosing) {
    Host host;
    PostNotification(1, 1, 0);
    OpenNotifications();
    PostNotification(1, 2, 0);
    ASSERT_TRUE(host.AwaitHeard(1));
    CloseNotifications();
    PostNotification(1, 3, 0);
    OpenNotifications();
    PostNotification(1, 4, 0);
    ASSERT_TRUE(host.AwaitHeard(2));
    CloseNotifications();
    EXPECT_EQ(host.Heard(), (std::vector<Told>{{1, 2, 0}, {1, 4, 0}}));
}

TEST(Notification, WithoutAHandlerMessagesAreDropped) {
    Host host;
    SetNotificationHandler(nullptr, nullptr);
    OpenNotifications();
    PostNotification(1, 1, 0);
    EXPECT_TRUE(AwaitOthersBlocked()) << "the message has been taken";
    SetNotificationHandler(&Host::Hear, &host);
    PostNotification(1, 2, 0);
    ASSERT_TRUE(host.AwaitHeard(1));
    EXPECT_EQ(host.Heard(), (std::vector<Told>{{1, 2, 0}}));
}

TEST(Notification, TheHandlerStaysSetOverClosingAndOpening) {
    Host host;
    for (uint32_t i = 1; i <= 3; ++i) {
        OpenNotifications();
        PostNotification(1, i, 0);
        ASSERT_TRUE(host.AwaitHeard(i));
        CloseNotifications();
    }
}

TEST(Notification, ClosingWaitsForTheHandlerAndDropsWhatIsQueued) {
    Door door;
    std::atomic<bool> opened = false;
    Host host([&](const Told &) { door.Pass(); });
    OpenNotifications();
    for (uint32_t i = 0; i < 100; ++i)
        PostNotification(1, i, 0);
    ASSERT_TRUE(door.AwaitSomebody());
    std::thread opener = OpenWhenAwaited(door, opened);
    CloseNotifications();
    EXPECT_TRUE(opened);
    EXPECT_FALSE(host.AtWork());
    EXPECT_EQ(host.Heard().size(), 1U);
    opener.join();
}

TEST(Notification, ReplacingTheHandlerWaitsForTheOldOne) {
    Door door;
    std::atomic<bool> opened = false;
    Host host([&](const Told &) { door.Pass(); });
    OpenNotifications();
    PostNotification(1, 0, 0);
    ASSERT_TRUE(door.AwaitSomebody());
    std::thread opener = OpenWhenAwaited(door, opened);
    SetNotificationHandler(nullptr, nullptr);
    EXPECT_TRUE(opened);
    EXPECT_FALSE(host.AtWork());
    opener.join();
}

TEST(Notification, ReplacingTheHandlerEndsAlsoWhileMessagesKeepComing) {
    Host host;
    OpenNotifications();
    std::atomic<bool> over = false;
    std::thread poster([&] {
        while (!over)
            PostNotification(1, 0, 0);
    });
    EXPECT_TRUE(host.AwaitHeard(1));
    for (int i = 0; i < 200; ++i)
        SetNotificationHandler(&Host::Hear, &host);
    over = true;
    poster.join();
}

TEST(Notification, AHandlerMayCloseAndIsTheLastToBeCalled) {
    Host host([](const Told &) { CloseNotifications(); });
    OpenNotifications();
    for (uint32_t i = 0; i < 100; ++i)
        PostNotification(1, i, 0);
    ASSERT_TRUE(host.AwaitHeard(1));
    CloseNotifications();
    EXPECT_FALSE(host.AtWork());
    EXPECT_EQ(host.Heard().size(), 1U);
}

TEST(Notification, AHandlerMayCloseAndOpenAgainWithoutRunningTwiceAtOnce) {
    std::atomic<int> rounds = 0;
    Host host([&](const Told &told) {
        if (rounds++ >= 100)
            return;
        CloseNotifications();
        OpenNotifications();
        PostNotification(1, told.wParam + 1, 0);
        PostNotification(2, 0, 0);
    });
    OpenNotifications();
    PostNotification(1, 0, 0);
    ASSERT_TRUE(host.AwaitHeard(101));
    EXPECT_EQ(host.Heard()[100], (Told{1, 100, 0})) << "closing has dropped what was queued behind";
    EXPECT_EQ(host.MostAtOnce(), 1);
}

TEST(Notification, AConnectionOpenedWhileTheHandlerClosesTheOldOneIsServedAfterIt) {
    Door door;
    Host host([&](const Told &told) {
        if (told.wParam != 0)
            return;
        CloseNotifications();
        door.Pass();
    });
    OpenNotifications();
    PostNotification(1, 0, 0);
    ASSERT_TRUE(door.AwaitSomebody());
    OpenNotifications();
    PostNotification(1, 1, 0);
    ASSERT_TRUE(AwaitOthersBlocked());
    EXPECT_EQ(host.Heard().size(), 1U);
    door.Open();
    ASSERT_TRUE(host.AwaitHeard(2));
    EXPECT_EQ(host.MostAtOnce(), 1);
}

TEST(Notification, ClosingFromOutsideWaitsAlsoForAHandlerThatHasClosedItself) {
    Door door;
    std::atomic<bool> opened = false;
    Host host([&](const Told &) {
        CloseNotifications();
        door.Pass();
    });
    OpenNotifications();
    PostNotification(1, 0, 0);
    ASSERT_TRUE(door.AwaitSomebody());
    std::thread opener = OpenWhenAwaited(door, opened);
    CloseNotifications();
    EXPECT_TRUE(opened);
    EXPECT_FALSE(host.AtWork());
    opener.join();
}

TEST(Notification, AHandlerMayReplaceItself) {
    static Host *second = nullptr;
    Host last;
    Host first([](const Told &) { SetNotificationHandler(&Host::Hear, second); });
    second = &last;
    OpenNotifications();
    PostNotification(1, 1, 0);
    PostNotification(1, 2, 0);
    ASSERT_TRUE(last.AwaitHeard(1));
    EXPECT_EQ(first.Heard().size(), 1U);
    EXPECT_EQ(last.Heard().front(), (Told{1, 2, 0}));
}

TEST(Notification, AnExceptionFromTheHandlerEndsOnlyThatCall) {
    Host host([](const Told &) { throw std::runtime_error("from the host"); });
    OpenNotifications();
    PostNotification(1, 1, 0);
    PostNotification(1, 2, 0);
    EXPECT_TRUE(host.AwaitHeard(2));
}

TEST(Notification, OnlyTheHandlersOwnThreadIsWithinANotification) {
    Door door;
    std::atomic<bool> within = false;
    Host host([&](const Told &) {
        within = platform::WithinNotification();
        door.Pass();
    });
    OpenNotifications();
    PostNotification(1, 1, 0);
    ASSERT_TRUE(door.AwaitSomebody());
    EXPECT_TRUE(within);
    EXPECT_FALSE(platform::WithinNotification()) << "while the handler runs elsewhere";
    door.Open();
    CloseNotifications();
    EXPECT_FALSE(platform::WithinNotification());
}

TEST(Notification, TheHandlerRunsOnAThreadThatTakesNoSignals) {
    std::atomic<bool> blocked = false;
    Host host([&](const Told &) {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        blocked = sigismember(&mask, SIGINT) == 1 && sigismember(&mask, SIGUSR1) == 1;
    });
    OpenNotifications();
    PostNotification(1, 1, 0);
    ASSERT_TRUE(host.AwaitHeard(1));
    CloseNotifications();
    EXPECT_TRUE(blocked);
}

TEST(Notification, OpeningOrClosingTwiceIsNoMore) {
    Host host;
    CloseNotifications();
    OpenNotifications();
    OpenNotifications();
    PostNotification(1, 1, 0);
    ASSERT_TRUE(host.AwaitHeard(1));
    CloseNotifications();
    CloseNotifications();
    EXPECT_EQ(host.Heard().size(), 1U);
}

TEST(Notification, AThousandTimesOpenAndClosedLeaveNothing) {
    Host host;
    OpenNotifications();
    CloseNotifications();
    const auto threads = RunningThreads();
    const auto descriptors = OpenDescriptors();
    for (int i = 0; i < 1000; ++i) {
        OpenNotifications();
        PostNotification(1, 1, 0);
        CloseNotifications();
    }
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; })) << RunningThreads() << " of " << threads;
    EXPECT_TRUE(NoDescriptorIsLost(descriptors));
}

TEST(Notification, AThreadClosedByItsHandlerIsGoneSoonAfter) {
    std::atomic<int> closed = 0;
    Host host([&](const Told &) {
        CloseNotifications();
        ++closed;
    });
    OpenNotifications();
    CloseNotifications();
    const auto threads = RunningThreads();
    for (int i = 1; i <= 100; ++i) {
        OpenNotifications();
        PostNotification(1, 0, 0);
        ASSERT_TRUE(Await([&] { return closed == i; }));
    }
    EXPECT_TRUE(Await([&] { return RunningThreads() <= threads; })) << RunningThreads() << " of " << threads;
}

} // namespace

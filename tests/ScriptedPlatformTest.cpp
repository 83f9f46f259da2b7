#include "platform/Clock.h"
#include "platform/Error.h"
#include "tests/LibraryTest.h"

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The clock and the script that the other tests stand on.
class ScriptedPlatformTest : public LibraryTest {};

uint32_t SleepForEver() {
    for (;;)
        platform::Sleep(30);
}

TEST_F(ScriptedPlatformTest, OnlyPausesMoveTheClock) {
    EXPECT_EQ(0u, os.Now());
    platform::Sleep(400);
    platform::TimedEvent().Wait(200);
    EXPECT_EQ(600u, os.Now());
}

TEST_F(ScriptedPlatformTest, AnActionRunsAtItsTime) {
    std::vector<uint64_t> times;
    os.After(30, [&] { times.push_back(os.Now()); });
    os.After(10, [&] { times.push_back(os.Now()); });
    os.After(50, [&] { times.push_back(os.Now()); });
    platform::Sleep(30);
    EXPECT_THAT(times, ElementsAre(10, 30));
    platform::Sleep(30);
    EXPECT_THAT(times, ElementsAre(10, 30, 50));
    EXPECT_EQ(60u, os.Now());
}

TEST_F(ScriptedPlatformTest, AHookThatPausesWithinAPauseDoesNotLengthenIt) {
    os.OnCall("Sleep", [] { platform::Sleep(40); });
    platform::Sleep(100);
    EXPECT_EQ(100u, os.Now());
}

TEST_F(ScriptedPlatformTest, AThreadIsEndedWhenItsTimeIsOver) {
    EXPECT_EQ(std::nullopt, os.RunThread(SleepForEver, 100));
    EXPECT_EQ(100u, os.Now());
    EXPECT_EQ(4u, os.CountOf("Sleep"));
}

TEST_F(ScriptedPlatformTest, AThreadThatReturnsGivesItsExitCode) {
    EXPECT_EQ(7u, os.RunThread([]() -> uint32_t { return 7; }, 100));
    EXPECT_EQ(0u, os.Now());
}

TEST_F(ScriptedPlatformTest, OnlyTheNthCallFails) {
    os.Fail("OpenPort", 5, 2);
    EXPECT_EQ(3, platform::OpenPort(u"A", platform::PortAccess::plain));
    EXPECT_EQ(-1, platform::OpenPort(u"B", platform::PortAccess::plain));
    EXPECT_EQ(5u, platform::LastError());
    EXPECT_EQ(4, platform::OpenPort(u"C", platform::PortAccess::plain));
    keptPorts = 2;
}

TEST_F(ScriptedPlatformTest, TheNthOfAllCallsThatCanFailFails) {
    os.FailCall(2, 5);
    EXPECT_EQ(3, platform::OpenPort(u"A", platform::PortAccess::plain));
    platform::Sleep(1);
    EXPECT_FALSE(platform::ClosePort(3));
    EXPECT_TRUE(platform::ClosePort(3));
}

TEST_F(ScriptedPlatformTest, APortIsOpenedExclusively) {
    EXPECT_EQ(3, platform::OpenPort(u"A", platform::PortAccess::plain));
    EXPECT_EQ(-1, platform::OpenPort(u"A", platform::PortAccess::overlapped));
    EXPECT_TRUE(platform::ClosePort(3));
    EXPECT_EQ(4, platform::OpenPort(u"A", platform::PortAccess::plain));
    keptPorts = 1;
}

TEST_F(ScriptedPlatformTest, EveryCallOnAClosedPortFails) {
    platform::OpenPort(u"A", platform::PortAccess::plain);
    platform::ClosePort(3);
    uint32_t taken = 9;
    const uint8_t byte = 'x';
    EXPECT_FALSE(platform::WritePort(3, &byte, 1, taken));
    EXPECT_EQ(0u, taken);
    EXPECT_FALSE(platform::PurgePort(3, 15));
    EXPECT_FALSE(platform::ClosePort(3));
    EXPECT_EQ(scripted::kBadHandle, platform::LastError());
}

TEST_F(ScriptedPlatformTest, WhatIsScriptedAndNeverHappensIsReported) {
    os.Fail("OpenPort", 5);
    os.OnCall(
        "Sleep", [] {}, 2);
    os.After(10, [] {});
    EXPECT_THAT(os.UnusedScript(), ElementsAre("answer of OpenPort", "hook on Sleep", "action at 10 ms"));
    os.ForgetScript();
    EXPECT_THAT(os.UnusedScript(), IsEmpty());
}

TEST_F(ScriptedPlatformTest, OneAllocationOfTheSizeFails) {
    if (!allocation::CanFail())
        GTEST_SKIP();
    allocation::FailNext(1000, 2000);
    EXPECT_NO_THROW(::operator delete(::operator new(999)));
    EXPECT_THROW(::operator delete(::operator new(1000)), std::bad_alloc);
    EXPECT_NO_THROW(::operator delete(::operator new(1000)));
}

} // namespace
} // namespace nadrel

#include "platform/linux/HandleTable.h"

#include "platform/Error.h"
#include "tests/linux/Support.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace {

using platform::CloseHandle;
using platform::Descriptor;
using platform::Endpoint;
using platform::HandleTable;

Descriptor OpenNull() {
    return Descriptor(open("/dev/null", O_RDWR | O_CLOEXEC));
}

bool IsOpen(int number) {
    return fcntl(number, F_GETFD) >= 0;
}

// A device whose driver keeps close() waiting until the test lets it go.
class StuckDevice : public Endpoint {
  public:
    StuckDevice(std::shared_future<void> until, bool admitted)
        : Endpoint(OpenNull()), released(std::move(until)), stuck(admitted) {}
    ~StuckDevice() { released.wait_for(kGenerous); }
    bool ClosingMayBlock() const { return stuck; }

  private:
    std::shared_future<void> released;
    bool stuck;
};

struct Device : Endpoint {
    Device() : Endpoint(OpenNull()) {}
    bool ClosingMayBlock() const { return false; }
};

TEST(HandleTable, FindsOnlyWhatIsOpen) {
    HandleTable<Device> table;
    const auto device = std::make_shared<Device>();
    EXPECT_EQ(table.Find(device->Number()), nullptr);
    table.Add(device);
    EXPECT_EQ(table.Find(device->Number()), device);
    EXPECT_EQ(table.FindOrFail(-1), nullptr);
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EBADF));
}

#if INTPTR_MAX > INT32_MAX
TEST(HandleTable, TakesNoHandleForOneWithTheSameLowerHalf) {
    HandleTable<Device> table;
    const auto device = std::make_shared<Device>();
    table.Add(device);
    EXPECT_EQ(table.FindOrFail(device->Number() + (intptr_t{1} << 32)), nullptr);
    EXPECT_EQ(platform::LastError(), static_cast<uint32_t>(EBADF));
}
#endif

TEST(HandleTable, ClosingClosesTheDescriptorBeforeItReturns) {
    HandleTable<Device> table;
    auto device = std::make_shared<Device>();
    const int number = device->Number();
    table.Add(std::move(device));
    EXPECT_TRUE(CloseHandle(table, number));
    EXPECT_FALSE(IsOpen(number));
    EXPECT_FALSE(CloseHandle(table, number));
}

TEST(HandleTable, ClosingWaitsForACallThatLeavesSoon) {
    HandleTable<Device> table;
    auto device = std::make_shared<Device>();
    const int number = device->Number();
    table.Add(device);
    std::promise<void> waiting;
    std::thread call([&, held = std::move(device)]() mutable {
        waiting.set_value();
        EXPECT_EQ(held->Wait(0, platform::kNever), std::nullopt);
        held.reset();
    });
    waiting.get_future().wait();
    EXPECT_TRUE(CloseHandle(table, number));
    EXPECT_FALSE(IsOpen(number));
    call.join();
}

TEST(HandleTable, ClosingDoesNotWaitForACallThatStays) {
    HandleTable<Device> table;
    auto device = std::make_shared<Device>();
    const int number = device->Number();
    table.Add(device);
    const Stopwatch watch;
    EXPECT_TRUE(CloseHandle(table, number));
    EXPECT_GE(watch.Elapsed(), platform::kLongestClose);
    EXPECT_LT(watch.Elapsed(), 5'000);
    EXPECT_EQ(table.Find(number), nullptr);
    EXPECT_TRUE(IsOpen(number)) << "no other file gets the number while the call goes on";
    device.reset();
    EXPECT_FALSE(IsOpen(number));
}

TEST(HandleTable, ADriverThatHoldsCloseUpDoesNotHoldTheCaller) {
    HandleTable<StuckDevice> table;
    std::promise<void> release;
    auto device = std::make_shared<StuckDevice>(release.get_future().share(), true);
    const int number = device->Number();
    table.Add(std::move(device));
    std::thread([] {}).join(); // a sanitizer starts a thread of its own with the first one
    const auto threads = RunningThreads();
    const Stopwatch watch;
    EXPECT_TRUE(CloseHandle(table, number));
    EXPECT_LT(watch.Elapsed(), 5'000);
    EXPECT_TRUE(IsOpen(number));
    release.set_value();
    EXPECT_TRUE(Await([&] { return !IsOpen(number) && RunningThreads() <= threads; }));
}

TEST(HandleTable, ADeviceThatMightHaveHeldCloseUpIsClosedOnReturnWhenItDoesNot) {
    HandleTable<StuckDevice> table;
    std::promise<void> released;
    released.set_value();
    auto device = std::make_shared<StuckDevice>(released.get_future().share(), true);
    const int number = device->Number();
    table.Add(std::move(device));
    EXPECT_TRUE(CloseHandle(table, number));
    EXPECT_FALSE(IsOpen(number));
}

} // namespace

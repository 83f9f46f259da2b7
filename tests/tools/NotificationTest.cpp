#include "tools/Notification.h"
#include "tools/NotificationQueue.h"

#include <gtest/gtest.h>

#include <thread>

using namespace std::chrono_literals;
using tool::CopyNotification;
using tool::Notification;
using tool::NotificationQueue;
using Bytes = std::vector<uint8_t>;

namespace {

constexpr auto kGenerous = 10s;

uint32_t Word(uint8_t kind, uint16_t length) {
    return static_cast<uint32_t>(kind) << 16 | length;
}

intptr_t AddressOf(const void *buffer) {
    return reinterpret_cast<intptr_t>(buffer);
}

// Without the time, which comes first.
std::string LineWithoutTime(const Notification &notification) {
    return tool::Line(notification).substr(12);
}

} // namespace

TEST(Notification, IsACopyOfTheBuffer) {
    Bytes buffer{'V', 'P', '5', '8', 'x'};
    const Notification notification = CopyNotification(Word('D', 4), AddressOf(buffer.data()));
    buffer[0] = 0;
    EXPECT_EQ(notification.kind, 'D');
    EXPECT_EQ(notification.length, 4);
    EXPECT_EQ(notification.data, (Bytes{'V', 'P', '5', '8'}));
    EXPECT_FALSE(notification.status);
}

TEST(Notification, TakesAByteForTheStatusOfAFramedReply) {
    EXPECT_EQ(CopyNotification(Word('S', 7), 0x40).status, 0x40);
    EXPECT_EQ(CopyNotification(Word('S', 7), 0).status, 0x00);
    EXPECT_EQ(CopyNotification(Word('S', 7), 0xFF).status, 0xFF);
    EXPECT_TRUE(CopyNotification(Word('S', 7), 0x40).data.empty());
}

TEST(Notification, TakesAnAddressForTheStatusOfAPlainReply) {
    const Bytes buffer{0x40, 0x41};
    const Notification notification = CopyNotification(Word('S', 2), AddressOf(buffer.data()));
    EXPECT_EQ(notification.data, buffer);
    EXPECT_FALSE(notification.status);
}

TEST(Notification, HasNoDataWhereTheLengthIsOfAnotherReply) {
    for (const uint8_t kind : Bytes{0x03, 0x04, 0x06, 0x15, 0x18})
        EXPECT_TRUE(CopyNotification(Word(kind, 9), 0).data.empty());
}

TEST(Notification, CopiesNoMoreThanTheLargestBuffer) {
    const Bytes buffer(65535, 0x41);
    EXPECT_EQ(CopyNotification(Word('N', 2048), AddressOf(buffer.data())).data.size(), 2048u);
    EXPECT_EQ(CopyNotification(Word('N', 65535), AddressOf(buffer.data())).data.size(), 2048u);
}

TEST(Notification, IsALineWithKindLengthTextAndBytes) {
    const Bytes buffer{'O', 'K', 0x00, 0xE9};
    EXPECT_EQ(LineWithoutTime(CopyNotification(Word('N', 4), AddressOf(buffer.data()))),
              "  N    4     \"OK..\"  4F 4B 00 E9");
    EXPECT_EQ(LineWithoutTime(CopyNotification(Word('S', 4), 0x40)), "  S    4     status 40");
    EXPECT_EQ(LineWithoutTime(CopyNotification(Word(0x06, 1024), 0)), "  ACK  1024");
    EXPECT_EQ(LineWithoutTime(CopyNotification(Word(0x15, 0), 0)), "  NAK  0   ");
    EXPECT_EQ(LineWithoutTime(CopyNotification(Word(0x18, 0), 0)), "  CAN  0   ");
    EXPECT_EQ(LineWithoutTime(CopyNotification(Word(0x03, 0), 0)), "  ETX  0   ");
    EXPECT_EQ(LineWithoutTime(CopyNotification(Word(0x04, 0), 0)), "  EOT  0   ");
}

TEST(Notification, BeginsItsLineWithTheTimeOfDay) {
    Notification notification = CopyNotification(Word(0x06, 0), 0);
    std::tm local{};
    local.tm_year = 126;
    local.tm_mon = 10;
    local.tm_mday = 21;
    local.tm_hour = 9;
    local.tm_min = 42;
    local.tm_sec = 5;
    local.tm_isdst = -1;
    notification.time = std::chrono::system_clock::from_time_t(std::mktime(&local)) + 7ms;
    EXPECT_EQ(tool::Line(notification).substr(0, 12), "09:42:05.007");
}

TEST(NotificationQueue, GivesNotificationsInTheirOrder) {
    NotificationQueue queue;
    queue.Add(CopyNotification(Word('S', 1), 0x01));
    queue.Add(CopyNotification(Word('S', 1), 0x02));
    EXPECT_EQ(queue.WaitFor("S", 0ms)->status, 0x01);
    EXPECT_EQ(queue.WaitFor("S", 0ms)->status, 0x02);
    EXPECT_FALSE(queue.WaitFor("S", 0ms));
}

TEST(NotificationQueue, DropsTheKindsThatNobodyWaitsFor) {
    NotificationQueue queue;
    queue.Add(CopyNotification(Word(0x06, 0), 0));
    queue.Add(CopyNotification(Word('S', 1), 0x01));
    EXPECT_FALSE(queue.WaitFor("D", 0ms));
    EXPECT_FALSE(queue.WaitFor("S", 0ms));
}

TEST(NotificationQueue, WakesWhoWaits) {
    NotificationQueue queue;
    std::jthread printer([&] {
        NotificationQueue::Handle(1, Word(0x06, 0), 0, &queue);
        NotificationQueue::Handle(1, Word('S', 0), 0x40, &queue);
    });
    const auto found = queue.WaitFor("S", kGenerous);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->status, 0x40);
}

TEST(NotificationQueue, ForgetsWhatItIsToldTo) {
    NotificationQueue queue;
    queue.Add(CopyNotification(Word('S', 1), 0x01));
    queue.Clear();
    EXPECT_FALSE(queue.WaitFor("S", 0ms));
}

TEST(NotificationQueue, KeepsTheLatestThousand) {
    NotificationQueue queue;
    for (int i = 0; i < 1200; ++i)
        queue.Add(CopyNotification(Word('S', static_cast<uint16_t>(i)), 0x01));
    EXPECT_EQ(queue.WaitFor("S", 0ms)->length, 200);
}

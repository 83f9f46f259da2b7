#include "link/ReceiveRing.h"
#include "tests/LibraryTest.h"

#include <atomic>
#include <memory>
#include <thread>

namespace nadrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReceiveRingTest : public LibraryTest {
  protected:
    void Put(int32_t count, uint8_t byte = 'x') {
        for (int32_t i = 0; i < count; ++i)
            ASSERT_EQ(1, ring->Put(byte));
    }

    const std::unique_ptr<ReceiveRing> ring = std::make_unique<ReceiveRing>();
};

TEST_F(ReceiveRingTest, IsEmptyAtFirst) {
    EXPECT_EQ(0, ring->Count());
}

TEST_F(ReceiveRingTest, GivesBytesInTheOrderTheyWerePut) {
    for (int value = 0; value < 256; ++value)
        EXPECT_EQ(1, ring->Put(static_cast<uint8_t>(value)));
    EXPECT_EQ(256, ring->Count());
    for (int value = 0; value < 256; ++value) {
        uint8_t byte = 0;
        EXPECT_EQ(1, ring->Get(byte));
        EXPECT_EQ(value, byte);
    }
    EXPECT_EQ(0, ring->Count());
    EXPECT_THAT(os.Calls(), IsEmpty());
}

TEST_F(ReceiveRingTest, AnEmptyRingPauses5MillisecondsAndLeavesTheByteAlone) {
    uint8_t byte = 0xA5;
    EXPECT_EQ(0, ring->Get(byte));
    EXPECT_EQ(0xA5, byte);
    EXPECT_THAT(os.Calls(), ElementsAre("Sleep(5)"));
}

TEST_F(ReceiveRingTest, AByteThatComesDuringThePauseIsNotGivenYet) {
    os.OnCall("Sleep", [this] { ring->Put('x'); });
    uint8_t byte = 0;
    EXPECT_EQ(0, ring->Get(byte));
    EXPECT_EQ(1, ring->Count());
    EXPECT_EQ(1, ring->Get(byte));
    EXPECT_EQ('x', byte);
}

TEST_F(ReceiveRingTest, Holds409599Bytes) {
    Put(409599);
    EXPECT_EQ(409599, ring->Count());
    EXPECT_EQ(0, ring->Put('y'));
    EXPECT_EQ(409599, ring->Count());
}

TEST_F(ReceiveRingTest, WhatAFullRingRefusesIsNotStored) {
    Put(409599);
    ring->Put('y');
    uint8_t byte = 0;
    for (int32_t i = 0; i < 409599; ++i) {
        ASSERT_EQ(1, ring->Get(byte));
        ASSERT_EQ('x', byte);
    }
    EXPECT_EQ(0, ring->Get(byte));
}

TEST_F(ReceiveRingTest, OneByteTakenMakesRoomForOne) {
    Put(409599);
    uint8_t byte = 0;
    EXPECT_EQ(1, ring->Get(byte));
    EXPECT_EQ(1, ring->Put('y'));
    EXPECT_EQ(0, ring->Put('z'));
}

TEST_F(ReceiveRingTest, WrapsAfter409600Bytes) {
    uint8_t byte = 0;
    for (int32_t i = 0; i < 409600; ++i) {
        ASSERT_EQ(1, ring->Put(static_cast<uint8_t>(i & 0xFF)));
        ASSERT_EQ(1, ring->Count());
        ASSERT_EQ(1, ring->Get(byte));
        ASSERT_EQ(i & 0xFF, byte);
    }
    EXPECT_EQ(0, ring->Count());
    Put(409599);
    EXPECT_EQ(409599, ring->Count());
    EXPECT_EQ(0, ring->Put('y'));
}

TEST_F(ReceiveRingTest, CountsAcrossTheEndOfTheStorage) {
    Put(409590);
    EXPECT_EQ(1, ring->Skip(409590));
    Put(20);
    EXPECT_EQ(20, ring->Count());
    EXPECT_EQ(1, ring->Skip(15));
    EXPECT_EQ(5, ring->Count());
    Put(409594);
    EXPECT_EQ(409599, ring->Count());
    EXPECT_EQ(0, ring->Put('y'));
}

TEST_F(ReceiveRingTest, SkipsAsManyAsThereAre) {
    for (const uint8_t byte : {uint8_t{1}, uint8_t{2}, uint8_t{3}})
        ring->Put(byte);
    EXPECT_EQ(0, ring->Skip(4));
    EXPECT_EQ(3, ring->Count());
    EXPECT_EQ(1, ring->Skip(0));
    EXPECT_EQ(3, ring->Count());
    EXPECT_EQ(1, ring->Skip(2));
    uint8_t byte = 0;
    EXPECT_EQ(1, ring->Get(byte));
    EXPECT_EQ(3, byte);
    EXPECT_EQ(0, ring->Skip(1));
    EXPECT_EQ(1, ring->Skip(0));
}

TEST_F(ReceiveRingTest, SkipsAllOfAFullRing) {
    Put(409599);
    EXPECT_EQ(0, ring->Skip(409600));
    EXPECT_EQ(1, ring->Skip(409599));
    EXPECT_EQ(0, ring->Count());
}

TEST_F(ReceiveRingTest, SkipsNoNegativeNumber) {
    Put(3);
    EXPECT_EQ(0, ring->Skip(-1));
    EXPECT_EQ(0, ring->Skip(INT32_MIN));
    EXPECT_EQ(3, ring->Count());
}

TEST_F(ReceiveRingTest, ResetEmpties) {
    Put(1000);
    ring->Reset();
    EXPECT_EQ(0, ring->Count());
    uint8_t byte = 0xA5;
    EXPECT_EQ(0, ring->Get(byte));
    EXPECT_EQ(0xA5, byte);
    Put(409599);
    EXPECT_EQ(409599, ring->Count());
}

TEST_F(ReceiveRingTest, ResetLeavesNothingOfWhatItHeld) {
    Put(409599, 0x77);
    ring->Reset();
    const auto *bytes = reinterpret_cast<const uint8_t *>(ring.get());
    EXPECT_EQ(0, std::count(bytes, bytes + sizeof *ring, uint8_t{0x77}));
}

// A producer and a consumer on real threads, around the ring several times and with both ends hit.
TEST_F(ReceiveRingTest, ATwoThreadedStreamArrivesWholeAndInOrder) {
    constexpr uint32_t kBytes = 3 * ReceiveRing::kSlots + 12345;
    const auto byteAt = [](uint32_t i) { return static_cast<uint8_t>((i * 2654435761u) >> 24); };
    os.StopRecording();
    std::thread producer([this, byteAt] {
        for (uint32_t i = 0; i < kBytes; ++i)
            while (ring->Put(byteAt(i)) == 0)
                std::this_thread::yield();
    });
    uint32_t wrong = 0;
    for (uint32_t i = 0; i < kBytes; ++i) {
        uint8_t byte = 0;
        while (ring->Get(byte) == 0)
            std::this_thread::yield();
        wrong += byte == byteAt(i) ? 0 : 1;
    }
    producer.join();
    EXPECT_EQ(0u, wrong);
    EXPECT_EQ(0, ring->Count());
}

TEST_F(ReceiveRingTest, CountNeverExceedsWhatItHoldsWhileBothThreadsRun) {
    constexpr uint32_t kBytes = 200000;
    os.StopRecording();
    std::atomic<bool> sane = true;
    std::thread producer([this, &sane] {
        for (uint32_t i = 0; i < kBytes; ++i) {
            ring->Put('x');
            if (ring->Count() < 0 || ring->Count() > ReceiveRing::kMostQueued)
                sane = false;
        }
    });
    uint8_t byte = 0;
    for (uint32_t taken = 0; taken < kBytes;) {
        taken += static_cast<uint32_t>(ring->Get(byte));
        if (ring->Count() < 0 || ring->Count() > ReceiveRing::kMostQueued)
            sane = false;
    }
    producer.join();
    EXPECT_TRUE(sane);
}

} // namespace
} // namespace nadrel

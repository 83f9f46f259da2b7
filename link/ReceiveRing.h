#pragma once

#include <atomic>
#include <cstdint>

namespace nadrel {

// The queue from the receive thread, which alone puts, to the parser thread, which alone gets. No lock, no
// allocation: the putter publishes a byte by releasing head, the getter frees a slot by releasing tail.
class ReceiveRing {
  public:
    static constexpr uint32_t kSlots = 409600;
    static constexpr int32_t kMostQueued = kSlots - 1; // one slot stays unused, so that full and empty differ

    // Bytes queued.
    int32_t Count() const;

    // 1, or 0 when the ring is full and nothing is stored.
    int32_t Put(uint8_t byte);

    // 1 with the oldest byte, or 0 after a pause of 5 ms when the ring is empty; `byte` is then left as it
    // is. The pause is what tells a reply's end: bytes further apart are separate replies.
    int32_t Get(uint8_t &byte);

    // Drops the n oldest bytes: 1, or 0 when there are fewer.
    int32_t Skip(int32_t n);

    // Empties the ring and zeroes what it held. While no thread uses it.
    void Reset();

  private:
    std::atomic<uint32_t> head = 0; // next slot to write
    std::atomic<uint32_t> tail = 0; // next slot to read
    uint8_t storage[kSlots] = {};
};

} // namespace nadrel

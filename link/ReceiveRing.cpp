#include "link/ReceiveRing.h"

#include "platform/Clock.h"

#include <algorithm>

namespace nadrel {
namespace {

constexpr uint32_t kEmptyPauseMs = 5;

// (index + n) mod kSlots for n up to kSlots.
constexpr uint32_t Advance(uint32_t index, uint32_t n) {
    const uint32_t next = index + n;
    return next < ReceiveRing::kSlots ? next : next - ReceiveRing::kSlots;
}

} // namespace

int32_t ReceiveRing::Count() const {
    const uint32_t to = head.load(std::memory_order_acquire);
    const uint32_t from = tail.load(std::memory_order_acquire);
    return static_cast<int32_t>(Advance(to, kSlots - from) % kSlots);
}

int32_t ReceiveRing::Put(uint8_t byte) {
    if (Count() == kMostQueued)
        return 0;
    const uint32_t at = head.load(std::memory_order_relaxed);
    storage[at] = byte;
    head.store(Advance(at, 1), std::memory_order_release);
    return 1;
}

int32_t ReceiveRing::Get(uint8_t &byte) {
    const uint32_t at = tail.load(std::memory_order_relaxed);
    if (at == head.load(std::memory_order_acquire)) {
        platform::Sleep(kEmptyPauseMs);
        return 0;
    }
    byte = storage[at];
    tail.store(Advance(at, 1), std::memory_order_release);
    return 1;
}

int32_t ReceiveRing::Skip(int32_t n) {
    if (n < 0 || Count() < n)
        return 0;
    tail.store(Advance(tail.load(std::memory_order_relaxed), static_cast<uint32_t>(n)),
               std::memory_order_release);
    return 1;
}

void ReceiveRing::Reset() {
    std::fill(std::begin(storage), std::end(storage), uint8_t{0});
    head.store(0, std::memory_order_relaxed);
    tail.store(0, std::memory_order_relaxed);
}

} // namespace nadrel

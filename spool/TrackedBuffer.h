#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace nadrel {

// `Capacity` bytes between two margins, addressed from -Margin to Capacity + Margin - 1. All are zero until
// written; the buffer remembers a span that holds all that was written, so that clearing costs what was
// dirtied and no more. Its initial state is all zero bits: a static one that a source file defines takes no
// room in the program's file.
template <int32_t Capacity, int32_t Margin>
class TrackedBuffer {
  public:
    static constexpr int32_t kLowest = -Margin;
    static constexpr int32_t kEnd = Capacity + Margin;

    // Whether `count` bytes at `position` lie within the storage; any two numbers may be asked about.
    static constexpr bool Holds(int64_t position, int64_t count) {
        return position >= kLowest && count >= 0 && position <= kEnd && count <= kEnd - position;
    }

    const uint8_t *At(int32_t position) const { return storage + Margin + position; }

    // The bytes at `position`, to be written: a range that Holds.
    uint8_t *Write(int32_t position, int32_t count) {
        dirtyFrom = std::min(dirtyFrom, position);
        dirtyTo = std::max(dirtyTo, position + count);
        return storage + Margin + position;
    }

    void Write(int32_t position, const uint8_t *bytes, int32_t count) {
        std::memcpy(Write(position, count), bytes, static_cast<size_t>(count));
    }

    void Clear() {
        std::memset(storage + Margin + dirtyFrom, 0, static_cast<size_t>(dirtyTo - dirtyFrom));
        dirtyFrom = 0;
        dirtyTo = 0;
    }

    // Zeroes from `position` to the end of the storage, as far as anything stands there.
    void ClearFrom(int32_t position) {
        const int32_t from = std::max(dirtyFrom, position);
        const int32_t to = dirtyTo;
        if (from >= to)
            return;
        std::memset(storage + Margin + from, 0, static_cast<size_t>(to - from));
        dirtyTo = from;
    }

  private:
    int32_t dirtyFrom = 0;
    int32_t dirtyTo = 0;
    uint8_t storage[static_cast<size_t>(Capacity) + 2 * static_cast<size_t>(Margin)] = {};
};

} // namespace nadrel

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace nadrel {

// A block that commands are written into, one behind the other. What does not fit is left out, and so is
// everything after it.
class RasterOutput {
  public:
    explicit RasterOutput(std::span<uint8_t> block)
        : begin(block.data()), next(begin), end(begin + block.size()) {}

    // Room for `count` bytes, to be written by the caller; null when they do not fit.
    uint8_t *Claim(size_t count) {
        if (count > static_cast<size_t>(end - next)) {
            fits = false;
            end = next;
            return nullptr;
        }
        uint8_t *const claimed = next;
        next += count;
        return claimed;
    }

    void Append(std::span<const uint8_t> bytes) {
        if (uint8_t *to = Claim(bytes.size()))
            std::copy(bytes.begin(), bytes.end(), to);
    }

    bool Fits() const { return fits; }
    int32_t Length() const { return static_cast<int32_t>(next - begin); }

  private:
    uint8_t *begin;
    uint8_t *next;
    uint8_t *end;
    bool fits = true;
};

} // namespace nadrel

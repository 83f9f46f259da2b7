#include "link/Frame.h"

#include <algorithm>
#include <cstdio>

namespace nadrel {
namespace {

constexpr uint8_t kStart = 0xC0;
constexpr uint8_t kEnd = 0xC1;
constexpr uint8_t kEscape = 0x7D;
constexpr uint8_t kEscapeMask = 0x20;
constexpr int32_t kHeaderLength = 8;

constexpr bool NeedsEscape(uint8_t byte) {
    return byte == kStart || byte == kEnd || byte == kEscape;
}

uint8_t *PutEscaped(uint8_t *to, uint8_t byte) {
    if (!NeedsEscape(byte)) {
        *to++ = byte;
        return to;
    }
    *to++ = kEscape;
    *to++ = byte ^ kEscapeMask;
    return to;
}

uint8_t *PutHeader(uint8_t *to, size_t payloadLength) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%04d", static_cast<int>(payloadLength));
    const uint8_t start[] = {0x00, kStart, 'D', '1'};
    to = std::copy(std::begin(start), std::end(start), to);
    return std::copy(digits, digits + 4, to);
}

} // namespace

CheckValue CheckPairs(const uint8_t *bytes, int32_t pairs) {
    CheckValue check;
    for (int32_t i = 0; i < pairs; ++i) {
        check.even ^= bytes[2 * i];
        check.odd ^= bytes[2 * i + 1];
    }
    return check;
}

int32_t FramedLength(Bytes payload, CheckValue check) {
    const auto escapes = std::count_if(payload.begin(), payload.end(), NeedsEscape);
    return kHeaderLength + static_cast<int32_t>(payload.size()) + static_cast<int32_t>(escapes) +
           (NeedsEscape(check.even) ? 2 : 1) + (NeedsEscape(check.odd) ? 2 : 1) + 1;
}

void EncodeFrame(Bytes payload, CheckValue check, uint8_t *frame) {
    uint8_t *to = PutHeader(frame, payload.size());
    for (const uint8_t byte : payload)
        to = PutEscaped(to, byte);
    to = PutEscaped(to, check.even);
    to = PutEscaped(to, check.odd);
    *to = kEnd;
}

} // namespace nadrel

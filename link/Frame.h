#pragma once

#include "spool/Spool.h"

#include <array>
#include <cstddef>
#include <cstdint>

// The framed, checked form of a command:
//
//     00 C0 'D' '1' <length, four ASCII digits> <payload> <c0> <c1> C1
//
// where a byte C0, C1 or 7D of the payload and the check value is sent as 7D and the byte XOR 20.
namespace nadrel {

// The framed form of a status query.
inline constexpr uint8_t kQueryFrame[] = {0x00, 0xC0, 'Q', 0xC1};

// What a frame adds to a payload that needs no escaping.
inline constexpr int32_t kFrameOverhead = 11;

struct CheckValue {
    uint8_t even = 0; // XOR of the payload's bytes at even places
    uint8_t odd = 0;  // XOR of those at odd places
};

// XOR over `pairs` pairs of bytes.
CheckValue CheckPairs(const uint8_t *bytes, int32_t pairs);

// Bytes of the whole frame.
int32_t FramedLength(Bytes payload, CheckValue check);

// Writes the frame, FramedLength bytes of it. Of a payload longer than 9999 bytes the length field carries
// the first four digits.
void EncodeFrame(Bytes payload, CheckValue check, uint8_t *frame);

// The frame of a short fixed request none of whose bytes needs escaping.
template <size_t Count>
std::array<uint8_t, Count + kFrameOverhead> FrameRequest(const std::array<uint8_t, Count> &request) {
    std::array<uint8_t, Count + 2> padded = {};
    std::copy(request.begin(), request.end(), padded.begin());
    std::array<uint8_t, Count + kFrameOverhead> frame;
    EncodeFrame(request, CheckPairs(padded.data(), Count / 2 + 1), frame.data());
    return frame;
}

} // namespace nadrel

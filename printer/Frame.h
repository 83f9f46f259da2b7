#pragma once

#include "printer/Bytes.h"

#include <string>

// The checked transport form of commands: 00 C0 'D' '1', the payload's length as four decimal digits, the
// payload, two check bytes, C1. In payload and check bytes C0, C1 and 7D are sent as 7D and the byte XOR 20.
// The check bytes are the XOR of the payload's bytes at even and at odd positions.
namespace printer {

constexpr uint8_t FrameStart = 0xC0, FrameEnd = 0xC1;

class Frame {
  public:
    static constexpr size_t LongestPayload = 409600; // bytes

    enum class State { Reading, Ended, BrokenOff, TooLong };

    // The frame's first byte, 00, has this offset in the stream. The four bytes up to '1' are not put.
    explicit Frame(uint64_t offset) : offset_(offset) {}

    // Takes the next byte. After anything but Reading the frame takes no more. A start byte breaks a frame
    // off: a new one begins there.
    State Put(uint8_t byte);

    // Why the frame is not good; empty when it is. To be asked when it has ended.
    std::string Problem() const;

    // What a listing says of a good frame.
    std::string Description() const;

    // True when fewer bytes came than were announced: the rest is still to come.
    bool IsCutShort() const;

    uint64_t Offset() const { return offset_; }
    ByteView Payload() const;
    uint64_t OffsetOf(uint64_t payloadIndex) const;
    Bytes Head() const; // the bytes up to the length digits, as received

  private:
    bool HasDigits() const;
    bool HasAnnouncedLength() const;

    uint64_t offset_;
    std::string digits_;
    Bytes content_;                 // payload and check bytes
    std::vector<uint64_t> escapes_; // indices in content_ of the bytes that were escaped
    bool escaped_ = false;
    bool badEscape_ = false;
};

} // namespace printer

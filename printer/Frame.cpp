#include "printer/Frame.h"

#include <algorithm>

namespace printer {
namespace {

constexpr uint8_t EscapeByte = 0x7D, EscapeMask = 0x20;
constexpr size_t DigitCount = 4, CheckBytes = 2, HeadBytes = 8;

struct CheckValue {
    uint8_t even = 0, odd = 0;
};

CheckValue CheckValueOf(ByteView payload) {
    CheckValue check;
    for (size_t i = 0; i < payload.size(); ++i)
        (i % 2 == 0 ? check.even : check.odd) ^= payload[i];
    return check;
}

} // namespace

Frame::State Frame::Put(uint8_t byte) {
    if (byte == FrameStart)
        return State::BrokenOff;
    if (byte == FrameEnd)
        return State::Ended;
    if (digits_.size() < DigitCount) {
        digits_ += static_cast<char>(byte);
        return State::Reading;
    }
    if (byte == EscapeByte && !escaped_) {
        escaped_ = true;
        escapes_.push_back(content_.size());
        return State::Reading;
    }
    const auto content = static_cast<uint8_t>(escaped_ ? byte ^ EscapeMask : byte);
    badEscape_ |= escaped_ && content != FrameStart && content != FrameEnd && content != EscapeByte;
    escaped_ = false;
    content_.push_back(content);
    return content_.size() > LongestPayload + CheckBytes ? State::TooLong : State::Reading;
}

std::string Frame::Problem() const {
    if (!HasDigits())
        return "its length field is not four digits";
    if (content_.size() < CheckBytes)
        return "it has no check value";
    if (escaped_ || badEscape_)
        return "an escape byte is followed by nothing that is escaped";
    if (!HasAnnouncedLength())
        return "it announces " + digits_ + " bytes and has " + std::to_string(Payload().size());
    const CheckValue expected = CheckValueOf(Payload());
    const Bytes sent(content_.end() - CheckBytes, content_.end());
    if (sent != Bytes{expected.even, expected.odd})
        return "its check value is " + HexOf(sent) + ", that of its bytes is " +
               HexOf(Bytes{expected.even, expected.odd});
    return "";
}

std::string Frame::Description() const {
    const std::string length = std::to_string(Payload().size());
    const std::string digits =
        length.size() > DigitCount ? ", of which the length field has four digits" : "";
    return length + " bytes" + digits + ", check value " + HexOf(ByteView(content_).last(CheckBytes));
}

bool Frame::IsCutShort() const {
    return HasDigits() && Payload().size() < std::stoul(digits_);
}

ByteView Frame::Payload() const {
    return ByteView(content_).first(content_.size() - std::min(content_.size(), CheckBytes));
}

uint64_t Frame::OffsetOf(uint64_t payloadIndex) const {
    const auto before = std::lower_bound(escapes_.begin(), escapes_.end(), payloadIndex) - escapes_.begin();
    return offset_ + HeadBytes + payloadIndex + static_cast<uint64_t>(before);
}

Bytes Frame::Head() const {
    Bytes head = {0x00, FrameStart, 'D', '1'};
    for (const char digit : digits_)
        head.push_back(static_cast<uint8_t>(digit));
    return head;
}

bool Frame::HasDigits() const {
    const auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };
    return digits_.size() == DigitCount && std::all_of(digits_.begin(), digits_.end(), isDigit);
}

// Of a payload of more than 9999 bytes the field holds the first four digits of the length.
bool Frame::HasAnnouncedLength() const {
    const std::string length = std::to_string(Payload().size());
    return length.size() > DigitCount ? length.starts_with(digits_) : std::stoul(digits_) == Payload().size();
}

} // namespace printer

#include "printer/CommandDecoder.h"

#include "printer/CommandLengths.h"

#include <algorithm>

namespace printer {
namespace {

constexpr uint8_t Escape = 0x1B, FirstTextByte = 0x20;
constexpr size_t LongestRun = size_t{1} << 16; // bytes of text or padding in one command

enum class Lookahead { Yes, No, Unknown };

// '~' is text unless it begins '~' EOT '~'.
Lookahead BeginsLeaveSmartCard(ByteView bytes, size_t at) {
    static constexpr uint8_t Sequence[] = {'~', 0x04, '~'};
    for (size_t i = 0; i < std::size(Sequence); ++i) {
        if (at + i == bytes.size())
            return Lookahead::Unknown;
        if (bytes[at + i] != Sequence[i])
            return Lookahead::No;
    }
    return Lookahead::Yes;
}

bool IsSwitch(uint8_t byte) {
    return byte <= 1 || byte == '0' || byte == '1';
}

// Unknown commands are an introducer and its letter, or one byte.
size_t UnknownLength(ByteView bytes) {
    const bool introducer = bytes[0] == Escape || bytes[0] == 0x1C || bytes[0] == 0x1D;
    if (!introducer)
        return 1;
    if (bytes.size() < 2)
        return 0;
    return bytes[1] >= FirstTextByte ? 2 : 1;
}

} // namespace

void CommandDecoder::Feed(ByteView bytes, uint64_t offset, std::vector<Command> &commands) {
    if (buffer_.empty())
        offset_ = offset;
    buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
    Decode(false, commands);
}

void CommandDecoder::Flush(std::vector<Command> &commands) {
    Decode(true, commands);
}

void CommandDecoder::Finish(std::vector<Command> &commands) {
    Flush(commands);
    if (!buffer_.empty())
        Emit({&FormOf(Kind::Incomplete), buffer_.size(), 0, "its end is missing"}, commands);
    buffer_.clear();
    start_ = needed_ = scanned_ = 0;
}

bool CommandDecoder::AtBoundary() const {
    return buffer_.empty() || buffer_.front() == 0 || buffer_.front() >= FirstTextByte;
}

void CommandDecoder::Decode(bool final, std::vector<Command> &commands) {
    while (start_ < buffer_.size() && (final || Pending().size() >= needed_)) {
        const Step step = Next(Pending(), final);
        needed_ = step.needed;
        if (step.length == 0)
            break;
        Emit(step, commands);
        start_ += step.length;
        needed_ = scanned_ = 0;
    }
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(start_));
    offset_ += start_;
    start_ = 0;
}

void CommandDecoder::Emit(const Step &step, std::vector<Command> &commands) {
    const ByteView bytes = Pending().first(step.length);
    commands.push_back(
        {step.form, false, offset_ + start_, Bytes(bytes.begin(), bytes.end()), std::string(step.note)});
    const Kind kind = step.form->kind;
    if (kind == Kind::PageMode)
        pageMode_ = true;
    else if (kind == Kind::StandardMode || kind == Kind::FormFeed || kind == Kind::Initialize)
        pageMode_ = false;
}

CommandDecoder::Step CommandDecoder::Next(ByteView bytes, bool final) {
    if (bytes[0] == 0)
        return NextPadding(bytes, final);
    if (bytes[0] < FirstTextByte || BeginsLeaveSmartCard(bytes, 0) == Lookahead::Yes)
        return NextCommand(bytes);
    return NextText(bytes, final);
}

CommandDecoder::Step CommandDecoder::NextText(ByteView bytes, bool final) {
    size_t end = scanned_;
    while (end < std::min(bytes.size(), LongestRun) && bytes[end] >= FirstTextByte) {
        const Lookahead leave = BeginsLeaveSmartCard(bytes, end);
        if (leave == Lookahead::Yes || (leave == Lookahead::Unknown && !final))
            break;
        ++end;
    }
    scanned_ = end;
    const bool undecided = end == bytes.size() || BeginsLeaveSmartCard(bytes, end) == Lookahead::Unknown;
    if (undecided && end < LongestRun && !final)
        return {nullptr, 0, bytes.size() + 1};
    return {&FormOf(Kind::Text), end};
}

CommandDecoder::Step CommandDecoder::NextPadding(ByteView bytes, bool final) {
    size_t end = scanned_;
    while (end < std::min(bytes.size(), LongestRun) && bytes[end] == 0)
        ++end;
    scanned_ = end;
    if (end == bytes.size() && end < LongestRun && !final)
        return {nullptr, 0, bytes.size() + 1};
    return {&FormOf(Kind::Padding), end};
}

CommandDecoder::Step CommandDecoder::NextCommand(ByteView bytes) {
    const FormMatch match = MatchForm(bytes);
    if (match.undecided)
        return {nullptr, 0, bytes.size() + 1};
    if (!match.form) {
        const size_t length = UnknownLength(bytes);
        return {&FormOf(Kind::Unknown), length, length == 0 ? bytes.size() + 1 : 0};
    }
    const CommandForm &form = *match.form;
    if (form.kind == Kind::UpsideDown && pageMode_)
        return {&form, 2};
    const Extent extent = ExtentOf(form, bytes, scanned_);
    if (extent.total == 0)
        return {nullptr, 0, extent.needed};
    if (form.kind == Kind::UpsideDown && !IsSwitch(bytes[2]))
        return {&FormOf(Kind::Incomplete), 2, 0, "ESC { without on or off"};
    if (form.kind == Kind::Magnification && bytes[2] == Escape)
        return {&FormOf(Kind::Incomplete), 2, 0, "GS ! without a size"};
    return {&form, extent.total, 0, extent.note};
}

} // namespace printer

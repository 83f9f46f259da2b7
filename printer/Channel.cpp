#include "printer/Channel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace printer {
namespace {

constexpr size_t Portion = 4096; // bytes read at once
constexpr milliseconds WriteRetry{5};
constexpr milliseconds FrameTimeout{3000}; // without a byte
constexpr size_t FloodPortion = 512;       // bytes

bool IsTransient(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

std::optional<Time> Earlier(std::optional<Time> one, std::optional<Time> other) {
    return one && other ? std::min(*one, *other) : one ? one : other;
}

} // namespace

Channel::Channel(int descriptor, Session session, const Faults &faults,
                 std::optional<milliseconds> swipeAfter)
    : descriptor_(descriptor), session_(std::move(session)), faults_(faults),
      outbox_(faults.replyDelay, faults.splitReplies), throttle_(faults.readRate), swipeAfter_(swipeAfter) {}

short Channel::EventsToWaitFor(Time now) const {
    if (session_.IsWaitingForPaper())
        return POLLRDHUP;
    return ReadableBytes(now) > 0 ? POLLIN : short{0};
}

std::optional<Time> Channel::NextTime() const {
    std::optional<Time> next = swipeTime_;
    if (const auto due = outbox_.NextTime())
        next = Earlier(next, std::max(*due, retryTime_));
    if (faults_.flood)
        next = Earlier(next, retryTime_);
    if (throttle_.ReadyTime() > lastByte_ && !session_.IsWaitingForPaper())
        next = Earlier(next, throttle_.ReadyTime());
    if (session_.IsInFrame())
        next = Earlier(next, lastByte_ + FrameTimeout);
    return next;
}

bool Channel::Handle(short events, Time now) {
    if ((events & POLLIN) != 0 && !Read(now))
        return false;
    if ((events & (POLLIN | POLLOUT)) == 0 && (events & (POLLHUP | POLLERR | POLLRDHUP | POLLNVAL)) != 0)
        return false;
    SwipeWhenDue(now);
    GiveUpFrameWhenDue(now);
    const Bytes replies = session_.TakeReplies();
    if (!faults_.silent)
        outbox_.Push(replies, now);
    return Write(now);
}

std::optional<Time> Channel::LastActive(Time now) const {
    if (received_ == 0)
        return std::nullopt;
    return std::max(lastByte_, std::min(throttle_.ReadyTime(), now));
}

size_t Channel::ReadableBytes(Time now) const {
    const uint64_t left = faults_.hangUpAfter == 0 ? Portion : faults_.hangUpAfter - received_;
    return throttle_.Allowed(now, static_cast<size_t>(std::min<uint64_t>(Portion, left)));
}

bool Channel::Read(Time now) {
    std::array<uint8_t, Portion> buffer;
    const ssize_t got = read(descriptor_, buffer.data(), ReadableBytes(now));
    if (got < 0)
        return IsTransient(errno);
    if (got == 0)
        return false;
    const auto count = static_cast<size_t>(got);
    received_ += count;
    lastByte_ = now;
    throttle_.Taken(count, now);
    session_.Receive(ByteView(buffer).first(count));
    AfterReading(now);
    return faults_.hangUpAfter == 0 || received_ < faults_.hangUpAfter;
}

void Channel::AfterReading(Time now) {
    if (session_.ReadersEntered() == readersEntered_)
        return;
    readersEntered_ = session_.ReadersEntered();
    if (swipeAfter_)
        swipeTime_ = now + *swipeAfter_;
}

void Channel::SwipeWhenDue(Time now) {
    if (!swipeTime_ || now < *swipeTime_)
        return;
    swipeTime_.reset();
    session_.Swipe();
}

void Channel::GiveUpFrameWhenDue(Time now) {
    if (session_.IsInFrame() && now - lastByte_ >= FrameTimeout)
        session_.GiveUpFrame();
}

// False when the host is gone.
bool Channel::Write(Time now) {
    Bytes due = outbox_.Due(now);
    const size_t replies = due.size();
    if (faults_.flood)
        due.insert(due.end(), FloodPortion, uint8_t{'0'});
    if (due.empty() || now < retryTime_)
        return true;
    const ssize_t sent = write(descriptor_, due.data(), due.size());
    if (sent < 0 && !IsTransient(errno))
        return false;
    const auto count = static_cast<size_t>(std::max<ssize_t>(sent, 0));
    outbox_.Drop(std::min(count, replies));
    if (count < due.size())
        retryTime_ = now + WriteRetry;
    return true;
}

} // namespace printer

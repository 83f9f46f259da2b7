#include "printer/Outbox.h"

#include <algorithm>

namespace printer {

void Outbox::Push(ByteView bytes, Time now) {
    for (const uint8_t byte : bytes.first(std::min(bytes.size(), MostBytes - entries_.size()))) {
        const Time earliest = lastTime_ + (split_ ? SplitPause : milliseconds(0));
        lastTime_ = std::max(now + delay_, earliest);
        entries_.push_back({lastTime_, byte});
    }
}

std::optional<Time> Outbox::NextTime() const {
    return entries_.empty() ? std::nullopt : std::optional(entries_.front().time);
}

Bytes Outbox::Due(Time now) const {
    Bytes due;
    for (const Entry &entry : entries_) {
        if (entry.time > now || (split_ && !due.empty()))
            break;
        due.push_back(entry.byte);
    }
    return due;
}

void Outbox::Drop(size_t count) {
    entries_.erase(entries_.begin(),
                   entries_.begin() + static_cast<std::ptrdiff_t>(std::min(count, entries_.size())));
}

} // namespace printer

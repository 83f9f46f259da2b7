#include "platform/linux/Event.h"

#include <sys/eventfd.h>

namespace platform {

Event::Event() : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

bool Event::Reopen() {
    if (!IsValid())
        descriptor = Descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    return IsValid();
}

void Event::Set() const {
    Uninterrupted([&] { return eventfd_write(descriptor.Number(), 1); });
}

void Event::Reset() const {
    eventfd_t count = 0;
    Uninterrupted([&] { return eventfd_read(descriptor.Number(), &count); });
}

} // namespace platform

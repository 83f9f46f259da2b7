#include "tools/PortCapture.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace tool {
namespace {

// Once the writer is done its bytes are there; this much silence says so even where the port was left open.
constexpr int kSilenceMs = 100;

constexpr uint8_t kFine = 0x00;
constexpr std::array<uint8_t, 4> kQueryFrame{0x00, 0xC0, 'Q', 0xC1};

void Require(bool isGood, const char *what) {
    if (!isGood)
        throw std::system_error(errno, std::generic_category(), what);
}

Descriptor OpenTerminal() {
    Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    Require(terminal.Get() != -1 && grantpt(terminal.Get()) == 0 && unlockpt(terminal.Get()) == 0,
            "no pseudo-terminal");
    return terminal;
}

std::string NameOf(const Descriptor &terminal) {
    std::array<char, 128> name{};
    Require(ptsname_r(terminal.Get(), name.data(), name.size()) == 0, "no pseudo-terminal");
    return name.data();
}

bool IsPlainStatusRequest(uint8_t escape, uint8_t letter) {
    return escape == 0x1B && (letter == 'v' || letter == 'V');
}

} // namespace

PortCapture::PortCapture(Sink taker)
    : sink(std::move(taker)), terminal(OpenTerminal()), stop(eventfd(0, EFD_CLOEXEC)) {
    Require(stop.Get() != -1, "no event");
    path = NameOf(terminal);
    reader = std::thread([this] { Take(); });
}

PortCapture::~PortCapture() {
    Finish();
}

void PortCapture::Finish() {
    if (!reader.joinable())
        return;
    eventfd_write(stop.Get(), 1);
    reader.join();
}

void PortCapture::Take() {
    std::array<uint8_t, 4096> buffer;
    while (WaitForBytes()) {
        const ssize_t got = read(terminal.Get(), buffer.data(), buffer.size());
        if (got < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (got <= 0)
            return;
        const std::span<const uint8_t> bytes(buffer.data(), static_cast<size_t>(got));
        Answer(bytes);
        sink(bytes);
    }
}

// Whether there is something to read, or the other side has closed the port; false at the end.
bool PortCapture::WaitForBytes() {
    pollfd waits[] = {{terminal.Get(), POLLIN, 0}, {stop.Get(), POLLIN, 0}};
    const int ready = poll(waits, 2, -1);
    if (ready < 0)
        return errno == EINTR;
    return waits[0].revents != 0 || poll(waits, 1, kSilenceMs) > 0;
}

// A request that shows by chance in other bytes is answered too, which harms nothing: nobody waits for it.
void PortCapture::Answer(std::span<const uint8_t> bytes) {
    constexpr std::array<uint8_t, 3> kFramedStatus{0xC0, 'S', kFine};
    for (const uint8_t byte : bytes) {
        std::rotate(latest.begin(), latest.begin() + 1, latest.end());
        latest.back() = byte;
        ssize_t written = 0;
        if (latest == kQueryFrame)
            written = write(terminal.Get(), kFramedStatus.data(), kFramedStatus.size());
        else if (IsPlainStatusRequest(latest[2], latest[3]))
            written = write(terminal.Get(), &kFine, 1);
        static_cast<void>(written);
    }
}

} // namespace tool

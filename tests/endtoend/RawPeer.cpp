#include "tests/endtoend/RawPeer.h"

#include "tests/linux/Support.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <system_error>

namespace endtoend {
namespace {

constexpr uint8_t kQueryFrame[] = {0x00, 0xC0, 'Q', 0xC1};

void Require(bool isGood, const char *what) {
    if (!isGood)
        throw std::system_error(errno, std::generic_category(), what);
}

bool EndsWithQuery(const Bytes &bytes) {
    return bytes.size() >= std::size(kQueryFrame) &&
           std::equal(std::begin(kQueryFrame), std::end(kQueryFrame), bytes.end() - std::size(kQueryFrame));
}

} // namespace

RawPeer::RawPeer(Medium kind) : medium(kind), stop(eventfd(0, EFD_CLOEXEC)) {
    if (medium == Medium::serial)
        ListenOnTerminal();
    else
        ListenOnSocket();
    thread = std::thread([this] { Serve(); });
}

RawPeer::~RawPeer() {
    eventfd_write(stop.Get(), 1);
    thread.join();
}

void RawPeer::ListenOnTerminal() {
    end = tool::Descriptor(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
    char name[64];
    Require(end.Get() >= 0 && grantpt(end.Get()) == 0 && unlockpt(end.Get()) == 0 &&
                ptsname_r(end.Get(), name, sizeof name) == 0,
            "pseudo-terminal");
    serialPath = name;
    hostEnd = tool::Descriptor(open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
    Require(hostEnd.Get() >= 0, name);
}

void RawPeer::ListenOnSocket() {
    listener = tool::Descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *generic = reinterpret_cast<sockaddr *>(&address);
    Require(bind(listener.Get(), generic, size) == 0 && listen(listener.Get(), 1) == 0 &&
                getsockname(listener.Get(), generic, &size) == 0,
            "listener");
    tcpPort = ntohs(address.sin_port);
}

int32_t RawPeer::Connect(Form form) {
    const int32_t result =
        medium == Medium::serial ? ConnectSerial(serialPath, form) : ConnectTcp(tcpPort, form);
    Forget();
    return result;
}

void RawPeer::Forget() {
    const std::lock_guard lock(mutex);
    received.clear();
}

Bytes RawPeer::Await(size_t count) {
    std::unique_lock lock(mutex);
    came.wait_for(lock, kGenerous, [&] { return received.size() >= count; });
    return received;
}

// A connection stands for the other end before it has been accepted here.
void RawPeer::Send(const Bytes &bytes) {
    std::unique_lock lock(mutex);
    came.wait_for(lock, kGenerous, [&] { return end.Get() >= 0; });
    Write(bytes);
}

void RawPeer::Write(const Bytes &bytes) {
    Require(write(end.Get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "write");
}

void RawPeer::Serve() {
    if (medium == Medium::tcp && !Accept())
        return;
    while (ServeOnce()) {
    }
}

// False when nobody has connected at the end.
bool RawPeer::Accept() {
    pollfd waits[] = {{listener.Get(), POLLIN, 0}, {stop.Get(), POLLIN, 0}};
    poll(waits, 2, -1);
    if (waits[1].revents != 0)
        return false;
    const std::lock_guard lock(mutex);
    end = tool::Descriptor(accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    came.notify_all();
    return true;
}

// False at the end.
bool RawPeer::ServeOnce() {
    pollfd waits[] = {{end.Get(), POLLIN, 0}, {stop.Get(), POLLIN, 0}};
    poll(waits, 2, -1);
    if (waits[1].revents != 0)
        return false;
    std::array<uint8_t, 4096> buffer;
    const ssize_t got = read(end.Get(), buffer.data(), buffer.size());
    if (got > 0)
        Keep({buffer.begin(), buffer.begin() + got});
    return got > 0 || (got < 0 && errno == EAGAIN);
}

void RawPeer::Keep(const Bytes &bytes) {
    const std::lock_guard lock(mutex);
    received.insert(received.end(), bytes.begin(), bytes.end());
    if (EndsWithQuery(received))
        Write({0xC0, 'S', 0x40});
    came.notify_all();
}

} // namespace endtoend

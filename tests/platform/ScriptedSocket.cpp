#include "platform/Socket.h"
#include "tests/platform/ScriptedAllocation.h"
#include "tests/platform/ScriptedError.h"
#include "tests/platform/ScriptedPlatform.h"

#include <algorithm>

namespace scripted {

namespace {

constexpr intptr_t kNoSocket = -1;

}

platform::SocketHandle Platform::AddSocket() {
    const Lock lock(mutex);
    if (failedSupport != 0 && failedSupport == socketSupport)
        return kNoSocket;
    sockets[nextHandle] = {.open = true};
    return nextHandle++;
}

bool Platform::SocketIsOpen(platform::SocketHandle socket) const {
    const Lock lock(mutex);
    const auto found = sockets.find(socket);
    return found != sockets.end() && found->second.open;
}

void Platform::RefuseSocket(platform::SocketHandle socket, bool refused) {
    const Lock lock(mutex);
    sockets[socket].refused = refused;
}

bool Platform::SocketIsRefused(platform::SocketHandle socket) const {
    const Lock lock(mutex);
    const auto found = sockets.find(socket);
    return found != sockets.end() && found->second.refused;
}

void Platform::RemoveSocket(platform::SocketHandle socket) {
    const Lock lock(mutex);
    sockets[socket].open = false;
}

int Platform::OpenSockets() const {
    const Lock lock(mutex);
    return static_cast<int>(
        std::count_if(sockets.begin(), sockets.end(), [](const auto &entry) { return entry.second.open; }));
}

void Platform::StartSupport(bool fails) {
    const Lock lock(mutex);
    ++socketSupport;
    failedSupport += fails ? 1 : 0;
}

void Platform::StopSupport() {
    const Lock lock(mutex);
    --socketSupport;
    failedSupport = std::max(failedSupport - 1, 0);
}

int Platform::SocketSupport() const {
    const Lock lock(mutex);
    return socketSupport;
}

void Platform::PrinterHangsUp(uint64_t afterMs) {
    After(afterMs, [this] {
        const Lock lock(mutex);
        hungUp = true;
    });
    if (afterMs == 0)
        RunActionsUntil(Now());
}

Bytes Platform::WaitForSegment(platform::SocketHandle socket, size_t atMost) {
    for (;;) {
        {
            const Lock lock(mutex);
            if (!input.empty()) {
                Bytes &segment = input.front();
                const auto end =
                    segment.begin() + static_cast<std::ptrdiff_t>(std::min(atMost, segment.size()));
                const Bytes taken(segment.begin(), end);
                segment.erase(segment.begin(), end);
                if (segment.empty())
                    input.pop_front();
                delivered += taken.size();
                return taken;
            }
            if (hungUp || !sockets[socket].open)
                return {};
        }
        if (!AdvanceToNextAction())
            throw ThreadTerminated();
    }
}

namespace {

constexpr uint64_t kOverPauseMs = 100;

std::string Shown(int32_t seconds, int32_t microseconds) {
    return std::to_string(seconds) + " s " + std::to_string(microseconds) + " us";
}

// An operation that fails on a socket that is not open.
Outcome EnterSocket(const std::string &operation, platform::SocketHandle socket,
                    const std::string &arguments) {
    Outcome outcome = TheSystem().Enter(operation, arguments);
    if (!outcome.failed && !TheSystem().SocketIsOpen(socket)) {
        outcome.failed = true;
        SetLastError(kBadHandle);
    }
    return outcome;
}

} // namespace

} // namespace scripted

namespace platform {

using namespace scripted;

bool StartSocketSupport() {
    const scripted::allocation::Exempt own;
    const bool failed = TheSystem().Enter("StartSocketSupport", "").failed;
    TheSystem().StartSupport(failed);
    return !failed;
}

void StopSocketSupport() {
    const scripted::allocation::Exempt own;
    TheSystem().StopSupport();
    TheSystem().Note("StopSocketSupport", "");
}

CAsyncSocket::CAsyncSocket() : handle(kNoSocket) {}

CAsyncSocket::~CAsyncSocket() {
    const scripted::allocation::Exempt own;
    TheSystem().Note("DestroySocket", std::to_string(handle));
    TheSystem().RemoveSocket(handle);
}

int32_t CAsyncSocket::Create(uint32_t port, int32_t type, int32_t events, const char16_t *address) {
    const scripted::allocation::Exempt own;
    const Outcome outcome =
        TheSystem().Enter("Create", std::to_string(port) + ", " + std::to_string(type) + ", " +
                                        std::to_string(events) + ", " + Quoted(address));
    if (outcome.failed)
        return 0;
    handle = TheSystem().AddSocket();
    return handle != kNoSocket;
}

int32_t CAsyncSocket::IOCtl(SocketCommand, uint32_t argument) {
    const scripted::allocation::Exempt own;
    const Outcome outcome =
        EnterSocket("IOCtl", handle, Joined(handle, "nonBlocking, " + std::to_string(argument)));
    return outcome.result.value_or(outcome.failed ? TheSystem().failedIOCtl : 1);
}

// One that failed shows at SelectWritable.
int32_t CAsyncSocket::Connect(const char16_t *host, uint32_t port) {
    const scripted::allocation::Exempt own;
    const Outcome outcome =
        EnterSocket("Connect", handle, Joined(handle, Quoted(host) + ", " + std::to_string(port)));
    TheSystem().RefuseSocket(handle, outcome.failed);
    return outcome.result.value_or(0);
}

int32_t CAsyncSocket::Receive(void *bytes, int32_t count, int32_t) {
    const scripted::allocation::Exempt own;
    return platform::Receive(handle, static_cast<uint8_t *>(bytes), static_cast<uint32_t>(count));
}

void CAsyncSocket::OnConnect(int32_t error) {
    const scripted::allocation::Exempt own;
    TheSystem().Note("OnConnect", std::to_string(error));
}

int32_t SelectWritable(SocketHandle readLimit, SocketHandle socket, int32_t seconds, int32_t microseconds,
                       bool &writable) {
    const scripted::allocation::Exempt own;
    const Outcome outcome = EnterSocket("SelectWritable", socket,
                                        Joined(readLimit, Joined(socket, Shown(seconds, microseconds))));
    const int32_t ready = TheSystem().SocketIsRefused(socket) ? 0 : 1;
    const int32_t result = outcome.result.value_or(outcome.failed ? -1 : ready);
    writable = outcome.writable.value_or(result > 0);
    return result;
}

int32_t Send(SocketHandle socket, const uint8_t *bytes, uint32_t count, uint32_t &taken) {
    const scripted::allocation::Exempt own;
    const Outcome outcome = EnterSocket("Send", socket, Joined(socket, ToHex(bytes, count)));
    taken = outcome.taken.value_or(outcome.failed ? 0 : count);
    TheSystem().AddWritten(Bytes(bytes, bytes + taken));
    return outcome.failed ? -1 : static_cast<int32_t>(taken);
}

int32_t Receive(SocketHandle socket, uint8_t *bytes, uint32_t count) {
    const scripted::allocation::Exempt own;
    const Outcome outcome = TheSystem().Enter("Receive", Joined(socket, std::to_string(count)));
    const Bytes segment = outcome.failed ? Bytes() : TheSystem().WaitForSegment(socket, count);
    if (segment.empty())
        TheSystem().Pause(kOverPauseMs);
    std::copy(segment.begin(), segment.end(), bytes);
    return outcome.failed ? -1 : static_cast<int32_t>(segment.size());
}

int32_t CloseSocket(SocketHandle socket) {
    const scripted::allocation::Exempt own;
    if (TheSystem().Enter("CloseSocket", std::to_string(socket)).failed || !TheSystem().SocketIsOpen(socket))
        return -1;
    TheSystem().RemoveSocket(socket);
    return 0;
}

} // namespace platform

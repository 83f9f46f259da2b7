#include "link/ReceiveThread.h"

#include "link/ReceiveRing.h"
#include "platform/Clock.h"
#include "spool/State.h"

namespace nadrel {
namespace {

constexpr uint32_t kChunk = 255;
constexpr uint32_t kPollPauseMs = 1;

// The first byte since a status query armed the capture.
void CaptureStatus(uint8_t byte) {
    if (StatusCaptureByte == kCaptureArmed)
        StatusCaptureByte = byte;
}

// False, and the byte is dropped, when the ring has fewer than two free slots.
bool Queue(uint8_t byte) {
    Counters.bytesReceived.Add(1);
    const bool stored = ReceiveQueue != nullptr &&
                        static_cast<int32_t>(ReceiveRing::kSlots) - ReceiveQueue->Count() >= 2 &&
                        ReceiveQueue->Put(byte) != 0;
    if (!stored)
        Counters.bytesDropped.Add(1);
    return stored;
}

// Over a serial port only a byte that was stored answers a status query.
void DrainPort() {
    uint32_t got = 0;
    while (platform::ReadPort(SerialPortHandle, &ReadByte, 1, got) && got == 1) {
        if (!Queue(ReadByte))
            continue;
        CaptureStatus(ReadByte);
        ReadByte = 0;
    }
}

void ReceiveFromPort() {
    platform::SetPortEvents(SerialPortHandle, platform::PortEvents::received);
    ReceiveThreadRunning = 1;
    while (SerialLinkOpen != 0 && SerialPortHandle != platform::kInvalidPort) {
        platform::PortEvents events = platform::PortEvents::none;
        platform::WaitPortEvent(SerialPortHandle, events);
        platform::SetPortEvents(SerialPortHandle, platform::PortEvents::received);
        if (events == platform::PortEvents::received)
            DrainPort();
        uint32_t modemStatus = 0;
        platform::GetModemStatus(SerialPortHandle, modemStatus);
    }
}

// Over TCP a status query is answered by the first byte of a chunk, stored or not.
void ReceiveFromSocket() {
    uint8_t chunk[kChunk] = {};
    ReceiveThreadRunning = 1;
    while (WirelessLinkOpen != 0) {
        platform::Sleep(kPollPauseMs);
        const int32_t got = platform::Receive(LinkSocket, chunk, kChunk);
        for (int32_t i = 0; i < got; ++i) {
            CaptureStatus(chunk[0]);
            Queue(chunk[i]);
        }
    }
}

} // namespace

uint32_t ReceiveThreadBody() {
    if (SerialLinkOpen != 0)
        ReceiveFromPort();
    if (WirelessLinkOpen != 0)
        ReceiveFromSocket();
    return 1;
}

} // namespace nadrel

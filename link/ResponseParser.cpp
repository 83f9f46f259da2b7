#include "link/ResponseParser.h"

#include "link/ReceiveRing.h"
#include "link/ReplyClass.h"
#include "platform/Clock.h"
#include "platform/Notification.h"
#include "spool/State.h"

namespace nadrel {
namespace {

constexpr uint32_t kPassPauseMs = 50;
constexpr uint32_t kThreadWaitMs = 50;
constexpr uint32_t kReplyPauseMs = 100;
constexpr uint32_t kCardDataPauseMs = 500;

// A library-owned reply: zero but for what is stored, and storing stops at its end.
template <int32_t Capacity>
class ReplyWriter {
  public:
    explicit ReplyWriter(std::atomic<uint8_t> (&reply)[Capacity]) : buffer(reply) {
        for (std::atomic<uint8_t> &byte : buffer)
            byte.store(0, std::memory_order_relaxed);
    }
    void Store(uint8_t byte) {
        if (length < Capacity)
            buffer[length++].store(byte, std::memory_order_relaxed);
    }
    int32_t Length() const { return length; }

  private:
    std::atomic<uint8_t> (&buffer)[Capacity];
    int32_t length = 0;
};

bool NextByte(uint8_t &byte) {
    return ReceiveQueue != nullptr && ReceiveQueue->Get(byte) != 0;
}

void Post(uint8_t kind, int32_t length, intptr_t lParam) {
    const uint32_t wParam = static_cast<uint32_t>(kind) << 16 | (static_cast<uint32_t>(length) & 0xFFFF);
    Counters.notificationsPosted.Add(1);
    platform::PostNotification(NotifyMessageId, wParam, lParam);
}

template <typename Buffer>
intptr_t AddressOf(Buffer &buffer) {
    return reinterpret_cast<intptr_t>(&buffer[0]);
}

void PostTextReply(uint8_t first, uint8_t kind) {
    ReplyWriter reply(ResponseBuffer);
    reply.Store(first);
    for (uint8_t byte = 0; NextByte(byte);)
        if (byte != 0)
            reply.Store(byte);
    ResponseLength = reply.Length();
    Post(kind, reply.Length(), AddressOf(ResponseBuffer));
}

// Two lead bytes and the rest of the queue, zeros kept; the length stored.
template <typename Buffer>
int32_t StorePair(Buffer &buffer, uint8_t first, uint8_t second) {
    ReplyWriter reply(buffer);
    reply.Store(first);
    reply.Store(second);
    for (uint8_t byte = 0; NextByte(byte);)
        reply.Store(byte);
    return reply.Length();
}

void PostPairReply(uint8_t first, uint8_t second) {
    ResponseLength = StorePair(ResponseBuffer, first, second);
    Post('D', ResponseLength, AddressOf(ResponseBuffer));
}

// ResponseLength keeps the length of the last text or pair reply.
void PostCardData(uint8_t first, uint8_t second) {
    Post('N', StorePair(CardDataBuffer, first, second), AddressOf(CardDataBuffer));
}

void PostFramedStatus() {
    FramedStatusSeen = 1;
    uint8_t value = 0;
    if (NextByte(value))
        Post('S', ResponseLength, value);
}

// What follows a C0. The short replies carry no length of their own: hosts get that of the last text or pair
// reply.
void HandleFramedReply() {
    uint8_t type = 0;
    if (!NextByte(type))
        return;
    switch (type) {
    case 0x06: // ACK
    case 0x15: // NAK
    case 0x18: // CAN
    case 0x03:
    case 0x04:
        Post(type, ResponseLength, 0);
        break;
    case 0x1B:
    case 'D': {
        uint8_t second = 0;
        NextByte(second);
        PostPairReply(type, second);
        break;
    }
    case 'S':
        PostFramedStatus();
        break;
    default: // not a reply; what follows is classified by itself
        break;
    }
}

// A reply settles the request that it answers.
void PostRequestedReply(SharedFlag &request, uint8_t first, uint8_t kind) {
    request = 0;
    PostTextReply(first, kind);
}

OutstandingRequests Outstanding() {
    return {ModelNamePending == 1, StatusPending == 1, FirmwarePending == 1, PrintOutStatusArmed == 1,
            FramedMode != 0};
}

void HandleReply(uint8_t first, uint8_t second) {
    switch (ClassifyReply(first, second, Outstanding())) {
    case ReplyClass::padding:
    case ReplyClass::unsolicited:
        break;
    case ReplyClass::frame:
        HandleFramedReply();
        break;
    case ReplyClass::cardData:
        platform::Sleep(kCardDataPauseMs);
        PostCardData(first, second);
        break;
    case ReplyClass::pair:
        PostPairReply(first, second);
        break;
    case ReplyClass::modelName:
        PostRequestedReply(ModelNamePending, first, 'D');
        break;
    case ReplyClass::status:
        PostRequestedReply(StatusPending, first, 'S');
        break;
    case ReplyClass::firmware:
        PostRequestedReply(FirmwarePending, first, 'D');
        break;
    case ReplyClass::printOut:
        PostRequestedReply(PrintOutStatusArmed, first, 'T');
        break;
    }
    platform::Sleep(kReplyPauseMs);
}

bool SomethingToRead() {
    return (SerialLinkOpen != 0 && SerialPortHandle != platform::kInvalidPort) || WirelessLinkOpen != 0;
}

} // namespace

uint32_t ParserThreadBody() {
    uint8_t second = 0; // of the last pair: a pair whose second byte is late is taken with the one before
    while (SomethingToRead()) {
        platform::Sleep(kPassPauseMs);
        if (ReceiveThreadRunning == 0)
            return 0;
        if (platform::WaitForThread(ReceiveThreadObject, kThreadWaitMs))
            return 0;
        uint8_t first = 0;
        if (!NextByte(first)) {
            platform::Sleep(kReplyPauseMs);
            continue;
        }
        if (BeginsPair(first))
            NextByte(second);
        HandleReply(first, second);
    }
    return 1;
}

} // namespace nadrel

#pragma once

#include <cstdint>

namespace nadrel {

// What a reply is, told from its first byte, the outstanding requests and, for the two lead bytes of readers
// and modules, its second byte.
enum class ReplyClass {
    padding,     // a zero: dropped
    frame,       // C0: the framed-reply handler reads on
    pair,        // two lead bytes and the rest, posted as 'D'
    cardData,    // two lead bytes and the rest, posted as 'N' once a whole track has had time to arrive
    modelName,   // text, posted as 'D'
    status,      // text, posted as 'S'
    firmware,    // text, posted as 'D'
    printOut,    // text, posted as 'T'
    unsolicited, // the byte is dropped; those behind it are classified by themselves
};

struct OutstandingRequests {
    bool modelName = false;
    bool status = false;
    bool firmware = false;
    bool printOut = false;
    bool framed = false; // the link speaks the framed form
};

// Whether a second byte belongs to the classification.
constexpr bool BeginsPair(uint8_t first) {
    return first == 0x1B || first == 0x02;
}

// The order of the tests is part of the interface: the first request that matches claims the reply. `second`
// counts only where BeginsPair(first).
constexpr ReplyClass ClassifyReply(uint8_t first, uint8_t second, const OutstandingRequests &requests) {
    if (first == 0x00)
        return ReplyClass::padding;
    if (BeginsPair(first))
        return second <= 3 && !requests.framed ? ReplyClass::cardData : ReplyClass::pair;
    if (first == 0xC0)
        return ReplyClass::frame;
    if (requests.modelName)
        return ReplyClass::modelName;
    if (requests.status && !requests.framed)
        return ReplyClass::status;
    if (requests.firmware)
        return ReplyClass::firmware;
    if (requests.printOut || (!requests.status && first == '0'))
        return ReplyClass::printOut;
    return ReplyClass::unsolicited;
}

} // namespace nadrel

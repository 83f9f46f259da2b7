#pragma once

#include "printer/Commands.h"

#include <string>

namespace printer {

struct Identity {
    std::string model = "NADREL-VP58"; // printable ASCII, not empty
    std::string firmware = "VP 1.0";   // likewise
};

// What the printer answers on one link.
//
// In plain form status is one byte, model name and firmware version are their letters. To what comes in a
// framed command it answers C0 'S' and the status byte, and C0 'D' and the letters, after C0 06 for the frame
// itself; to a bad frame C0 15. Print-out reports and card data have one form only.
class Replies {
  public:
    explicit Replies(Identity identity) : identity_(std::move(identity)) {}

    // The answer to a command, empty for most.
    Bytes Answer(const Command &command, uint8_t status);

    // The report that a print-out has ended; empty unless the host has switched reports on.
    Bytes Report(bool paperOut) const;

    // True while a card reader waits for a card.
    bool IsReading() const { return tracks_ != 0; }

    // The data of a card that is swiped; empty when no reader waits. The reader keeps waiting.
    Bytes Swipe() const;

  private:
    void FollowModes(const Command &command);
    void EnterReader(uint8_t mode, uint8_t lead);

    Identity identity_;
    bool reports_ = false;
    uint8_t tracks_ = 0;   // that are being read, bit 0 for the first
    uint8_t cardLead_ = 0; // first byte of card data
};

} // namespace printer

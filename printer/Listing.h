#pragma once

#include "printer/Commands.h"
#include "printer/FirmwareTables.h"
#include "printer/Text.h"

#include <ostream>
#include <string>

namespace printer {

// Writes what was decoded, one command a line: its offset in the stream (hexadecimal), its bytes, its name,
// its meaning. The body of a macro follows it, indented, with offsets in the body. The stream stays the
// caller's.
class Listing {
  public:
    explicit Listing(std::ostream &out) : out_(out) {}

    void Write(const Command &command);

    // A remark on the command before.
    void WriteNote(const std::string &sentence);

    void Flush() { out_.flush(); }

  private:
    void WriteLine(const std::string &place, const Command &command);
    void WriteMacroBody(const Command &macro);
    void FollowCodeTable(const Command &command);

    std::ostream &out_;
    TextDecoder decoder_;
    uint8_t codeTable_ = DefaultCodeTable;
};

} // namespace printer

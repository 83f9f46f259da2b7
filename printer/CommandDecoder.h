#pragma once

#include "printer/Commands.h"

namespace printer {

// Cuts a stream of plain bytes into commands. The bytes may come in pieces of any size: the commands are the
// same. Holds at most one unfinished command, which no form lets grow past LongestCommand.
class CommandDecoder {
  public:
    static constexpr size_t LongestCommand = size_t{1} << 20; // bytes

    explicit CommandDecoder(bool pageMode = false) : pageMode_(pageMode) {}

    // Takes the bytes, the first of which has this offset in the stream, and appends the commands they
    // complete.
    void Feed(ByteView bytes, uint64_t offset, std::vector<Command> &commands);

    // Appends what needs no further byte to be whole: text and padding.
    void Flush(std::vector<Command> &commands);

    // The stream ends here: what is unfinished is appended as incomplete.
    void Finish(std::vector<Command> &commands);

    // False in the middle of a command: the next byte belongs to it, whatever it is.
    bool AtBoundary() const;

    // In page mode ESC '{' has no parameter, so the decoder follows the modes.
    bool InPageMode() const { return pageMode_; }
    void SetPageMode(bool on) { pageMode_ = on; }

  private:
    // What the pending bytes begin with. A length of 0: not known before `needed` bytes are there.
    struct Step {
        const CommandForm *form = nullptr;
        size_t length = 0;
        size_t needed = 0;
        const char *note = "";
    };

    void Decode(bool final, std::vector<Command> &commands);
    Step Next(ByteView bytes, bool final);
    Step NextText(ByteView bytes, bool final);
    Step NextPadding(ByteView bytes, bool final);
    Step NextCommand(ByteView bytes);
    void Emit(const Step &step, std::vector<Command> &commands);
    ByteView Pending() const { return ByteView(buffer_).subspan(start_); }

    Bytes buffer_;        // pending bytes from start_ on
    size_t start_ = 0;    // of the unfinished command
    uint64_t offset_ = 0; // in the stream, of buffer_[0]
    size_t needed_ = 0;   // pending bytes before another look makes sense
    size_t scanned_ = 0;  // pending bytes already searched for an end
    bool pageMode_;
};

} // namespace printer

#pragma once

#include "printer/CommandDecoder.h"
#include "printer/Frame.h"

#include <optional>

namespace printer {

// Cuts what a host sends into commands: plain bytes, framed commands and query frames, in any mixture.
//
// A frame begins with 00 C0 where a command could begin. The commands of a good frame follow it in the list,
// those of a bad one are left out. Each frame is a unit: no command reaches over its end.
class StreamDecoder {
  public:
    // Every `spoilEvery`-th framed command is taken for a bad one; 0 for none.
    explicit StreamDecoder(uint32_t spoilEvery = 0) : spoilEvery_(spoilEvery) {}

    // Takes the bytes and appends the commands they complete.
    void Feed(ByteView bytes, std::vector<Command> &commands);

    // The stream ends here: what is unfinished is appended as incomplete or as a bad frame.
    void Finish(std::vector<Command> &commands);

    // True when bytes of a frame have come but not its end; GiveUpFrame then drops it, as a bad one.
    bool IsInFrame() const { return frame_ || skipping_; }
    void GiveUpFrame(std::vector<Command> &commands);

    uint64_t BytesTaken() const { return offset_; }

  private:
    void Put(uint8_t byte, std::vector<Command> &commands);
    void PutPlain(uint8_t byte, std::vector<Command> &commands);
    bool ContinuesLead(uint8_t byte) const;
    void ExtendLead(uint8_t byte, std::vector<Command> &commands);
    void ReleaseLead(std::vector<Command> &commands);
    void PutFramed(uint8_t byte, std::vector<Command> &commands);
    void EndFrame(std::vector<Command> &commands);
    void RejectFrame(const std::string &reason, std::vector<Command> &commands);
    void ExpandFrame(std::vector<Command> &commands);

    uint32_t spoilEvery_;
    uint64_t framesSeen_ = 0;
    uint64_t offset_ = 0; // of the next byte
    CommandDecoder plain_;
    Bytes lead_; // what may become the beginning of a frame: 00, 00 C0, 00 C0 'D', 00 C0 'Q'
    std::optional<Frame> frame_;
    bool skipping_ = false; // the rest of a frame that was given up
};

} // namespace printer

#pragma once

#include "printer/Printer.h"
#include "printer/Replies.h"
#include "printer/StreamDecoder.h"

#include <deque>
#include <utility>

namespace printer {

// One host at the printer: what it sends is decoded and carried out, what it is to be answered is collected.
class Session {
  public:
    // Every `spoilEvery`-th framed command is taken for a bad one; 0 for none. The printer outlives the
    // session.
    Session(Printer &printer, const Identity &identity, uint32_t spoilEvery = 0)
        : printer_(printer), decoder_(spoilEvery), replies_(identity) {}

    void Receive(ByteView bytes);

    // Carries on with what waited for paper.
    void Continue();

    // True while commands wait for paper: no more bytes should be received.
    bool IsWaitingForPaper() const { return !waiting_.empty(); }

    // The host is gone: what it left unfinished is told of.
    void Finish();

    bool IsInFrame() const { return decoder_.IsInFrame(); }
    void GiveUpFrame();

    // The printer has come to rest after printing.
    void ReportPrintOut();

    // False when no reader waits for a card.
    bool Swipe();

    // How often the host has sent a reader into waiting.
    uint64_t ReadersEntered() const { return readersEntered_; }

    // The bytes for the host, in order; each once.
    Bytes TakeReplies() { return std::exchange(outgoing_, {}); }
    void Send(ByteView bytes) { outgoing_.insert(outgoing_.end(), bytes.begin(), bytes.end()); }

  private:
    void Take(const std::vector<Command> &commands);

    Printer &printer_;
    StreamDecoder decoder_;
    Replies replies_;
    std::deque<Command> waiting_;
    Bytes outgoing_;
    uint64_t readersEntered_ = 0;
};

} // namespace printer

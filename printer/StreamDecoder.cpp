#include "printer/StreamDecoder.h"

namespace printer {
namespace {

constexpr uint8_t FrameLead = 0x00;

} // namespace

void StreamDecoder::Feed(ByteView bytes, std::vector<Command> &commands) {
    for (const uint8_t byte : bytes) {
        Put(byte, commands);
        ++offset_;
    }
}

void StreamDecoder::Finish(std::vector<Command> &commands) {
    GiveUpFrame(commands);
    ReleaseLead(commands);
    plain_.Finish(commands);
}

void StreamDecoder::GiveUpFrame(std::vector<Command> &commands) {
    if (frame_)
        RejectFrame("its end is missing", commands);
    skipping_ = false;
}

void StreamDecoder::Put(uint8_t byte, std::vector<Command> &commands) {
    if (frame_)
        PutFramed(byte, commands);
    else if (skipping_ && byte == FrameStart)
        lead_ = {FrameLead, FrameStart}, skipping_ = false;
    else if (skipping_)
        skipping_ = byte != FrameEnd;
    else
        PutPlain(byte, commands);
}

void StreamDecoder::PutPlain(uint8_t byte, std::vector<Command> &commands) {
    if (ContinuesLead(byte)) {
        ExtendLead(byte, commands);
        return;
    }
    ReleaseLead(commands);
    if (byte == FrameLead && plain_.AtBoundary())
        lead_ = {byte};
    else
        plain_.Feed({&byte, 1}, offset_, commands);
}

bool StreamDecoder::ContinuesLead(uint8_t byte) const {
    switch (lead_.size()) {
    case 1:
        return byte == FrameStart;
    case 2:
        return byte == 'D' || byte == 'Q';
    case 3:
        return byte == (lead_[2] == 'D' ? uint8_t{'1'} : FrameEnd);
    default:
        return false;
    }
}

void StreamDecoder::ExtendLead(uint8_t byte, std::vector<Command> &commands) {
    lead_.push_back(byte);
    if (lead_.size() < 4)
        return;
    plain_.Flush(commands);
    const uint64_t begin = offset_ + 1 - lead_.size();
    if (byte == FrameEnd)
        commands.push_back({&FormOf(Kind::Query), true, begin, lead_, ""});
    else
        frame_.emplace(begin);
    lead_.clear();
}

void StreamDecoder::ReleaseLead(std::vector<Command> &commands) {
    plain_.Feed(lead_, offset_ - lead_.size(), commands);
    lead_.clear();
}

void StreamDecoder::PutFramed(uint8_t byte, std::vector<Command> &commands) {
    switch (frame_->Put(byte)) {
    case Frame::State::Reading:
        break;
    case Frame::State::Ended:
        EndFrame(commands);
        break;
    case Frame::State::BrokenOff:
        RejectFrame("another frame begins inside it", commands);
        lead_ = {FrameLead, FrameStart};
        break;
    case Frame::State::TooLong:
        RejectFrame("it is longer than " + std::to_string(Frame::LongestPayload) + " bytes", commands);
        skipping_ = true;
        break;
    }
}

void StreamDecoder::EndFrame(std::vector<Command> &commands) {
    const std::string problem = frame_->Problem();
    const bool spoiled = spoilEvery_ != 0 && ++framesSeen_ % spoilEvery_ == 0;
    if (!problem.empty()) {
        skipping_ = frame_->IsCutShort();
        RejectFrame(problem, commands);
    } else if (spoiled) {
        RejectFrame("it is refused on purpose", commands);
    } else {
        ExpandFrame(commands);
    }
}

void StreamDecoder::RejectFrame(const std::string &reason, std::vector<Command> &commands) {
    commands.push_back({&FormOf(Kind::BadFrame), true, frame_->Offset(), frame_->Head(), reason});
    frame_.reset();
}

void StreamDecoder::ExpandFrame(std::vector<Command> &commands) {
    commands.push_back({&FormOf(Kind::Frame), true, frame_->Offset(), frame_->Head(), frame_->Description()});
    const size_t first = commands.size();
    CommandDecoder inner(plain_.InPageMode());
    inner.Feed(frame_->Payload(), 0, commands);
    inner.Finish(commands);
    plain_.SetPageMode(inner.InPageMode());
    for (size_t i = first; i < commands.size(); ++i) {
        commands[i].framed = true;
        commands[i].offset = frame_->OffsetOf(commands[i].offset);
    }
    frame_.reset();
}

} // namespace printer

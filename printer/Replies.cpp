#include "printer/Replies.h"

#include "printer/FirmwareTables.h"
#include "printer/Frame.h"

#include <bit>

namespace printer {
namespace {

constexpr uint8_t Acknowledge = 0x06, Refuse = 0x15, Escape = 0x1B, StartOfText = 0x02;

Bytes TextReply(const std::string &text, bool framed) {
    Bytes reply(text.begin(), text.end());
    if (framed)
        reply.insert(reply.begin(), {FrameStart, uint8_t{'D'}});
    return reply;
}

Bytes StatusReply(uint8_t status, bool framed) {
    return framed ? Bytes{FrameStart, 'S', status} : Bytes{status};
}

void AppendTrack(Bytes &data, size_t track) {
    const std::string_view letters = CardTracks[track];
    data.push_back(static_cast<uint8_t>(track + 1));
    data.push_back(static_cast<uint8_t>(letters.size() % 256));
    data.push_back(static_cast<uint8_t>(letters.size() / 256));
    data.insert(data.end(), letters.begin(), letters.end());
}

} // namespace

Bytes Replies::Answer(const Command &command, uint8_t status) {
    switch (command.GetKind()) {
    case Kind::Frame:
        return {FrameStart, Acknowledge};
    case Kind::BadFrame:
        return {FrameStart, Refuse};
    case Kind::Query:
    case Kind::Status:
        return StatusReply(status, command.framed);
    case Kind::ModelName:
        return TextReply(identity_.model, command.framed);
    case Kind::FirmwareVersion:
        return TextReply(identity_.firmware, command.framed);
    default:
        FollowModes(command);
        return {};
    }
}

void Replies::FollowModes(const Command &command) {
    switch (command.GetKind()) {
    case Kind::PrintOutReports:
        reports_ = command.Byte(0) == 1;
        break;
    case Kind::EnterReader:
        EnterReader(command.Byte(0), Escape);
        break;
    case Kind::CardRead:
        EnterReader(command.bytes[1], StartOfText);
        break;
    case Kind::CancelReading:
        tracks_ = 0;
        break;
    default:
        break;
    }
}

Bytes Replies::Report(bool paperOut) const {
    return reports_ ? Bytes{ReportLead, paperOut ? ReportPaperOut : ReportPrinted} : Bytes{};
}

void Replies::EnterReader(uint8_t mode, uint8_t lead) {
    tracks_ = TracksOfReaderMode(mode);
    cardLead_ = lead;
}

Bytes Replies::Swipe() const {
    if (!IsReading())
        return {};
    Bytes data = {cardLead_, static_cast<uint8_t>(std::popcount(tracks_))};
    for (size_t track = 0; track < CardTracks.size(); ++track)
        if ((tracks_ >> track & 1) != 0)
            AppendTrack(data, track);
    data.push_back(0x00);
    return data;
}

} // namespace printer

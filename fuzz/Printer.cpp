#include "fuzz/Input.h"

#include "printer/Session.h"

#include <sstream>

// What a host may send to the virtual printer, in pieces. The first two bytes say how the printer is set up.

namespace {

using namespace fuzz;

std::string Told(const std::vector<printer::Command> &commands) {
    std::ostringstream out;
    printer::Listing listing(out);
    for (const printer::Command &command : commands)
        listing.Write(command);
    return out.str();
}

std::vector<printer::Command> Decode(const Bytes &stream, size_t piece) {
    std::vector<printer::Command> commands;
    printer::StreamDecoder decoder;
    for (size_t at = 0; at < stream.size(); at += piece)
        decoder.Feed(std::span(stream).subspan(at, std::min(piece, stream.size() - at)), commands);
    decoder.Finish(commands);
    return commands;
}

// However the stream is cut into pieces, the commands are the same.
void DecodeInPieces(const Bytes &stream, size_t piece) {
    Require(Told(Decode(stream, stream.size() + 1)) == Told(Decode(stream, piece)),
            "a stream in pieces gives other commands");
}

void Print(const Bytes &stream, size_t piece, uint8_t setUp) {
    std::ostringstream listed, diagnostics;
    printer::Listing listing(listed);
    printer::Printer device(setUp % 2 == 0 ? 384 : 48, "", &listing, diagnostics);
    if (setUp % 4 >= 2)
        device.EndPaperAfter(setUp);
    printer::Session session(device, {}, setUp / 64);
    for (size_t at = 0; at < stream.size(); at += piece)
        session.Receive(std::span(stream).subspan(at, std::min(piece, stream.size() - at)));
    session.Swipe();
    device.LoadPaper();
    session.Continue();
    session.Finish();
    session.ReportPrintOut();
    device.Finish();
    Require(!session.IsWaitingForPaper(), "commands wait although there is paper");
    Require(device.GetPaper().Rows() <= printer::Paper::LongestPaper, "the paper is too long");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    Input input({bytes, count});
    const uint8_t setUp = input.Byte();
    const size_t piece = 1U + input.Byte();
    const Bytes stream = input.Rest();
    DecodeInPieces(stream, piece);
    Print(stream, piece, setUp);
    return 0;
}

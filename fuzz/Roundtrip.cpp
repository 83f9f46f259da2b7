#include "fuzz/Roundtrip.h"

#include "printer/Raster.h"

// Calls with arguments that the printer can make sense of, sent over a plain or framed link, read by the
// virtual printer's decoder: it must understand what was called.

namespace fuzz {

Roundtrip::Roundtrip(Input &bytes, bool framedLink)
    : framed(framedLink), library(Library::Recording::on), input(bytes) {
    library.AnswerProbes();
    Require(InitPrinter(u"COM1", 9600, framed) == 1, "the link does not open");
    library.System().ForgetScript();
    library.System().ForgetCalls();
}

Bytes Roundtrip::Text(size_t atMost) {
    Bytes text = input.Take(input.Below(static_cast<uint32_t>(atMost + 1)));
    for (uint8_t &byte : text)
        byte = static_cast<uint8_t>(0x20 + byte % 0x5E);
    return text;
}

void Roundtrip::MoveExpected() {
    expected.insert(expected.end(), pending.begin(), pending.end());
    pending.clear();
}

void Roundtrip::Print() {
    if (nadrel::SpoolLength == 0)
        return;
    Require(PrintSpool(1) == 1, "the spool is not printed");
    if (framed)
        expected.push_back({Kind::Frame, {}});
    MoveExpected();
}

void Roundtrip::Sent(bool everFramed) {
    if (framed && everFramed)
        expected.push_back({Kind::Frame, {}});
    MoveExpected();
}

namespace {

// Texts side by side are one, however they were called or read.
template <typename Entry>
void Append(std::vector<Expected> &commands, const Entry &entry) {
    if (entry.kind == Kind::Text && !commands.empty() && commands.back().kind == Kind::Text)
        commands.back().operands.insert(commands.back().operands.end(), entry.operands.begin(),
                                        entry.operands.end());
    else
        commands.push_back(entry);
}

std::vector<Expected> Joined(const std::vector<Expected> &commands) {
    std::vector<Expected> joined;
    for (const Expected &command : commands)
        Append(joined, command);
    return joined;
}

Bytes OperandsOf(const printer::Command &command) {
    if (command.GetKind() == Kind::Frame || command.GetKind() == Kind::Query ||
        command.GetKind() == Kind::Status)
        return {};
    if (command.GetKind() != Kind::CompressedRaster) {
        const auto operands = command.Parameters();
        return {operands.begin(), operands.end()};
    }
    const Bytes dots = printer::ExpandBand(command.Data(), command.Byte(0));
    return Operands().B(command.Byte(0)).B(command.Byte(1)).Data(dots).bytes;
}

std::vector<Expected> Understood(const std::vector<printer::Command> &commands) {
    std::vector<Expected> understood;
    for (const printer::Command &command : commands)
        Append(understood, Expected{command.GetKind(), OperandsOf(command)});
    return understood;
}

void Show(const char *what, const Expected &command) {
    std::fprintf(stderr, "%s: kind %d, %s\n", what, static_cast<int>(command.kind),
                 printer::HexOf(command.operands).c_str());
}

} // namespace

void Roundtrip::Compare(const std::vector<printer::Command> &commands) const {
    const std::vector<Expected> called = Joined(expected), understood = Understood(commands);
    for (size_t i = 0; i < std::min(called.size(), understood.size()); ++i) {
        if (called[i].kind == understood[i].kind && called[i].operands == understood[i].operands)
            continue;
        Show("called", called[i]);
        Show("understood", understood[i]);
        Require(false, "the printer understands another command than was called");
    }
    Require(called.size() == understood.size(), "the printer understands another number of commands");
}

void Roundtrip::Finish() {
    Print();
    printer::StreamDecoder decoder;
    std::vector<printer::Command> commands;
    for (const scripted::Bytes &bytes : library.System().Written())
        decoder.Feed(bytes, commands);
    decoder.Finish(commands);
    Compare(commands);
}

} // namespace fuzz

static constexpr int32_t kMuchInSpool = 150000; // its framed form surely fits

static std::vector<fuzz::RoundtripCall> AllCalls() {
    std::vector<fuzz::RoundtripCall> all;
    for (const auto calls :
         {fuzz::TextCalls(), fuzz::SymbolCalls(), fuzz::PictureCalls(), fuzz::DeviceCalls()})
        all.insert(all.end(), calls.begin(), calls.end());
    return all;
}

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    static const std::vector<fuzz::RoundtripCall> calls = AllCalls();
    fuzz::Input input({bytes, count});
    const bool framed = input.Flag();
    fuzz::Roundtrip trip(input, framed);
    while (!input.IsUsedUp()) {
        calls[input.Below(static_cast<uint32_t>(calls.size()))](trip);
        if (nadrel::SpoolLength > kMuchInSpool)
            trip.Print();
    }
    trip.Finish();
    return 0;
}

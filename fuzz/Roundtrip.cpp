#include "fuzz/Roundtrip.h"

#include "printer/Frame.h"
#include "printer/Raster.h"

// Calls of all that prints and asks, sent over a plain or framed link, read by the virtual printer's decoder: it
// must understand what was called. Left out are calls whose bytes no printer can tell from others.

namespace fuzz {

static constexpr int32_t kMostPrintedAgain = 5000; // bytes

Roundtrip::Roundtrip(Input &bytes, uint8_t link) : library(Library::Recording::on), input(bytes) {
    Connect(link);
    library.System().ForgetCalls();
}

void Roundtrip::Connect(uint8_t link) {
    framed = link % 2 != 0;
    library.AnswerProbes();
    int32_t result = 0;
    switch (link / 2 % 5) {
    case 0:
        result = InitPrinter(u"COM1", 9600, framed);
        break;
    case 1:
        result = ConnectSerialPrinter(u"COM1", 115200, 200, framed);
        break;
    case 2:
        result = ConnectSerialPrinterEx("COM1:", 115200, 8, 0, 0, 200, framed);
        break;
    case 3:
        result = InitWlanPrinter(u"printer", 9100, 1000, framed);
        break;
    default:
        result = ConnectWirelessPrinter(u"printer", 9100, 1000, framed);
        break;
    }
    Require(result == 1, "the link does not open");
    Require((GetPortHandle() == NADREL_INVALID_HANDLE) == (link / 2 % 5 >= 3), "a link has the wrong port");
    library.System().ForgetScript();
}

// What is in the spool is lost, and the library is back in standard mode.
void Roundtrip::Reconnect(uint8_t link) {
    const int32_t closed = link < 128 ? ClosePrinter() : ClosePrinterConnection();
    Require(closed == 1, "the link does not close");
    Clear();
    pageMode = false;
    mark = {0, 0, sentPageMode};
    Connect(link);
    if (framed)
        expected.push_back({Kind::Query, {}});
}

int32_t Roundtrip::Near(int lowest, int highest) {
    switch (const int choice = Byte() % 16) {
    case 0:
    case 1:
        return lowest - choice;
    case 2:
    case 3:
        return highest + choice - 2;
    case 4:
    case 5:
        return Any();
    default:
        return Number(lowest, highest);
    }
}

namespace {

// 0 to count - 1 are the bytes from lowest on; the others follow from A0 on.
uint8_t Letter(uint8_t byte, int lowest, int count) {
    const int place = byte % (count + 0x60);
    return static_cast<uint8_t>(place < count ? lowest + place : 0xA0 + place - count);
}

} // namespace

// Not '~', which can begin a command, and at its beginning not C0, which behind a 00 begins a frame.
Bytes Roundtrip::Text(size_t atMost) {
    Bytes text = input.Take(input.Below(static_cast<uint32_t>(atMost + 1)));
    for (uint8_t &byte : text)
        byte = Letter(byte, 0x20, 0x5E);
    if (!text.empty() && text[0] == printer::FrameStart)
        text[0] = 'A';
    return text;
}

Bytes Roundtrip::LongText(size_t atMost) {
    const Bytes part = Text(20);
    const size_t most = Byte() < 250 ? std::min(atMost, kLongText) : atMost;
    Bytes text(part.empty() ? 0 : input.Below(static_cast<uint32_t>(most + 1)));
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = part[i % part.size()];
    return text;
}

Bytes Roundtrip::Data(size_t atMost) {
    Bytes data = input.Take(input.Below(static_cast<uint32_t>(std::min(atMost, kShortText) + 1)));
    for (uint8_t &byte : data)
        byte = Letter(byte, 0x01, 0x7F);
    if (atMost > data.size() && !data.empty() && Flag())
        data.resize(input.Below(static_cast<uint32_t>(atMost + 1)), data[0]);
    return data;
}

void Roundtrip::MoveExpected() {
    expected.insert(expected.end(), pending.begin(), pending.end());
    Clear();
}

void Roundtrip::Print() {
    if (nadrel::SpoolLength != 0)
        PrintAnyhow(true);
}

// What is printed again begins in the mode that it began in before, and is little: it would be much to read.
void Roundtrip::PrintAnyhow(bool clear) {
    if (!clear && (sentPageMode != printerPageMode || nadrel::SpoolLength > kMostPrintedAgain))
        return;
    Require(PrintSpool(clear) == 1, "the spool is not printed");
    if (framed)
        expected.push_back({Kind::Frame, {}});
    sentPageMode = printerPageMode;
    if (clear)
        MoveExpected();
    else
        expected.insert(expected.end(), pending.begin(), pending.end());
}

void Roundtrip::Clear() {
    pending.clear();
    printerPageMode = sentPageMode;
    mark.index.reset();
    if (mark.place == 0)
        mark = {0, 0, sentPageMode};
}

void Roundtrip::Sent(bool everFramed) {
    if (framed && everFramed)
        expected.push_back({Kind::Frame, {}});
    MoveExpected();
}

void Roundtrip::BeginMacro() {
    SetMarco_Start();
    mark = {nadrel::SpoolLength, pending.size(), printerPageMode};
}

void Roundtrip::EndMacro() {
    const int32_t length = nadrel::SpoolLength - mark.place;
    if (length > 65535 || (length > 0 && !mark.index))
        return; // the mark may lie within a command
    SetMacro_End();
    if (length < 0)
        return;
    const size_t index = length == 0 ? pending.size() : *mark.index;
    const auto begin = pending.begin() + static_cast<ptrdiff_t>(index);
    const Expected macro{Kind::Macro, {}, Expected::Body{mark.pageMode, {begin, pending.end()}}};
    pending.erase(begin, pending.end());
    if (length > 0) {
        printerPageMode = mark.pageMode;
        Expect(Kind::Padding, Operands().Data(fuzz::Bytes(static_cast<size_t>(length), 0)));
    }
    pending.push_back(macro);
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

std::vector<printer::Command> CommandsOf(const Bytes &bytes, bool pageMode) {
    printer::CommandDecoder decoder(pageMode);
    std::vector<printer::Command> commands;
    decoder.Feed(bytes, 0, commands);
    decoder.Finish(commands);
    return commands;
}

void Show(const char *what, const Expected &command) {
    std::fprintf(stderr, "%s: kind %d, %s\n", what, static_cast<int>(command.kind),
                 printer::HexOf(command.operands).c_str());
}

void Compare(const std::vector<Expected> &commands, const std::vector<printer::Command> &decoded);

// The bytes of a macro are a count in two bytes, which the decoder has read by, and commands.
bool IsUnderstood(const Expected &called, const Expected &understood) {
    if (called.kind != understood.kind)
        return false;
    if (!called.body)
        return called.operands == understood.operands;
    const Bytes body(understood.operands.begin() + 2, understood.operands.end());
    Compare(called.body->commands, CommandsOf(body, called.body->pageMode));
    return true;
}

void Compare(const std::vector<Expected> &commands, const std::vector<printer::Command> &decoded) {
    const std::vector<Expected> called = Joined(commands), understood = Understood(decoded);
    for (size_t i = 0; i < std::min(called.size(), understood.size()); ++i) {
        if (IsUnderstood(called[i], understood[i]))
            continue;
        Show("called", called[i]);
        Show("understood", understood[i]);
        Require(false, "the printer understands another command than was called");
    }
    Require(called.size() == understood.size(), "the printer understands another number of commands");
}

} // namespace

void Roundtrip::Finish() {
    Print();
    printer::StreamDecoder decoder;
    std::vector<printer::Command> commands;
    for (const scripted::Bytes &bytes : library.System().Written())
        decoder.Feed(bytes, commands);
    decoder.Finish(commands);
    Compare(expected, commands);
}

} // namespace fuzz

static constexpr int32_t kMuchInSpool = 100000; // its framed form surely fits

static std::vector<fuzz::RoundtripCall> AllCalls() {
    std::vector<fuzz::RoundtripCall> all;
    for (const auto calls : {fuzz::TextCalls(), fuzz::SymbolCalls(), fuzz::PictureCalls(),
                             fuzz::DeviceCalls(), fuzz::LinkCalls()})
        all.insert(all.end(), calls.begin(), calls.end());
    return all;
}

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    static const std::vector<fuzz::RoundtripCall> calls = AllCalls();
    fuzz::Input input({bytes, count});
    fuzz::Roundtrip trip(input, input.Byte());
    while (!input.IsUsedUp()) {
        calls[input.Below(static_cast<uint32_t>(calls.size()))](trip);
        if (nadrel::SpoolLength > kMuchInSpool)
            trip.Print();
    }
    trip.Finish();
    return 0;
}

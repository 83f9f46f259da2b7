#include "printer/Listing.h"

#include "printer/CommandDecoder.h"
#include "printer/Meaning.h"

#include <algorithm>
#include <cstdio>

namespace printer {
namespace {

constexpr size_t MostBytesShown = 16, BytesWhenCut = 10;
constexpr size_t BytesColumn = 49, NameColumn = 11; // characters

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

std::string ShownBytes(ByteView bytes) {
    if (bytes.size() <= MostBytesShown)
        return HexOf(bytes);
    return HexOf(bytes.first(BytesWhenCut)) + " ... (" + std::to_string(bytes.size()) + " bytes)";
}

std::string Offset(const char *format, uint64_t offset) {
    char text[24];
    std::snprintf(text, sizeof text, format, static_cast<unsigned long long>(offset));
    return text;
}

} // namespace

void Listing::Write(const Command &command) {
    WriteLine(Offset("%08llX  ", command.offset), command);
    if (command.GetKind() == Kind::Macro)
        WriteMacroBody(command);
    FollowCodeTable(command);
}

void Listing::WriteNote(const std::string &sentence) {
    out_ << "          ! " << sentence << '\n';
}

void Listing::WriteLine(const std::string &place, const Command &command) {
    const std::string name = Padded(std::string(command.form->name), NameColumn);
    std::string line = place + Padded(ShownBytes(command.bytes), BytesColumn) + name +
                       MeaningOf(command, codeTable_, decoder_);
    line.erase(line.find_last_not_of(' ') + 1);
    out_ << line << '\n';
}

void Listing::WriteMacroBody(const Command &macro) {
    std::vector<Command> body;
    CommandDecoder bodyDecoder;
    bodyDecoder.Feed(macro.Data(), 0, body);
    bodyDecoder.Finish(body);
    const uint8_t codeTable = codeTable_;
    for (const Command &command : body) {
        WriteLine(Offset("   +%04llX  ", command.offset), command);
        FollowCodeTable(command);
    }
    codeTable_ = codeTable;
}

void Listing::FollowCodeTable(const Command &command) {
    if (command.GetKind() == Kind::CodeTable)
        codeTable_ = command.Byte(0);
    else if (command.GetKind() == Kind::Initialize)
        codeTable_ = DefaultCodeTable;
}

} // namespace printer

#include "printer/Printer.h"

namespace printer {

Printer::Printer(int paperWidth, const std::string &font, Listing *listing, std::ostream &diagnostics)
    : paper_(paperWidth), fonts_(font), renderer_(paper_, fonts_), listing_(listing),
      diagnostics_(diagnostics) {}

void Printer::Execute(const Command &command) {
    if (listing_)
        listing_->Write(command);
    if (command.GetKind() == Kind::Macro && listing_)
        listing_->WriteNote(DescribeMacro(command));
    for (const std::string &sentence : renderer_.Execute(command))
        Tell(command, sentence);
    if (command.GetKind() == Kind::BadFrame)
        diagnostics_ << "nadrel-printer: a bad frame at " << command.offset << " is skipped: " << command.note
                     << ".\n";
}

void Printer::Tell(const Command &command, const std::string &sentence) {
    if (listing_)
        listing_->WriteNote(sentence);
    diagnostics_ << "nadrel-printer: " << command.form->name << " at " << command.offset << ": " << sentence
                 << '\n';
}

std::string Printer::DescribeMacro(const Command &macro) {
    const size_t before = macro_.size();
    const ByteView body = macro.Data();
    macro_.assign(body.begin(), body.end());
    const std::string replaced = before == 0 ? "" : " in the place of " + std::to_string(before);
    return macro_.empty() ? "The macro is cleared."
                          : "The macro holds " + std::to_string(macro_.size()) + " bytes" + replaced + ".";
}

void Printer::Finish() {
    if (!renderer_.HasUnprintedLine() && !renderer_.IsInPageMode())
        return;
    const char *sentence = renderer_.IsInPageMode()
                               ? "The stream ended in page mode. A page that was not printed is lost."
                               : "The last line was not printed: no line feed came after it.";
    if (listing_)
        listing_->WriteNote(sentence);
    diagnostics_ << "nadrel-printer: " << sentence << '\n';
}

uint8_t Printer::Status() const {
    return static_cast<uint8_t>(IsPaperOut() ? StatusNormal | StatusPaperOut : StatusNormal);
}

void Printer::FlushListing() {
    if (listing_)
        listing_->Flush();
}

} // namespace printer

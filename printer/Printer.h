#pragma once

#include "printer/Listing.h"
#include "printer/Renderer.h"

#include <optional>
#include <ostream>

namespace printer {

// The printer without its links: paper, fonts, and who is told what was done.
class Printer {
  public:
    // The listing may be null. Sentences about what went wrong go to `diagnostics`. Both stay the caller's
    // and outlive the printer. Throws std::runtime_error when there is no font.
    Printer(int paperWidth, const std::string &font, Listing *listing, std::ostream &diagnostics);

    // The roll ends when this many dot rows have been used; a line that has begun is still printed.
    void EndPaperAfter(int rows) { paperEnd_ = rows; }
    void LoadPaper() { paperEnd_.reset(); }
    bool IsPaperOut() const { return paperEnd_ && paper_.Rows() >= *paperEnd_; }

    // False for a command that has to wait for paper.
    bool CanExecute(const Command &command) const { return !IsPaperOut() || IsRequest(command.GetKind()); }
    void Execute(const Command &command);

    // Tells about a line that nothing has printed; to be called when no more commands come.
    void Finish();

    uint8_t Status() const;
    const Paper &GetPaper() const { return paper_; }
    void FlushListing();

  private:
    std::string DescribeMacro(const Command &macro);
    void Tell(const Command &command, const std::string &sentence);

    Paper paper_;
    Fonts fonts_;
    Renderer renderer_;
    Listing *listing_;
    std::ostream &diagnostics_;
    std::optional<int> paperEnd_; // rows
    Bytes macro_;                 // the stored one
};

} // namespace printer

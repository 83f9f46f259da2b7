#pragma once

#include "printer/Barcodes.h"
#include "printer/Commands.h"
#include "printer/Fonts.h"
#include "printer/Line.h"
#include "printer/Page.h"
#include "printer/Paper.h"
#include "printer/Style.h"
#include "printer/TrueType.h"

#include <optional>
#include <string>
#include <vector>

namespace printer {

// Carries out what the commands say on the paper. The paper and the fonts stay the caller's and outlive the
// renderer.
class Renderer {
  public:
    Renderer(Paper &paper, Fonts &fonts);

    // Carries out one command. What could not be done as asked comes back as sentences.
    std::vector<std::string> Execute(const Command &command);

    // True while characters wait for the line feed that prints them.
    bool HasUnprintedLine() const { return !line_.IsEmpty(); }
    bool IsInPageMode() const { return page_.has_value(); }

  private:
    bool ExecuteText(const Command &command);
    bool ExecuteFeed(const Command &command);
    bool ExecuteMark(const Command &command);
    bool ExecuteMode(const Command &command);
    bool ExecutePage(const Command &command);
    bool ExecuteRaster(const Command &command);
    bool ExecutePicture(const Command &command);

    void Initialize();
    void PrintText(const std::vector<Character> &text);
    void PrintTrueType(const Command &command);
    void Place(const Bitmap &picture);
    void WrapBefore(int width);
    void NextTabStop();
    void MoveCursor(int x);

    int FlushLine();
    void EndLine(int feed);
    void EndStartedLine();
    void Advance(int dots);
    void PrintAcross(const Bitmap &picture, int x, bool turned);
    int AlignedColumn(int width) const;
    void PrintBlock(const Bitmap &picture, int margin);

    void Cut(bool partial);
    void FeedToMark();

    void EnterPageMode();
    void EnterStandardMode();
    void LeavePage();
    void PrintPage();
    void ComposePage(const Command &command);
    void SetPageArea(const Command &command);
    void DrawFigure(const Command &command);

    void Note(const std::string &sentence) { notes_.push_back(sentence); }

    Paper &paper_;
    Fonts &fonts_;
    TextDecoder decoder_;
    Style style_;
    Line line_;
    TextAlignment lineAlignment_ = TextAlignment::Left; // of the line that is being composed
    bool lineUpsideDown_ = false;                       // likewise
    std::optional<Page> page_;                          // in page mode
    Barcodes barcodes_;
    TrueType trueType_;
    int offsetFromMark_ = 0; // dots
    bool toldFull_ = false;
    std::vector<std::string> notes_;
};

} // namespace printer

#include "printer/Renderer.h"

#include <algorithm>
#include <utility>

namespace printer {

Renderer::Renderer(Paper &paper, Fonts &fonts) : paper_(paper), fonts_(fonts), line_(paper.Width()) {}

std::vector<std::string> Renderer::Execute(const Command &command) {
    notes_.clear();
    // The first that knows the command ends the search.
    static_cast<void>(ApplyToStyle(style_, command) || barcodes_.ApplySetting(command) ||
                      ExecuteText(command) || ExecuteFeed(command) || ExecuteMark(command) ||
                      ExecuteMode(command) || ExecutePage(command) || ExecuteRaster(command) ||
                      ExecutePicture(command));
    if (paper_.IsFull() && !std::exchange(toldFull_, true))
        Note("The paper is " + std::to_string(paper_.Rows()) + " dots long. What follows is not drawn.");
    return std::exchange(notes_, {});
}

bool Renderer::ExecuteText(const Command &command) {
    switch (command.GetKind()) {
    case Kind::Text:
        PrintText(decoder_.Decode(command.bytes, FindCodeTable(style_.codeTable)));
        break;
    case Kind::TrueTypeText:
        PrintTrueType(command);
        break;
    case Kind::TrueTypeFont:
        if (!trueType_.Select(decoder_.ToUtf8(command.Content(), FindCodeTable(style_.codeTable)), fonts_))
            Note("No font of this name is installed. Its text is printed in the printer's own font.");
        break;
    case Kind::Tab:
        NextTabStop();
        break;
    case Kind::HorizontalPosition:
        MoveCursor(command.Word(0));
        break;
    default:
        return false;
    }
    return true;
}

bool Renderer::ExecuteFeed(const Command &command) {
    switch (command.GetKind()) {
    case Kind::LineFeed:
        EndLine(style_.lineSpacing);
        break;
    case Kind::FeedDots:
    case Kind::EndOfCompressedRaster:
        EndLine(command.Byte(0));
        break;
    case Kind::FeedLines:
        EndLine(command.Byte(0) * style_.lineSpacing);
        break;
    case Kind::Initialize:
        Initialize();
        break;
    default:
        return false;
    }
    return true;
}

void Renderer::Initialize() {
    if (HasUnprintedLine())
        Note("A line that was not printed is lost.");
    style_ = Style();
    barcodes_.Reset();
    trueType_ = TrueType();
    offsetFromMark_ = 0;
    EnterStandardMode();
}

void Renderer::PrintText(const std::vector<Character> &text) {
    for (const Character &character : text) {
        WrapBefore(AdvanceOf(style_, character) - style_.characterSpacing * style_.widthTimes);
        Place(DrawCharacter(fonts_, style_, character));
    }
}

void Renderer::PrintTrueType(const Command &command) {
    for (const char32_t character : TrueType::CharactersOf(command)) {
        const Bitmap &cell = trueType_.Draw(command, character, fonts_);
        WrapBefore(cell.Width());
        Place(cell);
    }
}

void Renderer::Place(const Bitmap &picture) {
    if (line_.IsEmpty()) {
        lineAlignment_ = style_.alignment;
        lineUpsideDown_ = style_.upsideDown;
    }
    line_.Place(picture);
}

void Renderer::WrapBefore(int width) {
    if (line_.Cursor() > 0 && line_.Cursor() + width > line_.Width())
        EndLine(style_.lineSpacing);
}

void Renderer::NextTabStop() {
    const int stop = TabWidth * AdvanceOf(style_, {U' '});
    MoveCursor((line_.Cursor() / stop + 1) * stop);
}

void Renderer::MoveCursor(int x) {
    if (x >= line_.Width())
        Note("Position " + std::to_string(x) + " lies behind the end of the line and is not taken.");
    else
        line_.MoveTo(x);
}

// Draws the line where it stands, without a feed, and gives its height.
int Renderer::FlushLine() {
    const int height = line_.Height();
    if (page_)
        page_->View().Draw(line_.Picture(), 0, page_->Row());
    else if (!line_.IsEmpty())
        PrintAcross(line_.Picture(), AlignedColumn(line_.UsedWidth()), lineUpsideDown_);
    line_.Clear();
    return height;
}

void Renderer::EndLine(int feed) {
    Advance(std::max(FlushLine(), feed));
    line_.MoveTo(0);
}

void Renderer::EndStartedLine() {
    if (!line_.IsEmpty())
        EndLine(style_.lineSpacing);
}

void Renderer::Advance(int dots) {
    if (page_)
        page_->MoveDown(dots);
    else
        paper_.Feed(dots);
}

// Where a picture of this width begins in the line.
int Renderer::AlignedColumn(int width) const {
    switch (lineAlignment_) {
    case TextAlignment::Centre:
        return std::max(0, (paper_.Width() - width) / 2);
    case TextAlignment::Right:
        return std::max(0, paper_.Width() - width);
    default:
        return 0;
    }
}

void Renderer::PrintAcross(const Bitmap &picture, int x, bool turned) {
    Bitmap row(paper_.Width(), picture.Height());
    row.Draw(picture, x, 0);
    paper_.Print(turned ? row.Turned() : row, 0);
}

} // namespace printer

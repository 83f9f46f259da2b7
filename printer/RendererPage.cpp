#include "printer/Raster.h"
#include "printer/Renderer.h"
#include "printer/Shapes.h"

#include <algorithm>

namespace printer {
namespace {

// A raster band's lines, eight dots a byte.
Bitmap BitmapOfBand(ByteView band, int lineBytes, int lines) {
    Bitmap picture(lineBytes * 8, lines);
    for (size_t i = 0; i < band.size() && lineBytes > 0; ++i) {
        const int x = static_cast<int>(i) % lineBytes * 8, y = static_cast<int>(i) / lineBytes;
        for (int bit = 0; bit < 8; ++bit)
            if ((band[i] & 0x80 >> bit) != 0)
                picture.Set(x + bit, y);
    }
    return picture;
}

// Rows down to the lower end of a figure that is printed in standard mode.
int FigureHeight(const Command &figure) {
    const int thickness = figure.GetKind() == Kind::LineFigure ? std::max<int>(figure.Byte(8), 1) : 1;
    return std::min(std::max(figure.Word(2), figure.Word(6)) + thickness, LongestPage);
}

void DrawOn(AreaView view, const Command &figure) {
    const Point from{figure.Word(0), figure.Word(2)}, to{figure.Word(4), figure.Word(6)};
    if (figure.GetKind() == Kind::LineFigure)
        DrawLine(view, from, to, figure.Byte(8));
    else
        DrawEllipse(view, from, to, figure.Byte(8));
}

// Dashes across the paper; between those of a partial cut the paper holds together in the middle.
Bitmap CutLine(int width, bool partial) {
    const int period = partial ? 8 : 16, dash = partial ? 4 : 12, bridge = partial ? width / 6 : 0;
    Bitmap line(width, 2);
    for (int x = 0; x < width; x += period)
        line.Fill(x, 0, dash, 2);
    line.Erase((width - bridge) / 2, 0, bridge, 2);
    return line;
}

// Grey, so that it is not taken for something printed.
Bitmap BlackMark() {
    Bitmap mark(MarkWidth, MarkHeight);
    for (int y = 0; y < MarkHeight; ++y)
        for (int x = y % 2; x < MarkWidth; x += 2)
            mark.Set(x, y);
    return mark;
}

Bitmap DrawLogo(int number, Fonts &fonts) {
    const Bitmap text = DrawTextBox("logo " + std::to_string(number), fonts, LogoWidth);
    Bitmap logo(LogoWidth, LogoHeight);
    logo.Draw(text, 0, (LogoHeight - text.Height()) / 2);
    return logo;
}

} // namespace

bool Renderer::ExecuteMark(const Command &command) {
    switch (command.GetKind()) {
    case Kind::Cut:
        Cut(command.Byte(0) == 1);
        break;
    case Kind::FeedToMark:
        FeedToMark();
        break;
    case Kind::StartAtMark:
        Advance(offsetFromMark_);
        break;
    case Kind::OffsetFromMark:
        offsetFromMark_ = command.Word(0);
        break;
    default:
        return false;
    }
    return true;
}

void Renderer::Cut(bool partial) {
    if (page_)
        return Note("The paper is not cut in page mode.");
    EndStartedLine();
    paper_.Feed(CutMargin);
    const Bitmap line = CutLine(paper_.Width(), partial);
    paper_.Print(line, 0);
    paper_.Feed(line.Height() + CutMargin);
}

void Renderer::FeedToMark() {
    if (page_)
        return Note("The paper is not fed to a mark in page mode.");
    EndStartedLine();
    paper_.Feed(style_.lineSpacing);
    paper_.Print(BlackMark(), 0);
    paper_.Feed(MarkHeight);
}

bool Renderer::ExecuteMode(const Command &command) {
    switch (command.GetKind()) {
    case Kind::PageMode:
        EnterPageMode();
        break;
    case Kind::StandardMode:
        EnterStandardMode();
        break;
    case Kind::FormFeed:
        LeavePage();
        break;
    case Kind::Position:
        if (page_) {
            FlushLine();
            page_->SetRow(command.Word(2));
        }
        MoveCursor(command.Word(0));
        break;
    case Kind::LineFigure:
    case Kind::Ellipse:
        DrawFigure(command);
        break;
    default:
        return false;
    }
    return true;
}

void Renderer::EnterPageMode() {
    if (page_)
        return;
    EndStartedLine();
    page_.emplace(paper_.Width());
    line_ = Line(page_->View().Width());
}

void Renderer::EnterStandardMode() {
    page_.reset();
    line_ = Line(paper_.Width());
}

// A form feed: in standard mode it only ends the line.
void Renderer::LeavePage() {
    if (!page_)
        return EndStartedLine();
    PrintPage();
    EnterStandardMode();
}

void Renderer::PrintPage() {
    FlushLine();
    const Bitmap picture = page_->Picture();
    paper_.Print(picture, 0);
    paper_.Feed(picture.Height());
}

bool Renderer::ExecutePage(const Command &command) {
    const Kind kind = command.GetKind();
    const bool isPageCommand = kind == Kind::ClearPage || kind == Kind::PrintPage || kind == Kind::PageArea ||
                               kind == Kind::PageDirection || kind == Kind::Box;
    if (isPageCommand && page_)
        ComposePage(command);
    else if (isPageCommand)
        Note("This means something in page mode only.");
    return isPageCommand;
}

void Renderer::ComposePage(const Command &command) {
    FlushLine();
    switch (command.GetKind()) {
    case Kind::ClearPage:
        return page_->Clear();
    case Kind::PrintPage:
        return PrintPage();
    case Kind::Box:
        return DrawBox(page_->View(), {line_.Cursor(), page_->Row(), command.Word(0), command.Word(2)},
                       command.Byte(4));
    case Kind::PageDirection:
        page_->SetDirection(static_cast<Direction>(command.Byte(0) & 3));
        line_ = Line(page_->View().Width());
        return;
    default:
        return SetPageArea(command);
    }
}

void Renderer::SetPageArea(const Command &command) {
    const Area area{command.Word(0), command.Word(2), command.Word(4), command.Word(6)};
    if (!page_->SetArea(area))
        return Note("The area lies outside the page and is not taken.");
    if (area.x + area.width > paper_.Width() || area.y + area.height > LongestPage)
        Note("The area is cut off at the edge of the page, which is " + std::to_string(paper_.Width()) +
             " x " + std::to_string(LongestPage) + " dots.");
    line_ = Line(page_->View().Width());
}

void Renderer::DrawFigure(const Command &command) {
    if (page_) {
        FlushLine();
        return DrawOn(page_->View(), command);
    }
    EndStartedLine();
    Bitmap figure(paper_.Width(), FigureHeight(command));
    DrawOn(AreaView(figure), command);
    paper_.Print(figure, 0);
    paper_.Feed(figure.Height());
}

bool Renderer::ExecuteRaster(const Command &command) {
    const int lineBytes = command.Byte(0), lines = std::min<int>(command.Byte(1), BandLines);
    if (command.GetKind() == Kind::Raster)
        Place(BitmapOfBand(command.Data(), lineBytes, lines));
    else if (command.GetKind() == Kind::CompressedRaster)
        Place(BitmapOfBand(ExpandBand(command.Data(), command.Byte(0)), lineBytes, BandLines));
    else
        return false;
    return true;
}

bool Renderer::ExecutePicture(const Command &command) {
    if (command.GetKind() == Kind::Logo) {
        PrintBlock(DrawLogo(command.Byte(0), fonts_), 0);
        return true;
    }
    const auto barcode = barcodes_.Draw(command, fonts_, paper_.Width());
    if (!barcode)
        return false;
    if (!barcode->problem.empty())
        Note(barcode->problem);
    PrintBlock(barcode->picture, BarcodeMargin);
    return true;
}

// In standard mode a picture is a line of its own and is printed at once.
void Renderer::PrintBlock(const Bitmap &picture, int margin) {
    if (page_) {
        FlushLine();
        page_->View().Draw(picture, line_.Cursor(), page_->Row());
        return line_.MoveTo(line_.Cursor() + picture.Width());
    }
    EndStartedLine();
    lineAlignment_ = style_.alignment;
    const int x = lineAlignment_ == TextAlignment::Left ? line_.Cursor() : AlignedColumn(picture.Width());
    if (x + picture.Width() > paper_.Width())
        Note("The picture is " + std::to_string(x + picture.Width() - paper_.Width()) +
             " dots too wide for the paper and is cut off.");
    paper_.Feed(margin);
    PrintAcross(picture, x, style_.upsideDown);
    paper_.Feed(picture.Height() + margin);
    line_.MoveTo(0);
}

} // namespace printer

#include "printer/Barcodes.h"

#include "printer/FirmwareTables.h"
#include "printer/Symbols.h"
#include "printer/Text.h"

#include <algorithm>

namespace printer {
namespace {

constexpr int TextGap = 4;    // dots between bars and text
constexpr int BoxPadding = 8; // dots between a frame and its text

std::string StringOf(ByteView bytes) {
    return {bytes.begin(), bytes.end()};
}

Bitmap DrawTextLine(const std::vector<char32_t> &text, Fonts &fonts) {
    Bitmap line(static_cast<int>(text.size()) * HumanReadableSize.width, HumanReadableSize.height);
    for (size_t i = 0; i < text.size(); ++i)
        line.Draw(fonts.Glyph(text[i], HumanReadableSize.width, HumanReadableSize.height, false),
                  static_cast<int>(i) * HumanReadableSize.width, 0);
    return line;
}

Bitmap BitmapOf(const Symbol &symbol) {
    Bitmap picture(symbol.width, symbol.height);
    for (int y = 0; y < symbol.height; ++y)
        for (int x = 0; x < symbol.width; ++x)
            if (symbol.dots[static_cast<size_t>(y * symbol.width + x)] != 0)
                picture.Set(x, y);
    return picture;
}

// Both centred.
Bitmap Stack(const Bitmap &upper, const Bitmap &lower) {
    Bitmap both(std::max(upper.Width(), lower.Width()), upper.Height() + TextGap + lower.Height());
    both.Draw(upper, (both.Width() - upper.Width()) / 2, 0);
    both.Draw(lower, (both.Width() - lower.Width()) / 2, upper.Height() + TextGap);
    return both;
}

std::optional<Symbol> Encode(const Command &command, int moduleWidth, int height, uint8_t matrixKind) {
    switch (command.GetKind()) {
    case Kind::Barcode:
        return EncodeLinear({command.Byte(0), moduleWidth, height, StringOf(command.Data())});
    case Kind::MatrixBarcode:
        return EncodeMatrix({matrixKind, command.Byte(0), command.Byte(1), command.Byte(2), moduleWidth,
                             StringOf(command.Data())});
    case Kind::Databar:
        return EncodeDatabar(
            {command.Byte(0), command.Byte(1), moduleWidth, height, StringOf(command.Content())});
    default:
        return std::nullopt;
    }
}

} // namespace

bool Barcodes::ApplySetting(const Command &command) {
    switch (command.GetKind()) {
    case Kind::ModuleWidth:
        moduleWidth_ = command.Byte(0);
        break;
    case Kind::BarHeight:
        height_ = command.Byte(0);
        break;
    case Kind::HumanReadable:
        hasText_ = command.Byte(0) != 0;
        break;
    case Kind::MatrixKind:
        matrixKind_ = command.Byte(0);
        break;
    default:
        return false;
    }
    return true;
}

std::optional<Barcodes::Result> Barcodes::Draw(const Command &command, Fonts &fonts, int widestBox) const {
    const std::optional<Symbol> symbol = Encode(command, moduleWidth_, height_, matrixKind_);
    if (!symbol)
        return std::nullopt;
    if (!symbol->problem.empty())
        return Result{DrawTextBox(symbol->problem, fonts, widestBox), symbol->problem};
    Bitmap picture = BitmapOf(*symbol);
    if (hasText_ && !symbol->text.empty())
        picture = Stack(picture, DrawTextLine(DecodeUtf8(symbol->text), fonts));
    return Result{std::move(picture), ""};
}

Bitmap DrawTextBox(const std::string &text, Fonts &fonts, int width) {
    const std::vector<char32_t> letters = DecodeUtf8(text);
    const auto columns = static_cast<size_t>(std::max(1, (width - 2 * BoxPadding) / HumanReadableSize.width));
    const int lines = static_cast<int>((letters.size() + columns - 1) / columns);
    Bitmap box(width, lines * HumanReadableSize.height + 2 * BoxPadding);
    box.Fill(0, 0, box.Width(), box.Height());
    box.Erase(2, 2, box.Width() - 4, box.Height() - 4);
    for (size_t begin = 0; begin < letters.size(); begin += columns) {
        const auto first = letters.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto count = static_cast<std::ptrdiff_t>(std::min(columns, letters.size() - begin));
        box.Draw(DrawTextLine({first, first + count}, fonts), BoxPadding,
                 BoxPadding + static_cast<int>(begin / columns) * HumanReadableSize.height);
    }
    return box;
}

} // namespace printer

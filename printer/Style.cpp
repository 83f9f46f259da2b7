#include "printer/Style.h"

#include <algorithm>

namespace printer {
namespace {

bool IsOn(const Command &command) {
    return (command.Byte(0) & 1) != 0;
}

FontSize FontOf(uint8_t number) {
    return number < FontSizes.size() ? FontSizes[number] : FontSizes[0];
}

TextAlignment AlignmentOf(uint8_t number) {
    return number <= 2 ? static_cast<TextAlignment>(number) : TextAlignment::Left;
}

void SetMagnification(Style &style, uint8_t size) {
    style.widthTimes = (size >> 4 & 7) + 1;
    style.heightTimes = (size & 7) + 1;
}

} // namespace

bool ApplyToStyle(Style &style, const Command &command) {
    switch (command.GetKind()) {
    case Kind::CodeTable:
        style.codeTable = command.Byte(0);
        break;
    case Kind::FontSize:
        style.font = FontOf(command.Byte(0));
        break;
    case Kind::Magnification:
        SetMagnification(style, command.Byte(0));
        break;
    case Kind::Underline:
        style.underline = std::min<int>(command.Byte(0), 2);
        break;
    case Kind::Bold:
        style.bold = IsOn(command);
        break;
    case Kind::Reverse:
        style.reverse = IsOn(command);
        break;
    case Kind::UpsideDown:
        style.upsideDown = IsOn(command);
        break;
    case Kind::Alignment:
        style.alignment = AlignmentOf(command.Byte(0));
        break;
    case Kind::CharacterSpacing:
        style.characterSpacing = command.Byte(0);
        break;
    case Kind::LineSpacing:
        style.lineSpacing = command.Byte(0);
        break;
    case Kind::DefaultLineSpacing:
        style.lineSpacing = NormalLineSpacing;
        break;
    default:
        return false;
    }
    return true;
}

int AdvanceOf(const Style &style, const Character &character) {
    const int cells = character.wide ? 2 : 1;
    return (style.font.width * cells + style.characterSpacing) * style.widthTimes;
}

Bitmap DrawCharacter(Fonts &fonts, const Style &style, const Character &character) {
    const int width = style.font.width * style.widthTimes * (character.wide ? 2 : 1);
    const int height = style.font.height * style.heightTimes;
    Bitmap cell(AdvanceOf(style, character), height);
    cell.Draw(fonts.Glyph(character.code, width, height, style.bold), 0, 0);
    if (style.reverse)
        cell.Invert();
    else
        cell.Fill(0, height - style.underline, cell.Width(), style.underline);
    return cell;
}

} // namespace printer

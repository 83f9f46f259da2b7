#pragma once

#include "printer/Commands.h"
#include "printer/FirmwareTables.h"
#include "printer/Fonts.h"
#include "printer/Text.h"

namespace printer {

enum class TextAlignment : uint8_t { Left = 0, Centre = 1, Right = 2 };

// How text is printed, as ESC '@' leaves it.
struct Style {
    uint8_t codeTable = DefaultCodeTable;
    FontSize font = FontSizes[0];
    int widthTimes = 1, heightTimes = 1; // 1..8
    int underline = 0;                   // dots, 0..2
    bool bold = false;
    bool reverse = false;
    bool upsideDown = false;
    TextAlignment alignment = TextAlignment::Left;
    int characterSpacing = 0;            // dots, at width 1
    int lineSpacing = NormalLineSpacing; // dots from line to line
};

// Carries out a command that changes the style. False when it is none.
bool ApplyToStyle(Style &style, const Command &command);

// A character with everything that belongs to its style.
Bitmap DrawCharacter(Fonts &fonts, const Style &style, const Character &character);

// From the left end of a character to that of the next one.
int AdvanceOf(const Style &style, const Character &character);

} // namespace printer

#pragma once

#include "printer/Commands.h"
#include "printer/Fonts.h"

#include <optional>
#include <string>

namespace printer {

// The barcode commands: their settings, and the pictures they ask for.
class Barcodes {
  public:
    struct Result {
        Bitmap picture;
        std::string problem; // why the picture is a box with this reason in it; empty when it is the barcode
    };

    // Back to the settings after ESC '@'.
    void Reset() { *this = Barcodes(); }

    // Carries out a command that changes the settings. False when it is none.
    bool ApplySetting(const Command &command);

    // The picture of a command that prints a barcode, with its text when that is switched on; none when the
    // command is another one. A box for a barcode that cannot be encoded is at most this wide.
    std::optional<Result> Draw(const Command &command, Fonts &fonts, int widestBox) const;

  private:
    int moduleWidth_ = 0; // dots, 0 for the printer's default
    int height_ = 0;      // dots, 0 for the printer's default
    bool hasText_ = false;
    uint8_t matrixKind_ = 0;
};

// Text in a thin frame, broken into lines.
Bitmap DrawTextBox(const std::string &text, Fonts &fonts, int width);

} // namespace printer

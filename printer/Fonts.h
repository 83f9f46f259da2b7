#pragma once

#include "printer/FontFace.h"
#include "printer/FontFiles.h"

#include <map>
#include <memory>
#include <string>
#include <tuple>

namespace printer {

// The printer's own font, regular and bold, and the TrueType fonts that hosts name.
class Fonts {
  public:
    // An empty name stands for the usual monospaced font of the system. Throws std::runtime_error when there
    // is none, or the file is no font.
    explicit Fonts(const std::string &file = "");

    // A character of the printer's font in a cell of this size.
    const Bitmap &Glyph(char32_t character, int width, int height, bool bold);

    // A character of any font, as wide as that font wants it.
    const Bitmap &ProportionalGlyph(const std::shared_ptr<FontFace> &face, char32_t character, int width,
                                    int height);

    // The installed font with this family or file name (with or without its ending); null when there is none.
    std::shared_ptr<FontFace> FindTrueType(const std::string &name);

    std::shared_ptr<FontFace> Regular() { return regular_; }

  private:
    // The face is null for the printer's own font; then the last member is true for bold.
    using GlyphKey = std::tuple<std::shared_ptr<FontFace>, char32_t, int, int, bool>;

    Bitmap DrawGlyph(char32_t character, int width, int height, bool bold);

    void ForgetGlyphsWhenMany();

    FontFiles files_;
    std::shared_ptr<FontFace> regular_;
    std::unique_ptr<FontFace> bold_; // null: bold is drawn by printing twice, a dot apart
    std::map<GlyphKey, Bitmap> glyphs_;
    std::map<std::string, std::shared_ptr<FontFace>> trueType_; // by the name that was asked for
};

} // namespace printer

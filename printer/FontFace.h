#pragma once

#include "printer/Bitmap.h"

#include <memory>
#include <string>

namespace printer {

// One font file, drawn by FreeType in black and white.
class FontFace {
  public:
    // Null when the file cannot be opened or is no scalable font.
    static std::unique_ptr<FontFace> Open(const std::string &file);

    ~FontFace();
    FontFace(const FontFace &) = delete;
    FontFace &operator=(const FontFace &) = delete;

    // The character in a cell of this size, scaled in both directions so that the font fills it; parts that
    // stand out are cut off. A character that the font lacks is a box. Sizes 1..1024.
    Bitmap DrawInCell(char32_t character, int width, int height);

    // The character in a cell as wide as the font wants it when its letters are scaled to this width; the
    // height is that of a line. At least one dot wide.
    Bitmap DrawProportional(char32_t character, int width, int height);

  private:
    struct Implementation;
    explicit FontFace(std::unique_ptr<Implementation> implementation);

    std::unique_ptr<Implementation> implementation_;
};

} // namespace printer

#pragma once

#include "printer/Commands.h"
#include "printer/Fonts.h"
#include "printer/Text.h"

#include <string>

namespace printer {

// TrueType text: a font that the host names, and UTF-16.
class TrueType {
  public:
    // Selects a font by family or file name. False when it is not installed: then the printer's own font is
    // used.
    bool Select(const std::string &name, Fonts &fonts);

    // A character of ESC 'g' 'U' in the sizes the command gives.
    const Bitmap &Draw(const Command &text, char32_t character, Fonts &fonts) const;

    static std::vector<char32_t> CharactersOf(const Command &text);

  private:
    std::shared_ptr<FontFace> face_; // null: the printer's own
};

} // namespace printer

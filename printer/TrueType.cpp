#include "printer/TrueType.h"

#include "printer/FirmwareTables.h"

namespace printer {

bool TrueType::Select(const std::string &name, Fonts &fonts) {
    face_ = fonts.FindTrueType(name);
    return face_ != nullptr;
}

const Bitmap &TrueType::Draw(const Command &text, char32_t character, Fonts &fonts) const {
    return fonts.ProportionalGlyph(face_ ? face_ : fonts.Regular(), character, TrueTypeSize(text.Byte(0)),
                                   TrueTypeSize(text.Byte(1)));
}

std::vector<char32_t> TrueType::CharactersOf(const Command &text) {
    return DecodeUtf16(text.Content());
}

} // namespace printer

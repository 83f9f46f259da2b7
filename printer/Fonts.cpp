#include "printer/Fonts.h"

#include <stdexcept>

namespace printer {
namespace {

constexpr size_t MostGlyphs = 2048;      // kept
constexpr size_t MostTrueTypeFonts = 16; // kept open

} // namespace

Fonts::Fonts(const std::string &file) {
    const std::string regular = file.empty() ? files_.Monospaced() : file;
    if (regular.empty())
        throw std::runtime_error(
            "No monospaced font is installed. Install DejaVu Sans Mono or name a font file.");
    regular_ = FontFace::Open(regular);
    if (!regular_)
        throw std::runtime_error("The file " + regular + " is not a scalable font that can be read.");
    if (file.empty())
        bold_ = FontFace::Open(files_.BoldMonospaced());
}

const Bitmap &Fonts::Glyph(char32_t character, int width, int height, bool bold) {
    ForgetGlyphsWhenMany();
    const GlyphKey key{nullptr, character, width, height, bold};
    const auto found = glyphs_.find(key);
    if (found != glyphs_.end())
        return found->second;
    return glyphs_.emplace(key, DrawGlyph(character, width, height, bold)).first->second;
}

const Bitmap &Fonts::ProportionalGlyph(const std::shared_ptr<FontFace> &face, char32_t character, int width,
                                       int height) {
    ForgetGlyphsWhenMany();
    const GlyphKey key{face, character, width, height, false};
    const auto found = glyphs_.find(key);
    if (found != glyphs_.end())
        return found->second;
    return glyphs_.emplace(key, face->DrawProportional(character, width, height)).first->second;
}

void Fonts::ForgetGlyphsWhenMany() {
    if (glyphs_.size() >= MostGlyphs)
        glyphs_.clear();
}

Bitmap Fonts::DrawGlyph(char32_t character, int width, int height, bool bold) {
    if (bold && bold_)
        return bold_->DrawInCell(character, width, height);
    Bitmap glyph = regular_->DrawInCell(character, width, height);
    if (bold) {
        const Bitmap once = glyph;
        glyph.Draw(once, 1, 0);
    }
    return glyph;
}

std::shared_ptr<FontFace> Fonts::FindTrueType(const std::string &name) {
    const auto found = trueType_.find(name);
    if (found != trueType_.end())
        return found->second;
    if (trueType_.size() >= MostTrueTypeFonts)
        trueType_.clear();
    const std::string file = files_.FindByName(name);
    return trueType_.emplace(name, file.empty() ? nullptr : FontFace::Open(file)).first->second;
}

} // namespace printer

#include "printer/FontFace.h"

#include <algorithm>
#include <cmath>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace printer {
namespace {

struct ReleaseLibrary {
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
};
struct ReleaseFace {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using LibraryHandle = std::unique_ptr<FT_LibraryRec_, ReleaseLibrary>;
using FaceHandle = std::unique_ptr<FT_FaceRec_, ReleaseFace>;

FT_UInt PixelsOf(double size) {
    return static_cast<FT_UInt>(std::clamp(std::lround(size), 1L, 2048L));
}

// Fonts for few scripts lack even the wide space of the others.
constexpr char32_t WideSpace = 0x3000;

Bitmap MissingGlyph(char32_t character, int width, int height) {
    Bitmap box(width, height);
    if (character == WideSpace)
        return box;
    const int margin = std::max(1, width / 8), top = height / 6;
    box.Fill(margin, top, width - 2 * margin, height - 2 * top);
    const int line = std::max(1, width / 12);
    box.Erase(margin + line, top + line, width - 2 * (margin + line), height - 2 * (top + line));
    return box;
}

void CopyGlyph(const FT_Bitmap &glyph, Bitmap &cell, int left, int top) {
    for (int y = 0; y < static_cast<int>(glyph.rows); ++y) {
        const unsigned char *row = glyph.buffer + static_cast<std::ptrdiff_t>(y) * glyph.pitch;
        for (int x = 0; x < static_cast<int>(glyph.width); ++x)
            if ((row[x / 8] & 0x80 >> x % 8) != 0)
                cell.Set(left + x, top + y);
    }
}

} // namespace

struct FontFace::Implementation {
    LibraryHandle library;
    FaceHandle face;    // released before the library
    double advance = 1; // of a letter, in font units

    double UnitsPerEm() const { return face->units_per_EM; }
    double LineHeight() const { return face->ascender - face->descender; } // font units

    // Row of the cell on which letters stand.
    int Baseline(int height) const {
        return static_cast<int>(std::lround(height * face->ascender / LineHeight()));
    }

    void MeasureAdvance() {
        if (FT_Load_Char(face.get(), 'M', FT_LOAD_NO_SCALE) == 0)
            advance = std::max<double>(static_cast<double>(face->glyph->advance.x), 1);
        else
            advance = std::max<double>(face->max_advance_width, 1);
    }

    bool Load(char32_t character, double widthOfEm, int height) {
        const double heightOfEm = height * UnitsPerEm() / LineHeight();
        const FT_UInt index = FT_Get_Char_Index(face.get(), character);
        return index != 0 && FT_Set_Pixel_Sizes(face.get(), PixelsOf(widthOfEm), PixelsOf(heightOfEm)) == 0 &&
               FT_Load_Glyph(face.get(), index, FT_LOAD_RENDER | FT_LOAD_TARGET_MONO) == 0 &&
               face->glyph->bitmap.pixel_mode == FT_PIXEL_MODE_MONO;
    }

    Bitmap Cell(int width, int height) const {
        Bitmap cell(width, height);
        CopyGlyph(face->glyph->bitmap, cell, face->glyph->bitmap_left,
                  Baseline(height) - face->glyph->bitmap_top);
        return cell;
    }
};

FontFace::FontFace(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}
FontFace::~FontFace() = default;

std::unique_ptr<FontFace> FontFace::Open(const std::string &file) {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0)
        return nullptr;
    auto implementation = std::make_unique<Implementation>();
    implementation->library.reset(library);
    FT_Face face = nullptr;
    if (FT_New_Face(library, file.c_str(), 0, &face) != 0)
        return nullptr;
    implementation->face.reset(face);
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0 || implementation->LineHeight() <= 0)
        return nullptr;
    implementation->MeasureAdvance();
    return std::unique_ptr<FontFace>(new FontFace(std::move(implementation)));
}

Bitmap FontFace::DrawInCell(char32_t character, int width, int height) {
    if (!implementation_->Load(character, width * implementation_->UnitsPerEm() / implementation_->advance,
                               height))
        return MissingGlyph(character, width, height);
    return implementation_->Cell(width, height);
}

Bitmap FontFace::DrawProportional(char32_t character, int width, int height) {
    const double widthOfEm = width * implementation_->UnitsPerEm() / implementation_->LineHeight();
    if (!implementation_->Load(character, widthOfEm, height))
        return MissingGlyph(character, std::max(1, width / 2), height);
    const auto advance = static_cast<int>(implementation_->face->glyph->advance.x / 64);
    return implementation_->Cell(std::clamp(advance, 1, 4 * width), height);
}

} // namespace printer

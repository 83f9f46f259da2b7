#pragma once

#include "image/BitmapHeaders.h"
#include "image/BmpFile.h"
#include "image/Palette.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nadrel {

// Red in the low byte, then green, then blue.
using COLORREF = uint32_t;

struct Size {
    int32_t width = 0;
    int32_t height = 0;

    bool operator==(const Size &) const = default;
};

// An uncompressed bitmap in memory. Printing needs none: it reads the file's rows piece by piece (PrintBmp).
//
// Operations give 1, or 0 when they fail, and tell nobody.
class BaseImage {
  public:
    BaseImage() = default;
    virtual ~BaseImage() = default;
    BaseImage(const BaseImage &) = delete;
    BaseImage &operator=(const BaseImage &) = delete;

    // An image of 256 colours with black pixels, its palette unknown to the system; null when there is none
    // of such a size.
    static std::unique_ptr<BaseImage> CreateFromColourTable(int32_t width, int32_t height,
                                                            const std::array<COLORREF, 256> &table);

    // Loads 1-, 4-, 8- and 24-bit files. A colour table or rows that the file does not hold are zeros. A
    // picture that cannot be loaded leaves the one of before. Names have at most 511 characters: a longer one
    // is kept cut and names no file, and neither does null.
    int32_t LoadBmp(const char16_t *name);

    // Null keeps the name last loaded or saved. Fails for an image whose header claims more pixel bytes than
    // it has.
    int32_t SaveBmp(const char16_t *name);

    // colours: 0 (24 bits a pixel), 2, 16 or 256. A 2-colour image is filled with index 0 whatever the
    // colour.
    int32_t CreateBlank(int32_t width, int32_t height, uint32_t colours, bool withPalette, COLORREF fill);

    // Replaces the header and the colour table, which is then zero. Fails, and changes nothing, for 16
    // colours less than two wide, 2 colours less than eight high, another number of colours, and sizes that
    // no file can have.
    int32_t SetupHeader(int32_t width, int32_t height, uint32_t colours);

    // A palette of the image's colour table, or a colour cube that also becomes its colour table.
    int32_t BuildPalette(bool fromColourTable);

    // The first palette entry of that colour; -1 when there is none.
    int32_t FindColourIndex(COLORREF colour) const;

    Size GetSize() const;

    // Selects and realizes the image's palette, or the system's. The position has no say.
    int32_t RealizeInto(int32_t x, int32_t y, platform::DeviceContext *context);
    int32_t UseSystemPalette(platform::DeviceContext *context);
    // A bitmap of the image's size with its palette realized; the pixels are not drawn into it.
    void PrepareDisplayBitmap();

    // Null before there is a header or pixel rows.
    const BITMAPINFOHEADER *GetInfo() const { return info ? &*info : nullptr; }
    uint8_t *GetBits() { return bits.data(); }

    const BitmapFileHeader &FileHeader() const { return fileHeader; }
    std::span<const RGBQUAD> ColourTable() const { return std::span(colourTable).first(colourCount); }
    uint32_t ColourCount() const { return colourCount; }
    uint32_t RowPadding() const { return rowPadding; }
    const LOGPALETTE *LogicalPalette() const { return logicalPalette.get(); }
    const CPalette *Palette() const { return palette.get(); }
    const std::u16string &FileName() const { return fileName; }
    platform::DisplayBitmap *DisplayBitmap() const { return displayBitmap; }

  private:
    int32_t MakeFromColourTable(int32_t width, int32_t height, const std::array<COLORREF, 256> &table);
    int32_t Load(const char16_t *name);
    bool TakeContent(const BmpFile &file);
    bool KeepName(const char16_t *name);
    int32_t Save(const char16_t *name);
    void FillFileHeader();
    bool WriteTo(platform::File &file) const;
    int32_t SetUp(int32_t width, int32_t height, uint32_t colours);
    void AllocateBits();
    void Fill(COLORREF fill);
    void FillWithTriples(COLORREF fill);
    void NewPalette();
    int32_t MakePalette(bool fromColourTable);
    int32_t SelectSystemPalette(platform::DeviceContext *context);
    void SetEntry(size_t index, uint8_t red, uint8_t green, uint8_t blue);
    int32_t BuildColourCube();

    BitmapFileHeader fileHeader;
    std::optional<BITMAPINFOHEADER> info;
    std::vector<RGBQUAD> colourTable{1}; // one entry more than the image has colours
    std::vector<uint8_t> buffer;         // a loaded file's content, or the pixel rows alone
    std::span<uint8_t> bits;             // the pixel rows within `buffer`, as far as there are any
    uint32_t rowPadding = 0;
    uint32_t colourCount = 0;
    std::unique_ptr<LOGPALETTE> logicalPalette;
    std::unique_ptr<CPalette> palette;
    CPalette systemPalette; // the one last selected by UseSystemPalette
    std::u16string fileName;
    // Outlives the image on purpose: whoever shows it may hold it still, and gives it back.
    platform::DisplayBitmap *displayBitmap = nullptr;
};

} // namespace nadrel

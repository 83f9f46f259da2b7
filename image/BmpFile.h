#pragma once

#include "image/BitmapHeaders.h"
#include "platform/File.h"

#include <cstdint>

namespace nadrel {

// A bitmap file on its disk, open for reading. Its header says how long it is; what lies behind that length
// does not belong to it, and a file that is shorter is no bitmap. "Content" is what follows the file header:
// the info header, the colour table and the pixel rows.
class BmpFile {
  public:
    // False, and nothing stays open, when there is no such file or it is no bitmap.
    bool Open(const char16_t *name);
    void Close() { file.Close(); }

    const BitmapFileHeader &FileHeader() const { return fileHeader; }

    // Bytes of the content, all of which the file held when it was opened; at least those of an info header.
    uint32_t ContentBytes() const { return fileHeader.size - static_cast<uint32_t>(kFileHeaderBytes); }

    // Reads `count` bytes of the content at `place`, both within it. False when they cannot all be had.
    bool ReadContent(uint32_t place, uint8_t *bytes, uint32_t count) const;

  private:
    bool ReadFileHeader();

    platform::File file;
    BitmapFileHeader fileHeader;
};

// The colours that a file of so many bits a pixel has in its table: none for 24 and for what no one draws.
uint32_t ColourCountOf(uint16_t biBitCount);

// Where in the content the pixel rows begin. The file header's bits offset has no say in it.
uint64_t BitsPlace(const BITMAPINFOHEADER &info);

} // namespace nadrel

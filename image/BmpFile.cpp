#include "image/BmpFile.h"

namespace nadrel {

bool BmpFile::Open(const char16_t *name) {
    if (file.Open(name, platform::FileUse::read) && ReadFileHeader())
        return true;
    file.Close();
    return false;
}

bool BmpFile::ReadFileHeader() {
    uint8_t bytes[kFileHeaderBytes] = {};
    uint32_t got = 0;
    uint64_t held = 0;
    if (!file.Read(0, bytes, sizeof bytes, got) || !file.Size(held))
        return false;
    fileHeader = DecodeFileHeader(bytes);
    return fileHeader.type == kBitmapType && fileHeader.size <= held &&
           fileHeader.size >= kFileHeaderBytes + kInfoHeaderBytes;
}

bool BmpFile::ReadContent(uint32_t place, uint8_t *bytes, uint32_t count) const {
    uint32_t got = 0;
    return file.Read(kFileHeaderBytes + uint64_t{place}, bytes, count, got) && got == count;
}

uint32_t ColourCountOf(uint16_t biBitCount) {
    switch (biBitCount) {
    case 1:
        return 2;
    case 4:
        return 16;
    case 8:
        return 256;
    default:
        return 0;
    }
}

uint64_t BitsPlace(const BITMAPINFOHEADER &info) {
    return uint64_t{info.biSize} + uint64_t{ColourCountOf(info.biBitCount)} * sizeof(RGBQUAD);
}

} // namespace nadrel

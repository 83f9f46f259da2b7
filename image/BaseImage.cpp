#include "image/BaseImage.h"

#include <algorithm>
#include <limits>
#include <new>

namespace nadrel {
namespace {

constexpr size_t kFileNameUnits = 512; // with the zero behind it

struct RowLayout {
    uint16_t bitCount;
    int32_t rowBytes;
};

// Odd widths at 4 bits and widths that are no multiple of 8 at 1 bit lose their last pixels. The 1-bit form
// tests the height where the width would be expected: images have always been made so.
std::optional<RowLayout> LayoutOf(int32_t width, int32_t height, uint32_t colours) {
    if (colours == 256)
        return RowLayout{8, width};
    if (colours == 16 && width >= 2)
        return RowLayout{4, width / 2};
    if (colours == 2 && height >= 8)
        return RowLayout{1, width / 8};
    if (colours == 0 && width <= std::numeric_limits<int32_t>::max() / 3)
        return RowLayout{24, width * 3};
    return std::nullopt;
}

uint32_t PaddingOf(int32_t rowBytes) {
    return static_cast<uint32_t>((4 - rowBytes % 4) % 4);
}

uint8_t Red(COLORREF colour) {
    return static_cast<uint8_t>(colour);
}

uint8_t Green(COLORREF colour) {
    return static_cast<uint8_t>(colour >> 8);
}

uint8_t Blue(COLORREF colour) {
    return static_cast<uint8_t>(colour >> 16);
}

RGBQUAD TableEntryAt(std::span<const uint8_t> content, size_t place) {
    if (content.size() < place + sizeof(RGBQUAD))
        return {};
    return {content[place], content[place + 1], content[place + 2], content[place + 3]};
}

bool Allocate(std::vector<uint8_t> &zeros, size_t count) {
    try {
        zeros.assign(count, 0);
    } catch (const std::bad_alloc &) {
        return false;
    }
    return true;
}

} // namespace

std::unique_ptr<BaseImage> BaseImage::CreateFromColourTable(int32_t width, int32_t height,
                                                            const std::array<COLORREF, 256> &table) {
    auto image = std::make_unique<BaseImage>();
    if (image->SetupHeader(width, height, 256) == 0 || !image->AllocateBits() || !image->NewPalette())
        return nullptr;
    for (size_t i = 0; i < table.size(); ++i)
        image->SetEntry(i, Red(table[i]), Green(table[i]), Blue(table[i]));
    constexpr uint32_t bitsOffset = 1078;
    image->fileHeader = {kBitmapType, static_cast<uint32_t>(image->bits.size()) + bitsOffset, 0, 0,
                         bitsOffset};
    return image;
}

int32_t BaseImage::LoadBmp(const char16_t *name) {
    KeepName(name);
    BmpFile file;
    if (!file.Open(name) || !TakeContent(file))
        return 0;
    return colourCount == 0 ? 1 : BuildPalette(true);
}

bool BaseImage::TakeContent(const BmpFile &file) {
    std::vector<uint8_t> content;
    if (!Allocate(content, file.ContentBytes()) || !file.ReadContent(0, content.data(), file.ContentBytes()))
        return false;
    fileHeader = file.FileHeader();
    info = DecodeInfoHeader(std::span(content).first<kInfoHeaderBytes>());
    colourCount = ColourCountOf(info->biBitCount);
    colourTable.assign(colourCount + 1, {});
    for (size_t i = 0; i < colourCount; ++i)
        colourTable[i] = TableEntryAt(content, kInfoHeaderBytes + i * sizeof(RGBQUAD));
    buffer = std::move(content);
    const uint64_t place = std::min<uint64_t>(BitsPlace(*info), buffer.size());
    bits = std::span(buffer).subspan(static_cast<size_t>(place));
    return true;
}

void BaseImage::KeepName(const char16_t *name) {
    fileName = name == nullptr ? u"" : name;
    if (fileName.size() >= kFileNameUnits)
        fileName.resize(kFileNameUnits - 1);
}

int32_t BaseImage::SaveBmp(const char16_t *name) {
    if (name != nullptr)
        KeepName(name);
    if (!info || info->biSizeImage > bits.size())
        return 0;
    const uint32_t bitsOffset = 54 + colourCount * uint32_t{sizeof(RGBQUAD)};
    fileHeader = {kBitmapType, bitsOffset + info->biSizeImage, 0, 0, bitsOffset};
    platform::File file;
    file.Open(fileName.c_str(), platform::FileUse::rewrite);
    return WriteTo(file) ? 1 : 0;
}

bool BaseImage::WriteTo(platform::File &file) const {
    uint8_t header[kFileHeaderBytes];
    Encode(fileHeader, header);
    std::vector<uint8_t> block(kInfoHeaderBytes);
    Encode(*info, std::span(block).first<kInfoHeaderBytes>());
    for (const RGBQUAD &entry : ColourTable())
        block.insert(block.end(), {entry.rgbBlue, entry.rgbGreen, entry.rgbRed, entry.rgbReserved});
    return file.Write(header, sizeof header) &&
           file.Write(block.data(), static_cast<uint32_t>(block.size())) &&
           file.Write(bits.data(), info->biSizeImage);
}

int32_t BaseImage::CreateBlank(int32_t width, int32_t height, uint32_t colours, bool withPalette,
                               COLORREF fill) {
    if (SetupHeader(width, height, colours) == 0)
        return 0;
    if (withPalette && BuildPalette(false) == 0)
        return 0;
    if (!AllocateBits())
        return 0;
    Fill(fill);
    return 1;
}

void BaseImage::Fill(COLORREF fill) {
    const auto index = static_cast<uint8_t>(std::max(FindColourIndex(fill), 0));
    if (colourCount == 256)
        std::fill(bits.begin(), bits.end(), index);
    else if (colourCount == 16)
        std::fill(bits.begin(), bits.end(), static_cast<uint8_t>(index * 16 + index));
    else if (colourCount == 0)
        FillWithTriples(fill);
}

// The padding of the rows is filled as well, so that rows differ in the channel they begin with.
void BaseImage::FillWithTriples(COLORREF fill) {
    const uint8_t triple[] = {Blue(fill), Green(fill), Red(fill)};
    for (size_t i = 0; i < bits.size(); ++i)
        bits[i] = triple[i % 3];
}

int32_t BaseImage::SetupHeader(int32_t width, int32_t height, uint32_t colours) {
    const std::optional<RowLayout> layout = LayoutOf(width, height, colours);
    if (!layout || width < 0 || height < 0)
        return 0;
    const uint32_t padding = PaddingOf(layout->rowBytes);
    const uint64_t imageBytes =
        (static_cast<uint64_t>(layout->rowBytes) + padding) * static_cast<uint64_t>(height);
    if (imageBytes > std::numeric_limits<uint32_t>::max())
        return 0;
    colourTable.assign(colours + 1, {});
    info = BITMAPINFOHEADER{.biSize = uint32_t{kInfoHeaderBytes},
                            .biWidth = width,
                            .biHeight = height,
                            .biPlanes = 1,
                            .biBitCount = layout->bitCount,
                            .biSizeImage = static_cast<uint32_t>(imageBytes)};
    colourCount = colours;
    rowPadding = padding;
    return 1;
}

bool BaseImage::AllocateBits() {
    if (!Allocate(buffer, info->biSizeImage))
        return false;
    bits = buffer;
    return true;
}

Size BaseImage::GetSize() const {
    return info ? Size{info->biWidth, info->biHeight} : Size{};
}

} // namespace nadrel

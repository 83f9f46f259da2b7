#include "image/BaseImage.h"

#include "spool/Guarded.h"

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
    if (width < 0 || height < 0)
        return std::nullopt;
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

// Where in a file of so many colours the pixel rows begin.
uint32_t BitsOffset(uint32_t colours) {
    return kFileHeaderBytes + kInfoHeaderBytes + colours * uint32_t{sizeof(RGBQUAD)};
}

} // namespace

std::unique_ptr<BaseImage> BaseImage::CreateFromColourTable(int32_t width, int32_t height,
                                                            const std::array<COLORREF, 256> &table) {
    std::unique_ptr<BaseImage> image(new (std::nothrow) BaseImage);
    if (image == nullptr || Guarded([&] { return image->MakeFromColourTable(width, height, table); }) == 0)
        return nullptr;
    return image;
}

int32_t BaseImage::MakeFromColourTable(int32_t width, int32_t height,
                                       const std::array<COLORREF, 256> &table) {
    if (SetupHeader(width, height, 256) == 0)
        return 0;
    AllocateBits();
    NewPalette();
    for (size_t i = 0; i < table.size(); ++i)
        SetEntry(i, Red(table[i]), Green(table[i]), Blue(table[i]));
    FillFileHeader();
    return 1;
}

int32_t BaseImage::LoadBmp(const char16_t *name) {
    return Guarded([=, this] { return Load(name); });
}

int32_t BaseImage::Load(const char16_t *name) {
    BmpFile file;
    if (!KeepName(name) || !file.Open(name) || !TakeContent(file))
        return 0;
    return colourCount == 0 ? 1 : BuildPalette(true);
}

bool BaseImage::TakeContent(const BmpFile &file) {
    std::vector<uint8_t> content(file.ContentBytes());
    if (!file.ReadContent(0, content.data(), file.ContentBytes()))
        return false;
    const BITMAPINFOHEADER header = DecodeInfoHeader(std::span(content).first<kInfoHeaderBytes>());
    colourTable.assign(ColourCountOf(header.biBitCount) + 1, {});
    colourCount = ColourCountOf(header.biBitCount);
    fileHeader = file.FileHeader();
    info = header;
    palette.reset();
    logicalPalette.reset();
    for (size_t i = 0; i < colourCount; ++i)
        colourTable[i] = TableEntryAt(content, kInfoHeaderBytes + i * sizeof(RGBQUAD));
    buffer = std::move(content);
    const uint64_t place = std::min<uint64_t>(BitsPlace(*info), buffer.size());
    bits = std::span(buffer).subspan(static_cast<size_t>(place));
    return true;
}

// False when the name is longer than is kept: the file of that name could not be saved again.
bool BaseImage::KeepName(const char16_t *name) {
    fileName = name == nullptr ? u"" : name;
    if (fileName.size() < kFileNameUnits)
        return true;
    fileName.resize(kFileNameUnits - 1);
    return false;
}

int32_t BaseImage::SaveBmp(const char16_t *name) {
    return Guarded([=, this] { return Save(name); });
}

int32_t BaseImage::Save(const char16_t *name) {
    if (name != nullptr && !KeepName(name))
        return 0;
    if (!info || info->biSizeImage > bits.size())
        return 0;
    FillFileHeader();
    platform::File file;
    file.Open(fileName.c_str(), platform::FileUse::rewrite);
    return WriteTo(file) ? 1 : 0;
}

void BaseImage::FillFileHeader() {
    const uint32_t offset = BitsOffset(colourCount);
    fileHeader = {kBitmapType, offset + info->biSizeImage, 0, 0, offset};
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
    return Guarded([=, this] {
        AllocateBits();
        Fill(fill);
        return 1;
    });
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
    return Guarded([=, this] { return SetUp(width, height, colours); });
}

int32_t BaseImage::SetUp(int32_t width, int32_t height, uint32_t colours) {
    const std::optional<RowLayout> layout = LayoutOf(width, height, colours);
    if (!layout)
        return 0;
    const uint32_t padding = PaddingOf(layout->rowBytes);
    const uint64_t imageBytes =
        (static_cast<uint64_t>(layout->rowBytes) + padding) * static_cast<uint64_t>(height);
    if (imageBytes + BitsOffset(colours) > std::numeric_limits<uint32_t>::max())
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

void BaseImage::AllocateBits() {
    buffer.assign(info->biSizeImage, 0);
    bits = buffer;
}

Size BaseImage::GetSize() const {
    return info ? Size{info->biWidth, info->biHeight} : Size{};
}

} // namespace nadrel

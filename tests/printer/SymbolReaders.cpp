#include "tests/printer/SymbolReaders.h"

#include <zbar.h> // before ZXing, whose macros bear the names of zbar's classes

#define ZX_USE_UTF8
#include <ZXing/ReadBarcode.h>
#include <dmtx.h>

#include <algorithm>
#include <functional>
#include <memory>

namespace printer {
namespace {

constexpr uint8_t White = 255;
// In pixels. More white columns than in the widest space of a barcode part two pieces of a sheet.
constexpr int RowGap = 16, ColumnGap = 48;
constexpr int Margin = 40;       // white around a part
constexpr long DmtxLimit = 2000; // milliseconds libdmtx may look at one part

struct Picture {
    int width = 0, height = 0;
    std::vector<uint8_t> grey;

    const uint8_t *Row(int y) const { return grey.data() + static_cast<ptrdiff_t>(y) * width; }
};

struct Box {
    int left, top, right, bottom; // right and bottom lie outside
};

template <typename T, auto Function>
struct Release {
    void operator()(T *object) const { Function(object); }
};

bool HasInk(const Picture &picture, const Box &box) {
    for (int y = box.top; y < box.bottom; ++y) {
        const uint8_t *row = picture.Row(y);
        if (std::any_of(row + box.left, row + box.right, [](uint8_t value) { return value < 128; }))
            return true;
    }
    return false;
}

using Stretch = std::pair<int, int>;

// The stretches of the positions in range that hold ink, joined where fewer than gap white positions lie
// between.
std::vector<Stretch> InkStretches(Stretch range, int gap, const std::function<bool(int)> &hasInk) {
    std::vector<Stretch> stretches;
    for (int position = range.first; position < range.second; ++position) {
        if (!hasInk(position))
            continue;
        if (stretches.empty() || position - stretches.back().second >= gap)
            stretches.emplace_back(position, position);
        stretches.back().second = position + 1;
    }
    return stretches;
}

// Cuts the box into rows, then columns, and so on, until nothing can be cut any more.
void Cut(const Picture &picture, const Box &box, bool intoRows, int failures, std::vector<Box> &parts) {
    if (failures == 2) {
        parts.push_back(box);
        return;
    }
    const auto part = [&](int from, int to) {
        return intoRows ? Box{box.left, from, box.right, to} : Box{from, box.top, to, box.bottom};
    };
    const Stretch range = intoRows ? Stretch(box.top, box.bottom) : Stretch(box.left, box.right);
    const auto stretches = InkStretches(range, intoRows ? RowGap : ColumnGap,
                                        [&](int at) { return HasInk(picture, part(at, at + 1)); });
    const int failed = stretches.size() > 1 ? 0 : failures + 1;
    for (const auto &[from, to] : stretches)
        Cut(picture, part(from, to), !intoRows, failed, parts);
}

Picture CutOut(const Picture &picture, const Box &box) {
    Picture part{box.right - box.left + 2 * Margin, box.bottom - box.top + 2 * Margin, {}};
    part.grey.assign(static_cast<size_t>(part.width) * static_cast<size_t>(part.height), White);
    for (int y = box.top; y < box.bottom; ++y) {
        const ptrdiff_t to = static_cast<ptrdiff_t>(y - box.top + Margin) * part.width + Margin;
        std::copy(picture.Row(y) + box.left, picture.Row(y) + box.right, part.grey.begin() + to);
    }
    return part;
}

std::vector<ReadSymbol> ReadWithZbar(const Picture &picture) {
    using namespace zbar;
    const std::unique_ptr<zbar_image_scanner_t, Release<zbar_image_scanner_t, zbar_image_scanner_destroy>>
        scanner(zbar_image_scanner_create());
    const std::unique_ptr<zbar_image_t, Release<zbar_image_t, zbar_image_destroy>> image(zbar_image_create());
    zbar_image_scanner_set_config(scanner.get(), ZBAR_NONE, ZBAR_CFG_ENABLE, 1);
    zbar_image_scanner_set_config(scanner.get(), ZBAR_QRCODE, ZBAR_CFG_BINARY, 1);
    zbar_image_set_format(image.get(), zbar_fourcc('Y', '8', '0', '0'));
    zbar_image_set_size(image.get(), static_cast<unsigned>(picture.width),
                        static_cast<unsigned>(picture.height));
    zbar_image_set_data(image.get(), picture.grey.data(), picture.grey.size(), nullptr);
    zbar_scan_image(scanner.get(), image.get());
    std::vector<ReadSymbol> found;
    for (const zbar_symbol_t *symbol = zbar_image_first_symbol(image.get()); symbol;
         symbol = zbar_symbol_next(symbol))
        found.push_back({zbar_get_symbol_name(zbar_symbol_get_type(symbol)),
                         {zbar_symbol_get_data(symbol), zbar_symbol_get_data_length(symbol)},
                         "zbar"});
    return found;
}

std::vector<ReadSymbol> ReadWithZxing(const Picture &picture, const ZXing::DecodeHints &hints) {
    const ZXing::ImageView view(picture.grey.data(), picture.width, picture.height, ZXing::ImageFormat::Lum);
    std::vector<ReadSymbol> found;
    for (const ZXing::Result &result : ZXing::ReadBarcodes(view, hints)) {
        const ZXing::ByteArray &bytes = result.bytes();
        if (result.isValid())
            found.push_back({ToString(result.format()), {bytes.begin(), bytes.end()}, "ZXing"});
    }
    return found;
}

ZXing::DecodeHints MatrixHints() {
    return ZXing::DecodeHints().setFormats(ZXing::BarcodeFormat::MatrixCodes);
}

// One symbol at a time: ZXing 1.4 asserts when it finds the same linear symbol twice.
ZXing::DecodeHints LinearHints() {
    ZXing::DecodeHints hints;
    return hints.setFormats(ZXing::BarcodeFormat::LinearCodes)
        .setReturnCodabarStartEnd(true)
        .setMaxNumberOfSymbols(1);
}

// ZXing finds a MaxiCode only when the picture shows nothing else.
ZXing::DecodeHints MaxiCodeHints() {
    return ZXing::DecodeHints().setFormats(ZXing::BarcodeFormat::MaxiCode).setIsPure(true);
}

bool IsBlackRow(const Picture &picture, const Box &box, int y) {
    const uint8_t *row = picture.Row(y);
    return std::all_of(row + box.left, row + box.right, [](uint8_t value) { return value < 128; });
}

bool IsBlackColumn(const Picture &picture, const Box &box, int x) {
    for (int y = box.top; y < box.bottom; ++y)
        if (picture.Row(y)[x] >= 128)
            return false;
    return true;
}

// True when the ink ends in two black lines that meet, as a DataMatrix does. On anything else libdmtx takes
// seconds.
bool HasFinderLines(const Picture &picture, const Box &box) {
    return (IsBlackColumn(picture, box, box.left) || IsBlackColumn(picture, box, box.right - 1)) &&
           (IsBlackRow(picture, box, box.top) || IsBlackRow(picture, box, box.bottom - 1));
}

template <typename T, auto Destroy>
struct DmtxRelease {
    void operator()(T *object) const { Destroy(&object); }
};
using DmtxImagePointer = std::unique_ptr<DmtxImage, DmtxRelease<DmtxImage, dmtxImageDestroy>>;
using DmtxDecodePointer = std::unique_ptr<DmtxDecode, DmtxRelease<DmtxDecode, dmtxDecodeDestroy>>;
using DmtxRegionPointer = std::unique_ptr<DmtxRegion, DmtxRelease<DmtxRegion, dmtxRegionDestroy>>;
using DmtxMessagePointer = std::unique_ptr<DmtxMessage, DmtxRelease<DmtxMessage, dmtxMessageDestroy>>;

std::vector<ReadSymbol> ReadWithDmtx(Picture &picture) {
    const DmtxImagePointer image(
        dmtxImageCreate(picture.grey.data(), picture.width, picture.height, DmtxPack8bppK));
    const DmtxDecodePointer decode(dmtxDecodeCreate(image.get(), 1));
    dmtxDecodeSetProp(decode.get(), DmtxPropScanGap, 8);
    DmtxTime limit = dmtxTimeAdd(dmtxTimeNow(), DmtxLimit);
    std::vector<ReadSymbol> found;
    while (const DmtxRegionPointer region{dmtxRegionFindNext(decode.get(), &limit)}) {
        const DmtxMessagePointer message(dmtxDecodeMatrixRegion(decode.get(), region.get(), DmtxUndefined));
        if (message)
            found.push_back({"DataMatrix", std::string(message->output, message->output + message->outputIdx),
                             "libdmtx"});
    }
    return found;
}

} // namespace

std::vector<ReadSymbol> ReadAll(const uint8_t *grey, int width, int height) {
    const Picture sheet{width, height, {grey, grey + static_cast<ptrdiff_t>(width) * height}};
    std::vector<ReadSymbol> all;
    const auto add = [&all](std::vector<ReadSymbol> found) {
        for (ReadSymbol &symbol : found)
            if (std::find(all.begin(), all.end(), symbol) == all.end())
                all.push_back(std::move(symbol));
    };
    std::vector<Box> parts;
    Cut(sheet, {0, 0, width, height}, true, 0, parts);
    add(ReadWithZbar(sheet));
    add(ReadWithZxing(sheet, MatrixHints()));
    for (const Box &box : parts) {
        Picture part = CutOut(sheet, box);
        add(ReadWithZbar(part));
        for (const ZXing::DecodeHints &hints : {LinearHints(), MatrixHints(), MaxiCodeHints()})
            add(ReadWithZxing(part, hints));
        if (HasFinderLines(sheet, box))
            add(ReadWithDmtx(part));
    }
    return all;
}

} // namespace printer

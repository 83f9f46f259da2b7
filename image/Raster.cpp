#include "image/Compressor.h"
#include "image/PrintBmp.h"
#include "spool/Guarded.h"
#include "spool/Spool.h"

#include <algorithm>
#include <memory>

using namespace nadrel;

namespace {

constexpr int32_t kCannotLoad = -1;

// The spool's capacity and the margin before it, where a spool length below zero stands.
constexpr int64_t kLargestRoom = int64_t{kSpoolCapacity} + kSpoolMargin;

// Bytes that can still be appended through the link; below zero when the spool is past its capacity.
int64_t RoomInSpool() {
    return int64_t{kSpoolCapacity} - SpoolLength;
}

// Makes a picture's commands in a block of their own and appends them whole, or not at all. The block always
// has the spool's size: so the system need not find new memory for each picture, which would take as long as
// a good part of the work, and what is not used is never touched.
template <typename Make>
int32_t AppendCommands(PrintBmp &picture, Make make) {
    if (!LinkIsOpen())
        return AppendAndStoreResult({});
    const auto block = std::make_unique_for_overwrite<uint8_t[]>(kLargestRoom + kCompressorSlack);
    const auto room = static_cast<size_t>(std::clamp<int64_t>(RoomInSpool(), 0, kLargestRoom));
    const int32_t length = make(std::span(block.get(), room));
    picture.FreeBuffers();
    if (length == ERR_SPOOL_LIMIT)
        return ERR_SPOOL_LIMIT;
    if (length < 0)
        return kCannotLoad;
    return AppendAndStoreResult({Bytes(block.get(), static_cast<size_t>(length))});
}

int32_t AppendRaster(const NadrelChar *path, RasterForm form, int32_t x, int32_t y) {
    PrintBmp picture;
    if (picture.Load(path) == 0)
        return kCannotLoad;
    picture.SetPosition(x, y);
    return AppendCommands(picture, [&](std::span<uint8_t> block) { return picture.MakeRaster(form, block); });
}

int32_t AppendCompressedRaster(const NadrelChar *path) {
    PrintBmp picture;
    if (picture.Load(path) == 0)
        return kCannotLoad;
    return AppendCommands(picture,
                          [&](std::span<uint8_t> block) { return picture.MakeCompressedRaster(block); });
}

} // namespace

int32_t BmpSaveSpool(const NadrelChar *path, int32_t x, int32_t y) {
    return Guarded([=] { return AppendRaster(path, RasterForm::positioned, x, y); });
}

void NormalBmpSaveSpool(const NadrelChar *path) {
    Guarded([=] { return AppendRaster(path, RasterForm::normal, 0, 0); });
}

void CompressedBmpSaveSpool(const NadrelChar *path) {
    if (!SpoolIsPastCapacity())
        Guarded([=] { return AppendCompressedRaster(path); });
}

void LoadLogoSaveSpool(int32_t n) {
    AppendDirect(Command(kEsc, 'f', InRangeOrZero(n, 0, 255)));
}

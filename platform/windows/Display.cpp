#include "platform/Display.h"

#include "platform/windows/System.h"

#include <cstring>
#include <vector>

// Palettes, contexts and bitmaps are the system's own objects; a pointer to one is its handle.
namespace platform {

namespace {

constexpr WORD kPaletteVersion = 0x300;
constexpr size_t kMostEntries = 65535;

static_assert(sizeof(PaletteEntry) == sizeof(PALETTEENTRY));
static_assert(static_cast<int>(Capability::rasterCapabilities) == RASTERCAPS);
static_assert(static_cast<int>(Capability::paletteSize) == SIZEPALETTE);
static_assert(kPaletteDevice == RC_PALETTE);

HPALETTE Of(Palette *palette) {
    return reinterpret_cast<HPALETTE>(palette);
}

HDC Of(const DeviceContext *context) {
    return reinterpret_cast<HDC>(const_cast<DeviceContext *>(context));
}

HBITMAP Of(DisplayBitmap *bitmap) {
    return reinterpret_cast<HBITMAP>(bitmap);
}

} // namespace

Palette *CreatePalette(std::span<const PaletteEntry> entries) {
    if (entries.empty() || entries.size() > kMostEntries)
        return nullptr;
    constexpr size_t header = offsetof(LOGPALETTE, palPalEntry);
    std::vector<DWORD> block((header + entries.size_bytes() + sizeof(DWORD) - 1) / sizeof(DWORD));
    auto *const palette = reinterpret_cast<LOGPALETTE *>(block.data());
    palette->palVersion = kPaletteVersion;
    palette->palNumEntries = static_cast<WORD>(entries.size());
    std::memcpy(palette->palPalEntry, entries.data(), entries.size_bytes());
    return reinterpret_cast<Palette *>(::CreatePalette(palette));
}

void DeletePalette(Palette *palette) {
    if (palette != nullptr)
        DeleteObject(Of(palette));
}

DeviceContext *CreateDisplayContext() {
    return reinterpret_cast<DeviceContext *>(CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr));
}

DeviceContext *CreateMemoryContext(DeviceContext *like) {
    return like == nullptr ? nullptr : reinterpret_cast<DeviceContext *>(CreateCompatibleDC(Of(like)));
}

void DeleteContext(DeviceContext *context) {
    if (context != nullptr)
        DeleteDC(Of(context));
}

uint32_t GetCapability(const DeviceContext *context, Capability which) {
    return static_cast<uint32_t>(GetDeviceCaps(Of(context), static_cast<int>(which)));
}

uint32_t GetSystemPaletteEntries(const DeviceContext *context, uint32_t first,
                                 std::span<PaletteEntry> entries) {
    auto *const colours = reinterpret_cast<PALETTEENTRY *>(entries.data());
    return ::GetSystemPaletteEntries(Of(context), first, static_cast<UINT>(entries.size()), colours);
}

Palette *SelectPalette(DeviceContext *context, Palette *palette, bool background) {
    return reinterpret_cast<Palette *>(::SelectPalette(Of(context), Of(palette), background));
}

uint32_t RealizePalette(DeviceContext *context) {
    const UINT changed = ::RealizePalette(Of(context));
    return changed == GDI_ERROR ? 0 : changed;
}

DisplayBitmap *CreateCompatibleBitmap(DeviceContext *context, int32_t width, int32_t height) {
    return reinterpret_cast<DisplayBitmap *>(::CreateCompatibleBitmap(Of(context), width, height));
}

void DeleteBitmap(DisplayBitmap *bitmap) {
    if (bitmap != nullptr)
        DeleteObject(Of(bitmap));
}

void SelectBitmap(DeviceContext *context, DisplayBitmap *bitmap) {
    if (context != nullptr && bitmap != nullptr)
        SelectObject(Of(context), Of(bitmap));
}

} // namespace platform

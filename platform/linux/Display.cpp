#include "platform/Display.h"

#include <new>
#include <utility>
#include <vector>

// A display in memory: its screen shows every colour, so there is no system palette and nothing to realize.
namespace platform {

class Palette {
  public:
    explicit Palette(std::span<const PaletteEntry> given) : entries(given.begin(), given.end()) {}

    std::vector<PaletteEntry> entries;
};

class DisplayBitmap {
  public:
    int32_t width;
    int32_t height;
};

class DeviceContext {
  public:
    Palette *palette = nullptr;
    DisplayBitmap *bitmap = nullptr;
};

Palette *CreatePalette(std::span<const PaletteEntry> entries) {
    constexpr size_t most = 65535;
    if (entries.empty() || entries.size() > most)
        return nullptr;
    try {
        return new Palette(entries);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void DeletePalette(Palette *palette) {
    delete palette;
}

DeviceContext *CreateDisplayContext() {
    return new (std::nothrow) DeviceContext;
}

DeviceContext *CreateMemoryContext(DeviceContext *like) {
    return like == nullptr ? nullptr : new (std::nothrow) DeviceContext;
}

void DeleteContext(DeviceContext *context) {
    delete context;
}

uint32_t GetCapability(const DeviceContext *, Capability) {
    return 0;
}

uint32_t GetSystemPaletteEntries(const DeviceContext *, uint32_t, std::span<PaletteEntry>) {
    return 0;
}

Palette *SelectPalette(DeviceContext *context, Palette *palette, bool) {
    if (context == nullptr || palette == nullptr)
        return nullptr;
    return std::exchange(context->palette, palette);
}

uint32_t RealizePalette(DeviceContext *) {
    return 0;
}

DisplayBitmap *CreateCompatibleBitmap(DeviceContext *context, int32_t width, int32_t height) {
    return context == nullptr ? nullptr : new (std::nothrow) DisplayBitmap{width, height};
}

void DeleteBitmap(DisplayBitmap *bitmap) {
    delete bitmap;
}

void SelectBitmap(DeviceContext *context, DisplayBitmap *bitmap) {
    if (context != nullptr && bitmap != nullptr)
        context->bitmap = bitmap;
}

} // namespace platform

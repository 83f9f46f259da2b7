#pragma once

#include <cstdint>
#include <span>

// What a picture needs of the system's display: palettes, and the contexts they are selected into. Palettes,
// contexts and bitmaps belong to whoever made them and are given back with the call of that name; null is
// ignored everywhere, and every call that gives one gives null when it fails.
namespace platform {

class Palette;
class DeviceContext;
class DisplayBitmap;

struct PaletteEntry {
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    uint8_t flags = 0;

    bool operator==(const PaletteEntry &) const = default;
};

// Fails without entries, and with more than 65535.
Palette *CreatePalette(std::span<const PaletteEntry> entries);
void DeletePalette(Palette *palette);

// A context of the screen.
DeviceContext *CreateDisplayContext();
// A context in memory that is like the one given.
DeviceContext *CreateMemoryContext(DeviceContext *like);
void DeleteContext(DeviceContext *context);

enum class Capability : int32_t { rasterCapabilities = 38, paletteSize = 104 };
inline constexpr uint32_t kPaletteDevice = 0x0100; // the bit of rasterCapabilities

uint32_t GetCapability(const DeviceContext *context, Capability which);

// Copies the system's colours from `first` on and gives their number.
uint32_t GetSystemPaletteEntries(const DeviceContext *context, uint32_t first,
                                 std::span<PaletteEntry> entries);

// Gives the palette that was selected before; null when there was none or nothing was selected. A background
// palette takes what colours are left.
Palette *SelectPalette(DeviceContext *context, Palette *palette, bool background);

// Gives the number of the system's colours that changed.
uint32_t RealizePalette(DeviceContext *context);

DisplayBitmap *CreateCompatibleBitmap(DeviceContext *context, int32_t width, int32_t height);
void DeleteBitmap(DisplayBitmap *bitmap);
// A bitmap is selected into one context at a time, until that is deleted.
void SelectBitmap(DeviceContext *context, DisplayBitmap *bitmap);

} // namespace platform

#include "tests/image/ScriptedDisplay.h"
#include "tests/platform/ScriptedAllocation.h"

#include <algorithm>
#include <utility>

namespace scripted {

Display &TheDisplay() {
    static Display display;
    return display;
}

} // namespace scripted

namespace platform {

using scripted::TheDisplay;

class Palette {
  public:
    int number;
    std::vector<PaletteEntry> entries;
};

class DeviceContext {
  public:
    const char *name;
    Palette *selected;
};

class DisplayBitmap {};

namespace {

void Note(const std::string &call) {
    const scripted::allocation::Exempt own;
    TheDisplay().calls.push_back(call);
}

std::string Name(const Palette *palette) {
    const scripted::allocation::Exempt own;
    return palette == nullptr ? "none" : "palette " + std::to_string(palette->number);
}

std::string Name(const DeviceContext *context) {
    const scripted::allocation::Exempt own;
    return context == nullptr ? "none" : context->name;
}

} // namespace

Palette *CreatePalette(std::span<const PaletteEntry> entries) {
    const scripted::allocation::Exempt own;
    Note("CreatePalette(" + std::to_string(entries.size()) + ")");
    if (entries.empty() || TheDisplay().refusesPalettes)
        return nullptr;
    auto *const palette = new Palette{++TheDisplay().made, {entries.begin(), entries.end()}};
    ++TheDisplay().palettes;
    return palette;
}

void DeletePalette(Palette *palette) {
    const scripted::allocation::Exempt own;
    if (palette == nullptr)
        return;
    --TheDisplay().palettes;
    delete palette;
}

DeviceContext *CreateDisplayContext() {
    const scripted::allocation::Exempt own;
    Note("CreateDisplayContext");
    ++TheDisplay().contexts;
    return new DeviceContext{"display", nullptr};
}

DeviceContext *CreateMemoryContext(DeviceContext *like) {
    const scripted::allocation::Exempt own;
    Note("CreateMemoryContext(" + Name(like) + ")");
    ++TheDisplay().contexts;
    return new DeviceContext{"memory", nullptr};
}

void DeleteContext(DeviceContext *context) {
    const scripted::allocation::Exempt own;
    if (context == nullptr)
        return;
    Note("DeleteContext(" + Name(context) + ")");
    --TheDisplay().contexts;
    delete context;
}

uint32_t GetCapability(const DeviceContext *, Capability which) {
    const scripted::allocation::Exempt own;
    if (which == Capability::paletteSize)
        return static_cast<uint32_t>(TheDisplay().systemPalette.size());
    return 0x2E99U | (TheDisplay().isPaletteDevice ? kPaletteDevice : 0);
}

uint32_t GetSystemPaletteEntries(const DeviceContext *, uint32_t first, std::span<PaletteEntry> entries) {
    const scripted::allocation::Exempt own;
    Note("GetSystemPaletteEntries(" + std::to_string(first) + ", " + std::to_string(entries.size()) + ")");
    const auto &colours = TheDisplay().systemPalette;
    std::copy_n(colours.begin() + first, std::min(entries.size(), colours.size() - first), entries.begin());
    return static_cast<uint32_t>(entries.size());
}

Palette *SelectPalette(DeviceContext *context, Palette *palette, bool background) {
    const scripted::allocation::Exempt own;
    Note("SelectPalette(" + Name(context) + ", " + Name(palette) + (background ? ", background)" : ")"));
    return palette == nullptr ? nullptr : std::exchange(context->selected, palette);
}

uint32_t RealizePalette(DeviceContext *context) {
    const scripted::allocation::Exempt own;
    Note("RealizePalette(" + Name(context) + ")");
    return 0;
}

DisplayBitmap *CreateCompatibleBitmap(DeviceContext *context, int32_t width, int32_t height) {
    const scripted::allocation::Exempt own;
    Note("CreateCompatibleBitmap(" + Name(context) + ", " + std::to_string(width) + ", " +
         std::to_string(height) + ")");
    ++TheDisplay().bitmaps;
    return new DisplayBitmap;
}

void DeleteBitmap(DisplayBitmap *bitmap) {
    const scripted::allocation::Exempt own;
    if (bitmap == nullptr)
        return;
    Note("DeleteBitmap");
    --TheDisplay().bitmaps;
    delete bitmap;
}

void SelectBitmap(DeviceContext *context, DisplayBitmap *) {
    const scripted::allocation::Exempt own;
    Note("SelectBitmap(" + Name(context) + ")");
}

} // namespace platform

const std::vector<platform::PaletteEntry> &scripted::EntriesOf(const platform::Palette *palette) {
    return palette->entries;
}

#include "image/BaseImage.h"

#include "spool/Guarded.h"

namespace nadrel {
namespace {

struct DeleteContext {
    void operator()(platform::DeviceContext *context) const { platform::DeleteContext(context); }
};
using OwnedContext = std::unique_ptr<platform::DeviceContext, DeleteContext>;

} // namespace

int32_t BaseImage::RealizeInto(int32_t, int32_t, platform::DeviceContext *context) {
    if (bits.data() == nullptr)
        return 0;
    platform::Palette *before = nullptr;
    if (palette != nullptr) {
        before = platform::SelectPalette(context, palette->Handle(), true);
        platform::RealizePalette(context);
    } else if (UseSystemPalette(context) != 0) {
        platform::RealizePalette(context);
    }
    if (before != nullptr)
        platform::SelectPalette(context, before, true);
    return 1;
}

int32_t BaseImage::UseSystemPalette(platform::DeviceContext *context) {
    return Guarded([=, this] { return SelectSystemPalette(context); });
}

// The palette of before may still be selected: it goes only when the new one has taken its place.
int32_t BaseImage::SelectSystemPalette(platform::DeviceContext *context) {
    const uint32_t abilities = platform::GetCapability(context, platform::Capability::rasterCapabilities);
    if (colourCount == 0 || (abilities & platform::kPaletteDevice) == 0)
        return 0;
    const uint32_t size = platform::GetCapability(context, platform::Capability::paletteSize);
    if (size == 0)
        return 0;
    LOGPALETTE system(size);
    platform::GetSystemPaletteEntries(context, 0, std::span(system.palPalEntry).first(size));
    CPalette made;
    made.CreatePalette(system);
    platform::SelectPalette(context, made.Handle(), true);
    systemPalette = std::move(made);
    return 1;
}

void BaseImage::PrepareDisplayBitmap() {
    platform::DeleteBitmap(displayBitmap);
    const OwnedContext display(platform::CreateDisplayContext());
    const OwnedContext memory(platform::CreateMemoryContext(display.get()));
    const Size size = GetSize();
    displayBitmap = platform::CreateCompatibleBitmap(display.get(), size.width, size.height);
    platform::SelectBitmap(memory.get(), displayBitmap);
    RealizeInto(0, 0, memory.get());
}

} // namespace nadrel

#pragma once

#include "platform/Display.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace nadrel {

// A palette as the system takes it. There is room for one entry more than it counts.
struct LOGPALETTE {
    explicit LOGPALETTE(uint32_t count)
        : palNumEntries(static_cast<uint16_t>(count)), palPalEntry(count + 1) {}

    uint16_t palVersion = 0x300;
    uint16_t palNumEntries;
    std::vector<platform::PaletteEntry> palPalEntry;

    std::span<const platform::PaletteEntry> Counted() const {
        return std::span(palPalEntry).first(palNumEntries);
    }
};

// A palette object, which owns a palette of the system once one has been created.
class CPalette {
  public:
    // False when the system refuses; a palette of before is given back either way.
    bool CreatePalette(const LOGPALETTE &logical) {
        handle.reset(platform::CreatePalette(logical.Counted()));
        return handle != nullptr;
    }

    // Null until created.
    platform::Palette *Handle() const { return handle.get(); }

  private:
    struct Delete {
        void operator()(platform::Palette *palette) const { platform::DeletePalette(palette); }
    };
    std::unique_ptr<platform::Palette, Delete> handle;
};

} // namespace nadrel

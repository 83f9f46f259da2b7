#include "platform/Memory.h"

#include "platform/windows/System.h"

#include <cstdint>

namespace platform {

namespace {

bool IsReadable(const MEMORY_BASIC_INFORMATION &region) {
    constexpr DWORD kReadable = PAGE_READONLY | PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READ |
                                PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return region.State == MEM_COMMIT && (region.Protect & kReadable) != 0 &&
           (region.Protect & PAGE_GUARD) == 0;
}

} // namespace

// One call for each run of pages that are alike.
bool MemoryIsReadable(const void *bytes, size_t count) {
    auto address = reinterpret_cast<uintptr_t>(bytes);
    const uintptr_t end = address + count;
    if (end < address)
        return false;
    while (address < end) {
        MEMORY_BASIC_INFORMATION region;
        if (VirtualQuery(reinterpret_cast<const void *>(address), &region, sizeof region) == 0 ||
            !IsReadable(region))
            return false;
        address = reinterpret_cast<uintptr_t>(region.BaseAddress) + region.RegionSize;
    }
    return true;
}

} // namespace platform

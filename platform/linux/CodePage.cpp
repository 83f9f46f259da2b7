#include "platform/linux/CodePage.h"

#include "platform/linux/CodePageTables.h"

#include <algorithm>
#include <bit>
#include <span>

namespace platform {

using namespace code_page_tables;

namespace {

uint16_t BytesInOrderedRange(const OrderedRange &range, char16_t character, uint32_t nextValue) {
    const auto pair = static_cast<uint16_t>(character - nextValue - range.bias);
    const int lead = range.lead + pair / range.trailCount;
    return static_cast<uint16_t>(lead << 8 | kTrailBytes[range.firstTrail + pair % range.trailCount]);
}

uint16_t BytesInOrderedRanges(const Page &page, char16_t character, uint32_t nextValue) {
    for (const OrderedRange &range : std::span(kOrderedRanges + page.firstRange, page.rangeCount)) {
        if (range.first <= character && character <= range.last)
            return BytesInOrderedRange(range, character, nextValue);
    }
    return 0;
}

} // namespace

size_t CodePageCount() {
    return kPageCount;
}

uint32_t CodePageNumber(size_t page) {
    return kPages[page].number;
}

std::optional<size_t> FindCodePage(uint32_t number) {
    const std::span pages(kPages, kPageCount);
    const auto found =
        std::find_if(pages.begin(), pages.end(), [=](const Page &page) { return page.number == number; });
    if (found == pages.end())
        return std::nullopt;
    return static_cast<size_t>(found - pages.begin());
}

uint16_t BytesInCodePage(size_t page, char16_t character) {
    const uint8_t rowNumber = kRowNumbers[page * 256 + (character >> 8)];
    if (rowNumber == 0)
        return 0;
    const Row &row = kRows[kPages[page].firstRow + rowNumber - 1];
    const unsigned block = character >> 5 & 7;
    const uint32_t bit = uint32_t{1} << (character & 31);
    const uint32_t listed = row.listed[block];
    const auto before = static_cast<uint32_t>(std::popcount(listed & (bit - 1)));
    const uint32_t value = row.firstValue[block] + before;
    return (listed & bit) != 0 ? kValues[value] : BytesInOrderedRanges(kPages[page], character, value);
}

uint16_t NearBytesInCodePage(size_t page, char16_t character) {
    const uint16_t near = kPages[page].near;
    return near == 0 ? uint16_t{0} : BytesInCodePage(near, character);
}

} // namespace platform

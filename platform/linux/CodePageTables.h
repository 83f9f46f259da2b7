#pragma once

#include <cstddef>
#include <cstdint>

// The constant data that generate_code_pages.py writes: what a code page makes of each code unit from 80 on.
//
// The bytes of a character are one number: below 100 a single byte, else a lead byte (high) and a trail byte
// (low). A page divides the code units into rows of 256. A row lists, one bit each, the characters whose
// bytes stand in kValues, where they follow one another in the order of the characters through all rows of
// the page. Characters that are not listed may still stand in an ordered range of the page.
namespace platform::code_page_tables {

struct Page {
    uint16_t number;    // as Windows counts them: 1252
    uint16_t firstRow;  // in kRows
    uint16_t near;      // in kPages: what it has near characters for; 0 when that is nothing
    uint8_t firstRange; // in kOrderedRanges
    uint8_t rangeCount;
};

struct Row {
    uint32_t listed[8];     // 32 code units each, the lowest in bit 0
    uint16_t firstValue[8]; // in kValues, of the first listed character at or behind the start of the 32
};

// The characters first..last that are not listed have byte pairs that follow one another: trail bytes run
// through trailCount bytes of kTrailBytes, then the lead byte goes up by one. All of them are in the page.
struct OrderedRange {
    char16_t first;
    char16_t last;
    uint16_t bias; // character - place of the next value - bias = byte pairs since the first one of `lead`
    uint16_t firstTrail;
    uint8_t trailCount;
    uint8_t lead;
};

extern const size_t kPageCount;
extern const Page kPages[]; // the default page first; behind the last, what there are near characters for
// 256 for each page: its row for a high byte, 1 for the page's first; 0 where the page has none of the 256.
extern const uint8_t kRowNumbers[];
extern const Row kRows[];
extern const uint16_t kValues[];
extern const OrderedRange kOrderedRanges[];
extern const uint8_t kTrailBytes[];

} // namespace platform::code_page_tables

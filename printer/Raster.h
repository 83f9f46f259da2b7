#pragma once

#include "printer/Bytes.h"

#include <cstddef>

// The run-length form of a raster band of 24 lines: 81..BA, then 1..58 literal bytes; C4..FA, then a byte
// that is repeated 4..58 times.
namespace printer {

struct BandTokens {
    size_t length = 0;     // bytes of the whole tokens found so far
    bool ended = false;    // the tokens end there
    const char *note = ""; // why they end, when not by the ESC of the next command
};

// Finds the end of the tokens: an ESC, a full band, or a byte that begins no token.
BandTokens ScanBand(ByteView bytes, uint8_t lineBytes);

// The band's bytes, at most 24 lines.
Bytes ExpandBand(ByteView tokens, uint8_t lineBytes);

} // namespace printer

#pragma once

#include "image/RasterOutput.h"

#include <cstddef>
#include <cstdint>

namespace nadrel {

// Bytes are compared and copied by words: so many behind a band may be read, and so many behind the output's
// block written.
inline constexpr size_t kCompressorSlack = 72;

// Bytes that one token stands for at most.
inline constexpr size_t kLongestToken = 58;

// Run-length compression of bands. Tokens are a control byte and its data:
//     80 + n, n = 1..58: the n bytes that follow
//     C0 + n, n = 4..58: the byte that follows, n times
class Compressor {
  public:
    explicit Compressor(RasterOutput &block) : output(block) {}

    // Bands of more than 24 lines are compressed 24 at a time. Without lines nothing is written.
    void CompressBand(const uint8_t *band, size_t lineBytes, int32_t lines);

    // Any count; longer ones become several tokens.
    void EmitRun(uint8_t value, size_t count);
    void EmitLiteral(const uint8_t *bytes, size_t count);

  private:
    size_t EmitRunWithLiteral(const uint8_t *band, size_t literal, size_t runBegin, size_t runEnd);
    void EmitFullRuns(uint8_t value, size_t tokens);
    void EmitRunToken(uint8_t value, size_t count);
    void EmitLiteralToken(const uint8_t *bytes, size_t count);

    RasterOutput &output;
};

} // namespace nadrel

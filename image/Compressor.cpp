#include "image/Compressor.h"

#include "image/BandDither.h"
#include "image/EqualNeighbours.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace nadrel {
namespace {

constexpr size_t kShortestRun = 4;
constexpr uint8_t kLiteral = 0x80;
constexpr uint8_t kRun = 0xC0;

// Finds where runs of two and more equal bytes begin and end in a band.
class RunFinder {
  public:
    RunFinder(const uint8_t *bytes, size_t bandBytes) : band(bytes), count(bandBytes) {}

    static constexpr size_t kStep = 2048;

    // Of the next `kStep` bytes: the first and the last byte of each run, in turn, at most as many as there
    // are bytes. A run that goes on behind them has its end told next time. Gives behind the last place
    // written.
    size_t *Find(size_t *places) {
        const size_t end = std::min(at + kStep, count);
        for (; at < end; at += 64) {
            const uint64_t equal = EqualNeighbours(band + at) & WithNeighbour();
            for (uint64_t changes = equal ^ (equal << 1 | inRun); changes != 0; changes &= changes - 1)
                *places++ = at + static_cast<size_t>(std::countr_zero(changes));
            inRun = equal >> 63;
        }
        return places;
    }

    bool AtEnd() const { return at >= count; }

  private:
    // Those of the next 64 bytes that have a byte of the band behind them.
    uint64_t WithNeighbour() const {
        const size_t left = count - at;
        return left > 64 ? ~uint64_t{0} : ~uint64_t{0} >> 1 >> (64 - left);
    }

    const uint8_t *band;
    size_t count;
    size_t at = 0;
    uint64_t inRun = 0; // 1 while a run goes on
};

} // namespace

void Compressor::CompressBand(const uint8_t *band, size_t lineBytes, int32_t lines) {
    for (; lines > kBandLines; lines -= kBandLines, band += kBandLines * lineBytes)
        CompressBand(band, lineBytes, kBandLines);
    const size_t count = lineBytes * static_cast<size_t>(std::max(lines, 0));
    RunFinder finder(band, count);
    size_t places[RunFinder::kStep + 1]; // one for a run that has begun before
    size_t *end = places;
    size_t literal = 0; // where the bytes begin that no token carries yet
    while (!finder.AtEnd()) {
        end = finder.Find(end);
        const size_t *run = places;
        for (; end - run >= 2; run += 2)
            literal = EmitRunWithLiteral(band, literal, run[0], run[1] + 1);
        end = std::copy(run, static_cast<const size_t *>(end), places);
    }
    EmitLiteral(band + literal, count - literal);
}

// Gives where the next literal begins. A run is cut from its front into tokens of 58. A rest of one to three
// bytes begins a literal, which goes on up to the next pair of equal bytes: there a new literal begins even
// where the pair is no run.
size_t Compressor::EmitRunWithLiteral(const uint8_t *band, size_t literal, size_t runBegin, size_t runEnd) {
    const size_t length = runEnd - runBegin;
    const size_t rest = length <= kLongestToken ? length : (length - 1) % kLongestToken + 1;
    const size_t kept = rest < kShortestRun ? rest : 0;
    EmitLiteral(band + literal, runBegin - literal);
    EmitRun(band[runBegin], length - kept);
    return runEnd - kept;
}

void Compressor::EmitRun(uint8_t value, size_t count) {
    if (count > kLongestToken) {
        const size_t full = (count - 1) / kLongestToken;
        EmitFullRuns(value, full);
        count -= full * kLongestToken;
    }
    EmitRunToken(value, count);
}

void Compressor::EmitFullRuns(uint8_t value, size_t tokens) {
    uint8_t *to = output.Claim(2 * tokens);
    for (; to != nullptr && tokens > 0; --tokens, to += 2) {
        to[0] = static_cast<uint8_t>(kRun + kLongestToken);
        to[1] = value;
    }
}

void Compressor::EmitLiteral(const uint8_t *bytes, size_t count) {
    for (; count > kLongestToken; count -= kLongestToken, bytes += kLongestToken)
        EmitLiteralToken(bytes, kLongestToken);
    EmitLiteralToken(bytes, count);
}

// Tokens of no bytes are written as well, over which the next one goes: whether there is one can seldom be
// foreseen, and a branch would take longer.
void Compressor::EmitRunToken(uint8_t value, size_t count) {
    if (uint8_t *const to = output.Claim(count > 0 ? 2 : 0)) {
        to[0] = static_cast<uint8_t>(kRun + count);
        to[1] = value;
    }
}

void Compressor::EmitLiteralToken(const uint8_t *bytes, size_t count) {
    if (uint8_t *const to = output.Claim(count > 0 ? 1 + count : 0)) {
        to[0] = static_cast<uint8_t>(kLiteral + count);
        std::memcpy(to + 1, bytes, 64); // and not `count`, for the same reason
    }
}

} // namespace nadrel

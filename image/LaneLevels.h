#pragma once

#include "image/BandDither.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

// The luminances of a band as its lanes take them (see LaneDither.cpp): 24 bytes a step, one for each row. At
// step i, row k is at column i - 3k.
namespace nadrel {

inline constexpr int32_t kLanes = kBandLines;
inline constexpr int32_t kSkew = 3; // columns that a row is behind the one above it

// Room for the steps of rows of that width, and what a form may write behind them.
size_t LaneLevelBytes(int32_t width);

// Writes the luminances of all rows. `levels` is zero at first; what is no pixel's stays so. (In a band of
// fewer than 24 rows, what belongs to the missing ones means nothing.) Reads nothing outside the rows, which
// need no alignment.
using SpreadLuminances = void (*)(const BandRows &rows, int32_t width, uint8_t *levels);

struct LuminanceForm {
    const char *name;
    SpreadLuminances spread;
};

// All that this machine can run, the fastest last. The first one runs on every machine. They write the same.
std::span<const LuminanceForm> LuminanceForms();

// As the one without a form, which takes the fastest.
std::unique_ptr<BandDither> MakeBandDither(int32_t width, SpreadLuminances form);

} // namespace nadrel

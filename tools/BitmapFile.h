#pragma once

#include "tools/JobLine.h"

#include <filesystem>

namespace tool {

// The widest picture that a printer takes: the bytes of a line of dots are counted by one byte, four at a
// time.
inline constexpr int kWidestPicture = 252 * 8;

// Throws a LineFault unless the file is a bitmap that the library prints whole: of 1 or 24 bits a pixel,
// stored from the bottom row up, 1 to kWidestPicture pixels wide, with nothing missing. `name` is for
// messages.
void RequireBitmap(const std::filesystem::path &file, const std::string &name);

// Whether a bitmap file, of whatever kind, is shorter than its own header says. False for what is none.
bool IsCutOffBitmap(const std::filesystem::path &file);

} // namespace tool

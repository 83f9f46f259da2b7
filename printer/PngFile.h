#pragma once

#include "printer/Bitmap.h"

#include <string>

namespace printer {

// Writes a picture as a black and white PNG of 203 dots an inch, with a white margin around it (dots). The
// file is replaced in one step, so that a reader sees the old picture or the new one. A picture without rows
// becomes one white row. Throws std::runtime_error when the file cannot be written.
void WritePng(const std::string &path, const Bitmap &picture, int margin = 0);

} // namespace printer

#pragma once

#include "fuzz/Library.h"

namespace fuzz {

inline constexpr char16_t kPicture[] = u"picture", kCopy[] = u"copy";

// Operations on images in any order and with any arguments, of which one loads the file kPicture.
void UseImages(Library &library, Input &input);

} // namespace fuzz

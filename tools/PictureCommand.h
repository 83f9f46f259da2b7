#pragma once

#include "tools/BitmapFile.h"
#include "tools/ExitStatus.h"
#include "tools/Sending.h"

#include <optional>
#include <string>

namespace tool {

struct PictureOptions {
    std::string file;
    Destination destination;
    bool compressed = false;
    std::optional<int> width{}; // dots, 1 to kWidestPicture
};

// Prints a picture file. Throws a Fault, a LinkFailure, a CallFailure or a std::system_error.
ExitStatus PictureCommand(const PictureOptions &options);

} // namespace tool

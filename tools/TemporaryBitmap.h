#pragma once

#include "tools/Descriptor.h"
#include "tools/Function.h"
#include "tools/Picture.h"

namespace tool {

// A bitmap file that no one else sees and that is gone with its owner, also where a signal ends the program:
// it has no name in any folder, only the one that the system gives an open file.
class TemporaryBitmap {
  public:
    // Holds some of the picture's rows. Throws std::system_error when it cannot be written.
    TemporaryBitmap(const Picture &picture, int firstRow, int rows);

    Text Name() const;

  private:
    Descriptor file;
};

} // namespace tool

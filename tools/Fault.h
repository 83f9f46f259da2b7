#pragma once

#include <stdexcept>

namespace tool {

// Something that the user gave is wrong, and nothing was sent: sentences of what it is and what was expected.
class Fault : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace tool

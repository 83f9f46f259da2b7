#pragma once

#include <optional>
#include <string>

namespace printer {

// The lines of an input that may end or be a terminal.
class Console {
  public:
    explicit Console(int descriptor) : descriptor_(descriptor) {} // stays the caller's

    int DescriptorToWaitFor() const { return descriptor_; } // -1 once the input has ended

    // Takes what is there without waiting longer than for the first byte; to be called when poll found
    // something.
    void Read();

    std::optional<std::string> NextLine();

  private:
    static constexpr size_t LongestLine = 4096; // bytes; what comes on top is dropped

    int descriptor_;
    std::string text_;
};

} // namespace printer

#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>

namespace tool {

// "1B"
std::string HexDigits(uint8_t byte);

// Writes bytes as text, 16 a line: "1B 40 0A".
class HexDump {
  public:
    explicit HexDump(std::ostream &stream) : out(stream) {}
    HexDump(const HexDump &) = delete;
    ~HexDump() { Finish(); }

    void Add(std::span<const uint8_t> bytes);

    // Ends the last line.
    void Finish();

  private:
    std::ostream &out;
    size_t column = 0;
};

} // namespace tool

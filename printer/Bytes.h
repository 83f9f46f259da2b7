#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace printer {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

// "1B 40": two digits a byte, separated by spaces.
std::string HexOf(ByteView bytes);

} // namespace printer

#pragma once

#include "printer/Commands.h"
#include "printer/Text.h"

#include <string>

namespace printer {

// What a command means, in words with its values; text is read in this code table.
std::string MeaningOf(const Command &command, uint8_t codeTable, TextDecoder &decoder);

} // namespace printer

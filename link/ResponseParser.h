#pragma once

#include <cstdint>

namespace nadrel {

// The parser thread: takes replies out of the ring, classifies them and posts NADREL_PRT_OK. Exit code 1 when
// no link is open any more, 0 when it was told to stop.
uint32_t ParserThreadBody();

} // namespace nadrel

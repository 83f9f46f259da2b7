#pragma once

#include <cstdint>

namespace nadrel {

// The receive thread: moves every byte that arrives on the open link into the ring, until the link is closed.
// Exit code 1.
uint32_t ReceiveThreadBody();

} // namespace nadrel

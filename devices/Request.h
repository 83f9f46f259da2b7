#pragma once

#include "link/Frame.h"
#include "link/Write.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace nadrel {

// Sends a fixed request straight to the link, framed where the link is. Always 0.
template <size_t Count>
int32_t SendRequest(const std::array<uint8_t, Count> &request) {
    if (FramedMode == 0)
        return WriteToLink(request.data(), static_cast<int32_t>(request.size()));
    const auto frame = FrameRequest(request);
    return WriteToLink(frame.data(), static_cast<int32_t>(frame.size()));
}

template <typename... Values>
constexpr auto Request(Values... values) {
    return std::array<uint8_t, sizeof...(Values)>{static_cast<uint8_t>(values)...};
}

} // namespace nadrel

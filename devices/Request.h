#pragma once

#include "link/Frame.h"
#include "link/Write.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace nadrel {

// Writes a request to the link as it is. Always 0.
template <size_t Count>
int32_t WriteWhole(const std::array<uint8_t, Count> &request) {
    return WriteToLink(request.data(), static_cast<int32_t>(request.size()));
}

// Writes a fixed request to the link, framed where the link is. Always 0.
template <size_t Count>
int32_t SendRequest(const std::array<uint8_t, Count> &request) {
    return FramedMode == 0 ? WriteWhole(request) : WriteWhole(FrameRequest(request));
}

template <typename... Values>
constexpr auto Request(Values... values) {
    return std::array<uint8_t, sizeof...(Values)>{static_cast<uint8_t>(values)...};
}

} // namespace nadrel

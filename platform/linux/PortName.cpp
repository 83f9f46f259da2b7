#include "platform/linux/PortName.h"

#include "platform/linux/SystemText.h"

#include <charconv>
#include <string_view>
#include <strings.h>

namespace platform {

namespace {

constexpr std::string_view kDevicePrefix = "\\\\.\\";
constexpr std::string_view kComPrefix = "COM";
constexpr unsigned kMostComPorts = 256;

// The number behind COM without leading zeros, 1..256; 0 for every other name.
unsigned ComNumber(const std::string &name) {
    if (strncasecmp(name.c_str(), kComPrefix.data(), kComPrefix.size()) != 0 ||
        name[kComPrefix.size()] == '0')
        return 0;
    unsigned number = 0;
    const char *end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + kComPrefix.size(), end, number);
    return error == std::errc() && stop == end && number <= kMostComPorts ? number : 0;
}

} // namespace

std::string DevicePath(const char16_t *name) {
    std::string path = ToSystemText(name);
    if (path.starts_with(kDevicePrefix))
        path.erase(0, kDevicePrefix.size());
    const unsigned number = ComNumber(path);
    return number != 0 ? "/dev/ttyS" + std::to_string(number - 1) : path;
}

} // namespace platform

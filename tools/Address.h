#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

// Where printers listen unless told otherwise.
inline constexpr uint16_t kPrinterPort = 9100;

struct Address {
    std::string host; // a name, an IPv4 address, or an IPv6 address without brackets
    uint16_t port = kPrinterPort;
};

// HOST or HOST:PORT; an IPv6 address before a port stands in brackets: [::1]:9100. Nothing for anything else.
std::optional<Address> ParseAddress(std::string_view text);

// Why no connection came about: the system's reason, asked by trying again for at most two seconds.
std::string AddressTrouble(const Address &address);

} // namespace tool

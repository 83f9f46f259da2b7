#include "tools/Notification.h"

#include "tools/HexDump.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <sstream>

namespace tool {
namespace {

constexpr uint16_t kLongestReply = 2048;

bool CarriesData(uint8_t kind) {
    return kind == 'D' || kind == 'S' || kind == 'T' || kind == 'N';
}

// A status of a framed reply is a byte; no buffer has such an address.
bool IsByte(intptr_t lParam) {
    return lParam >= 0 && lParam <= 0xFF;
}

std::string LocalTime(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(time));
    const auto milliseconds =
        duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count() % 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 32> text{};
    const size_t end = std::strftime(text.data(), text.size(), "%H:%M:%S", &local);
    std::snprintf(text.data() + end, text.size() - end, ".%03d", static_cast<int>(milliseconds));
    return text.data();
}

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

} // namespace

Notification CopyNotification(uint32_t wParam, intptr_t lParam) {
    Notification copy{.time = std::chrono::system_clock::now(),
                      .kind = static_cast<uint8_t>(wParam >> 16),
                      .length = static_cast<uint16_t>(wParam),
                      .data = {},
                      .status = {}};
    if (copy.kind == 'S' && IsByte(lParam)) {
        copy.status = static_cast<uint8_t>(lParam);
    } else if (CarriesData(copy.kind) && lParam != 0) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(lParam);
        copy.data.assign(bytes, bytes + std::min(copy.length, kLongestReply));
    }
    return copy;
}

std::string KindName(uint8_t kind) {
    switch (kind) {
    case 0x03:
        return "ETX";
    case 0x04:
        return "EOT";
    case 0x06:
        return "ACK";
    case 0x15:
        return "NAK";
    case 0x18:
        return "CAN";
    default:
        return Printable({kind});
    }
}

std::string Printable(const std::vector<uint8_t> &bytes) {
    std::string text;
    for (const uint8_t byte : bytes)
        text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
    return text;
}

std::string Hex(const std::vector<uint8_t> &bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        if (!text.empty())
            text += ' ';
        text += HexDigits(byte);
    }
    return text;
}

std::string Line(const Notification &notification) {
    const std::string start = LocalTime(notification.time) + "  " + Padded(KindName(notification.kind), 3) +
                              "  " + Padded(std::to_string(notification.length), 4);
    if (notification.status)
        return start + "  status " + HexDigits(*notification.status);
    if (!CarriesData(notification.kind))
        return start;
    return start + "  \"" + Printable(notification.data) + "\"  " + Hex(notification.data);
}

} // namespace tool

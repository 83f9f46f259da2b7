#pragma once

#include "api/NadrelHost.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What the printer said, as the library tells it.
namespace tool {

struct Notification {
    std::chrono::system_clock::time_point time;
    uint8_t kind;
    uint16_t length;               // as the library gives it: without data, that of the reply before
    std::vector<uint8_t> data;     // a copy
    std::optional<uint8_t> status; // the value that a framed status carries
};

// Copies a notification together with the library's buffer, which the next reply overwrites: within the
// handler only.
Notification CopyNotification(uint32_t wParam, intptr_t lParam);

// 'D' as D; ACK, NAK, CAN, ETX and EOT by their names.
std::string KindName(uint8_t kind);

// Bytes as text; what is not printable ASCII shows as a full stop.
std::string Printable(const std::vector<uint8_t> &bytes);

// "1B 40"
std::string Hex(const std::vector<uint8_t> &bytes);

// Time, kind, length, text and bytes in one line, without its end.
std::string Line(const Notification &notification);

// Has a handler called for every notification, with the context, for as long as this lives. When it ends, the
// handler does not run any more.
class Listening {
  public:
    Listening(NadrelNotificationHandler handler, void *context) { SetNotificationHandler(handler, context); }
    Listening(const Listening &) = delete;
    ~Listening() { SetNotificationHandler(nullptr, nullptr); }
};

} // namespace tool

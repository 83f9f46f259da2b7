#pragma once

#include "link/ResponseParser.h"
#include "tests/LibraryTest.h"

// Runs the parser on what a test has put into the queue.
namespace nadrel {

// As long as one pass of the parser that finds a reply takes, without the pause that may be within the reply.
inline constexpr uint64_t kPassMs = 205;

inline std::string KindOf(const scripted::Notification &notification) {
    const auto kind = static_cast<uint8_t>(notification.Kind());
    return kind >= 'A' && kind <= 'Z' ? std::string(1, static_cast<char>(kind)) : HexOf({kind});
}

inline std::string BufferOf(const scripted::Notification &notification) {
    if (notification.lParam == reinterpret_cast<intptr_t>(&ResponseBuffer[0]))
        return "response " + HexOf(notification.bytes);
    if (notification.lParam == reinterpret_cast<intptr_t>(&CardDataBuffer[0]))
        return "card " + HexOf(notification.bytes);
    return "value " + std::to_string(notification.lParam);
}

class ResponseParserTest : public LibraryTest {
  protected:
    ResponseParserTest() { OpenSerialLink(); }

    std::optional<uint32_t> Parse(uint64_t milliseconds) {
        return os.RunThread(ParserThreadBody, milliseconds);
    }

    // Kind, length, buffer and bytes, or value: D 3 response 41 42 43.
    Calls Replies() const {
        Calls lines;
        for (const scripted::Notification &one : os.Notifications())
            lines.push_back(KindOf(one) + " " + std::to_string(one.Length()) + " " + BufferOf(one));
        return lines;
    }

    Calls RepliesTo(const std::vector<uint8_t> &bytes, uint64_t milliseconds = 2000) {
        Queue(bytes);
        Parse(milliseconds);
        return Replies();
    }

    static std::vector<uint8_t> Long(size_t length, std::vector<uint8_t> bytes) {
        bytes.resize(length, 'x');
        return bytes;
    }
};

} // namespace nadrel

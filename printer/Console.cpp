#include "printer/Console.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <unistd.h>

namespace printer {

void Console::Read() {
    std::array<char, 512> buffer;
    const ssize_t got = read(descriptor_, buffer.data(), buffer.size());
    if (got == 0 || (got < 0 && errno != EINTR && errno != EAGAIN))
        descriptor_ = -1;
    else if (got > 0)
        text_.append(buffer.data(),
                     std::min(static_cast<size_t>(got), LongestLine - std::min(LongestLine, text_.size())));
}

std::optional<std::string> Console::NextLine() {
    const size_t end = text_.find('\n');
    if (end == text_.npos) {
        if (text_.size() >= LongestLine)
            text_.clear();
        return std::nullopt;
    }
    std::string line = text_.substr(0, end);
    text_.erase(0, end + 1);
    return line;
}

} // namespace printer

#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

// A call as a line of text: Name(12, -1, 0x1F, "UTF-16 text", b"bytes", null). In strings \xHH and \uHHHH
// stand for one unit each; other characters are ASCII.
namespace hosts {

// Arguments are machine words: numbers, and addresses of strings, which live as long as the line.
class CallLine {
  public:
    // Throws std::runtime_error for a line that is no call.
    explicit CallLine(std::string_view line);

    const std::string &Name() const { return name; }
    const std::vector<intptr_t> &Arguments() const { return arguments; }

  private:
    void TakeArgument(std::string_view &rest);
    std::u16string TakeString(std::string_view &rest);

    std::string name;
    std::vector<intptr_t> arguments;
    std::deque<std::u16string> texts;
    std::deque<std::string> byteTexts;
};

} // namespace hosts

// A host program that loads the library's file by name and calls what the lines on its standard input say. It
// answers each line with one on its standard output, and writes a line for each notification.

#include "tests/hosts/CallLine.h"
#include "tests/hosts/System.h"

#include <atomic>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <stdexcept>

namespace hosts {
namespace {

std::string Hex(const uint8_t *bytes, size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", bytes[i]);
        text += digits;
    }
    return text;
}

void Say(const std::string &line) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

std::atomic<bool> closesWhenTold = false;

// lParam is an address but for the framed replies, whose values are bytes.
void TellNotification(uint32_t wParam, intptr_t lParam) {
    char head[64];
    std::snprintf(head, sizeof head, "told %02X %u ", wParam >> 16, wParam & 0xFFFF);
    if (closesWhenTold)
        Find("ClosePrinter")(0, 0, 0, 0, 0, 0, 0, 0);
    const bool isValue = lParam >= 0 && lParam <= 0xFF;
    Say(head +
        (isValue ? std::to_string(lParam) : Hex(reinterpret_cast<const uint8_t *>(lParam), wParam & 0xFFFF)));
}

intptr_t Call(const std::string &line) {
    const CallLine call(line);
    const Function function = Find(call.Name());
    if (function == nullptr)
        throw std::runtime_error("no function " + call.Name());
    intptr_t words[8] = {};
    for (size_t i = 0; i < call.Arguments().size() && i < std::size(words); ++i)
        words[i] = call.Arguments()[i];
    return function(words[0], words[1], words[2], words[3], words[4], words[5], words[6], words[7]);
}

// What every UTF-16 unit becomes in front of an A, a line each.
std::string ConvertEveryUnit() {
    const Function convert = Find("U2A");
    for (unsigned unit = 1; unit < 0x10000; ++unit) {
        const char16_t text[] = {static_cast<char16_t>(unit), u'A', 0};
        const std::string bytes =
            reinterpret_cast<const char *>(convert(reinterpret_cast<intptr_t>(text), 0, 0, 0, 0, 0, 0, 0));
        std::printf("%04X %s\n", unit,
                    Hex(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size()).c_str());
    }
    return "done";
}

std::string Loaded(const std::string &file) {
    std::string error;
    return Load(file, error) ? "loaded" : error;
}

bool TakeWord(std::string &line, const std::string &word) {
    if (!line.starts_with(word + " "))
        return false;
    line.erase(0, word.size() + 1);
    return true;
}

std::string Answer(std::string line) {
    if (TakeWord(line, "load"))
        return Loaded(line);
    if (line == "unload")
        return Unload() ? "unloaded" : "still loaded";
    if (line == "convert every unit")
        return ConvertEveryUnit();
    if (TakeWord(line, "handle of"))
        return std::to_string(Call(line));
    if (TakeWord(line, "text of")) {
        const std::string text = reinterpret_cast<const char *>(Call(line));
        return Hex(reinterpret_cast<const uint8_t *>(text.data()), text.size());
    }
    if (line == "listen") {
        Listen(TellNotification);
        return "listening";
    }
    if (line == "close when told") {
        closesWhenTold = true;
        return "closes";
    }
    return line.find('(') != line.npos ? std::to_string(static_cast<int32_t>(Call(line))) : AnswerOwn(line);
}

int Serve() {
    for (std::string line; std::getline(std::cin, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (line == "exit")
            return 0;
        try {
            Say("= " + Answer(line));
        } catch (const std::exception &error) {
            Say(std::string("! ") + error.what());
        }
    }
    return 0;
}

} // namespace
} // namespace hosts

int main() {
    return hosts::Serve();
}

#include "tests/printer/Decoding.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace printer::testing {

Bytes BytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

std::vector<Command> DecodeAll(ByteView stream, uint32_t spoilEvery) {
    std::vector<Command> commands;
    StreamDecoder decoder(spoilEvery);
    decoder.Feed(stream, commands);
    decoder.Finish(commands);
    return commands;
}

std::string Describe(const Command &command) {
    const std::string note = command.note.empty() ? "" : " (" + command.note + ")";
    return std::to_string(command.offset) + " " + std::string(command.form->name) + " " +
           HexOf(command.bytes) + note;
}

std::vector<std::string> DescribeAll(const std::vector<Command> &commands) {
    std::vector<std::string> lines;
    for (const Command &command : commands)
        lines.push_back(Describe(command));
    return lines;
}

Bytes Framed(ByteView payload) {
    char head[16];
    std::snprintf(head, sizeof head, "D1%04zu", payload.size());
    head[6] = '\0'; // five digits: only four of them are sent
    Bytes frame = BytesOf(std::string("\0\xC0", 2) + head);
    Bytes content(payload.begin(), payload.end());
    uint8_t even = 0, odd = 0;
    for (size_t i = 0; i < payload.size(); i += 2)
        even ^= payload[i];
    for (size_t i = 1; i < payload.size(); i += 2)
        odd ^= payload[i];
    content.push_back(even);
    content.push_back(odd);
    for (const uint8_t byte : content) {
        const bool escaped = byte == 0xC0 || byte == 0xC1 || byte == 0x7D;
        if (escaped)
            frame.push_back(0x7D);
        frame.push_back(escaped ? static_cast<uint8_t>(byte ^ 0x20) : byte);
    }
    frame.push_back(0xC1);
    return frame;
}

uint32_t TestSeed(uint32_t usual) {
    const char *seed = std::getenv("NADREL_TEST_SEED");
    return seed ? static_cast<uint32_t>(std::strtoul(seed, nullptr, 10)) : usual;
}

std::string HowToRepeat(uint32_t seed) {
    const auto *test = ::testing::UnitTest::GetInstance()->current_test_info();
    return "repeat with: NADREL_TEST_SEED=" + std::to_string(seed) +
           " printer_tests --gtest_filter=" + test->test_suite_name() + "." + test->name();
}

} // namespace printer::testing

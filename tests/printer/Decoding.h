#pragma once

#include "printer/StreamDecoder.h"

#include <string>
#include <string_view>
#include <vector>

// What the tests of the printer share: byte strings in, commands as words out.
namespace printer::testing {

using namespace std::string_literals;

// The bytes of a literal, zeros included when it is written with s or sv at its end.
Bytes BytesOf(std::string_view text);

std::vector<Command> DecodeAll(ByteView stream, uint32_t spoilEvery = 0);

// "0 text 48 69": offset, name, bytes; then the note in parentheses, if any.
std::string Describe(const Command &command);
std::vector<std::string> DescribeAll(const std::vector<Command> &commands);

// The framed form of a payload, written from the description of the transport, not with the printer's code.
Bytes Framed(ByteView payload);

// The seed of a random test: from NADREL_TEST_SEED if that is set, so that a failure can be repeated.
uint32_t TestSeed(uint32_t usual);

// The command that repeats the running random test.
std::string HowToRepeat(uint32_t seed);

} // namespace printer::testing

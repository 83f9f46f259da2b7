#pragma once

#include "tests/endtoend/Host.h"

#include <filesystem>
#include <optional>

namespace hosts {

struct RowCall {
    std::string call;
    std::optional<int32_t> result;
};

// A line of rows.txt: what is called, and the bytes that reach the printer.
struct Row {
    size_t line = 0;
    std::vector<RowCall> calls;
    endtoend::Bytes bytes;
    bool isPrinted = false; // PrintSpool follows the calls
    endtoend::Form form = endtoend::Form::plain;
};

// Throws std::runtime_error for a line that is none. The files that the rows need are written into the
// folder.
std::vector<Row> ReadRows(const std::filesystem::path &file, const std::filesystem::path &folder);

} // namespace hosts

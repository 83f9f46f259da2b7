#include "fuzz/Input.h"

#include "tools/Job.h"

// A job file, read and checked. Nothing is called.

namespace {

void CheckCalls(const tool::Job &job) {
    fuzz::Require(!job.calls.empty(), "a job without a call");
    size_t line = 0;
    for (const tool::Call &call : job.calls) {
        fuzz::Require(call.line > line || (call.line == 0 && &call == &job.calls.back()),
                      "calls out of order");
        fuzz::Require(call.arguments.size() == call.entry.function->parameters.size(),
                      "a call with another number of arguments");
        line = call.line;
    }
}

// A line each, and not without end.
void CheckMessages(const std::string &messages) {
    const auto lines = static_cast<size_t>(std::count(messages.begin(), messages.end(), '\n')) + 1;
    fuzz::Require(lines <= tool::kMostFaultsShown + 1, "too many messages");
    for (size_t at = 0; at != std::string::npos; at = messages.find('\n', at))
        fuzz::Require(messages.compare(at == 0 ? 0 : ++at, 4, "job:") == 0,
                      "a message does not name the file");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    const std::string text(bytes, bytes + count);
    try {
        CheckCalls(tool::CheckJob("job", text, tool::LibraryCatalogue()));
    } catch (const tool::JobFault &fault) {
        CheckMessages(fault.what());
    }
    return 0;
}

#include "tools/JobRun.h"

namespace tool {
namespace {

std::string Location(const Job &job, const Call &call) {
    return call.line == 0 ? job.file + ": at the end of the job: "
                          : job.file + ':' + std::to_string(call.line) + ": ";
}

// What the call answered and what that means; nothing when it did what it should.
std::optional<std::string> FailureOf(const Call &call) {
    const Function &function = *call.entry.function;
    const ResultRule &rule = call.entry.group->results;
    const int32_t before = rule.mustAppend ? rule.mustAppend->spoolLength() : 0;
    const auto result = function(call.arguments);
    if (result) {
        const auto meaning = rule.Failure(*result);
        if (meaning)
            return " answered " + std::to_string(*result) + ": " + std::string(*meaning);
    }
    if (rule.mustAppend && rule.mustAppend->spoolLength() == before)
        return " appended nothing: " + std::string(rule.mustAppend->meaning);
    return std::nullopt;
}

} // namespace

void RunJob(const Job &job) {
    for (const Call &call : job.calls) {
        const Function &function = *call.entry.function;
        if (const auto failure = FailureOf(call))
            throw CallFailure(Location(job, call) + std::string(function.name) +
                              (function.parameters.empty() ? "()" : "(...)") + *failure);
    }
}

} // namespace tool

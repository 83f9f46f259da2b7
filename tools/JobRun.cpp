#include "tools/JobRun.h"

namespace tool {
namespace {

std::string Location(const Job &job, const Call &call) {
    return call.line == 0 ? job.file + ": at the end of the job: "
                          : job.file + ':' + std::to_string(call.line) + ": ";
}

} // namespace

void RunJob(const Job &job) {
    for (const Call &call : job.calls) {
        const Function &function = *call.entry.function;
        const auto result = function(call.arguments);
        const auto failure = result ? call.entry.group->results.Failure(*result) : std::nullopt;
        if (failure)
            throw CallFailure(Location(job, call) + std::string(function.name) +
                              (function.parameters.empty() ? "()" : "(...)") + " answered " +
                              std::to_string(*result) + ": " + std::string(*failure));
    }
}

} // namespace tool

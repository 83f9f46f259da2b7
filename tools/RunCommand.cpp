#include "tools/RunCommand.h"

#include "tools/JobRun.h"

namespace tool {

ExitStatus RunCommand(const RunOptions &options) {
    const Job job = CheckJob(options.job, ReadJobFile(options.job), LibraryCatalogue());
    SendTo(options.destination, [&job] { RunJob(job); });
    return ExitStatus::fine;
}

} // namespace tool

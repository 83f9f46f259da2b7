#include "tests/endtoend/Resources.h"

#include "tests/linux/Support.h"

#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

namespace endtoend {
namespace {

std::chrono::microseconds TimeOf(const timeval &time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

} // namespace

Resources UsedNow() {
    return {RunningThreads(), OpenDescriptors()};
}

std::chrono::microseconds ProcessorTime() {
    rusage used;
    getrusage(RUSAGE_SELF, &used);
    return TimeOf(used.ru_utime) + TimeOf(used.ru_stime);
}

size_t AllocatedBytes() {
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

size_t ResidentBytes() {
    size_t total = 0;
    size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace endtoend

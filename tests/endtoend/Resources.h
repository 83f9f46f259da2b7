#pragma once

#include <chrono>
#include <cstddef>
#include <ostream>

// What the running process uses.
namespace endtoend {

struct Resources {
    std::ptrdiff_t threads = 0;
    std::ptrdiff_t descriptors = 0;

    bool operator==(const Resources &) const = default;
};
inline std::ostream &operator<<(std::ostream &out, const Resources &used) {
    return out << used.threads << " threads, " << used.descriptors << " descriptors";
}

Resources UsedNow();

// Processor time of all threads since the start.
std::chrono::microseconds ProcessorTime();

// Bytes that malloc has given and not got back; 0 where a sanitizer has taken its place.
size_t AllocatedBytes();

// Bytes of memory in use.
size_t ResidentBytes();

} // namespace endtoend

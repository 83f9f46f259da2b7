#include "tests/platform/ScriptedAllocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool armed = false;
thread_local size_t lowest = 0;
thread_local size_t highest = 0;

void *AllocateOrNull(size_t size) noexcept {
    if (armed && size >= lowest && size <= highest) {
        armed = false;
        return nullptr;
    }
    return std::malloc(size == 0 ? 1 : size);
}

void *Allocate(size_t size) {
    void *const memory = AllocateOrNull(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

namespace scripted::allocation {

void FailNext(size_t atLeast, size_t atMost) {
    lowest = atLeast;
    highest = atMost;
    armed = true;
}

void Allow() {
    armed = false;
}

} // namespace scripted::allocation

void *operator new(size_t size) {
    return Allocate(size);
}

void *operator new[](size_t size) {
    return Allocate(size);
}

void *operator new(size_t size, const std::nothrow_t &) noexcept {
    return AllocateOrNull(size);
}

void *operator new[](size_t size, const std::nothrow_t &) noexcept {
    return AllocateOrNull(size);
}

void operator delete(void *memory) noexcept {
    std::free(memory);
}

void operator delete[](void *memory) noexcept {
    std::free(memory);
}

void operator delete(void *memory, size_t) noexcept {
    std::free(memory);
}

void operator delete[](void *memory, size_t) noexcept {
    std::free(memory);
}

#include "tests/platform/ScriptedAllocation.h"

#include <cstdlib>
#include <new>
#include <utility>

#if defined(__clang__) && defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define NADREL_OPERATOR_NEW_IS_TAKEN
#endif
#endif

namespace {

thread_local int failIn = 0; // allocations within the range; 0: none fails
thread_local size_t lowest = 0;
thread_local size_t highest = 0;
thread_local bool failsOnward = false;
thread_local int failures = 0;
thread_local size_t firstFailure = 0;
thread_local int exempt = 0;

} // namespace

namespace scripted::allocation {

bool CanFail() {
#ifdef NADREL_OPERATOR_NEW_IS_TAKEN
    return false;
#else
    return true;
#endif
}

void FailNext(size_t atLeast, size_t atMost) {
    FailNth(1, atLeast, atMost);
}

void FailNth(int nth, size_t atLeast, size_t atMost, bool onward) {
    lowest = atLeast;
    highest = atMost;
    failIn = nth;
    failsOnward = onward;
    failures = 0;
    firstFailure = 0;
}

int Failures() {
    return failures;
}

size_t FirstFailure() {
    return firstFailure;
}

bool Allow() {
    return std::exchange(failIn, 0) > 0 && failures == 0;
}

Exempt::Exempt() {
    ++exempt;
}

Exempt::~Exempt() {
    --exempt;
}

Counted::Counted() : exempted(std::exchange(exempt, 0)) {}

Counted::~Counted() {
    exempt = exempted;
}

} // namespace scripted::allocation

#ifndef NADREL_OPERATOR_NEW_IS_TAKEN

namespace {

bool Fails(size_t size) {
    if (exempt != 0 || failIn == 0 || size < lowest || size > highest)
        return false;
    const bool fails = failIn == 1;
    if (!fails || !failsOnward)
        --failIn;
    if (fails && ++failures == 1)
        firstFailure = size;
    return fails;
}

void *AllocateOrNull(size_t size) noexcept {
    if (Fails(size))
        return nullptr;
    return std::malloc(size == 0 ? 1 : size);
}

void *Allocate(size_t size) {
    void *const memory = AllocateOrNull(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

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

#endif

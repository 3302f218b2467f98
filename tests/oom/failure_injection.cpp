// The replaced allocation functions. The library is linked statically into
// this program with --wrap for malloc, calloc and realloc, so its calls reach
// the __wrap_ functions below; operator new is replaced for the whole process,
// the standard library's own allocations included. Only one thread allocates
// while a failure is armed.
#include "failure_injection.h"

#include <cstddef>
#include <cstdlib>
#include <new>

extern "C" {
void* __real_malloc(std::size_t size);                     // NOLINT(bugprone-reserved-identifier)
void* __real_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
void* __real_realloc(void* block, std::size_t size);       // NOLINT(bugprone-reserved-identifier)
}

namespace {

bool armed = false;
tovtest::AllocationKind armedKind = tovtest::AllocationKind::kCxx;
std::uint64_t remaining = 0;
bool failsForGood = false;
bool fired = false;

// True for the allocation that is to fail, and for every later one when the
// failure is persistent.
bool failsNow(tovtest::AllocationKind kind) {
    if (!armed || kind != armedKind) {
        return false;
    }
    if (fired) {
        return failsForGood;
    }
    if (--remaining > 0) {
        return false;
    }
    fired = true;
    return true;
}

void* newBlock(std::size_t size) {
    if (failsNow(tovtest::AllocationKind::kCxx)) {
        throw std::bad_alloc();
    }
    // Straight to the C library, so that a C++ allocation never counts as a C one.
    void* block = __real_malloc(size == 0 ? 1 : size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void* newBlockOrNull(std::size_t size) noexcept {
    try {
        return newBlock(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

namespace tovtest {

void armAllocationFailure(AllocationKind kind, std::uint64_t nth, bool persistent) {
    armedKind = kind;
    remaining = nth;
    failsForGood = persistent;
    fired = false;
    armed = nth > 0;
}

bool disarmAllocationFailure() {
    armed = false;
    return fired;
}

bool pauseAllocationFailure() {
    const bool wasArmed = armed;
    armed = false;
    return wasArmed;
}

void resumeAllocationFailure(bool wasArmed) {
    armed = wasArmed;
}

}  // namespace tovtest

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
void* __wrap_malloc(std::size_t size) {
    return failsNow(tovtest::AllocationKind::kC) ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return failsNow(tovtest::AllocationKind::kC) ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size) {
    return failsNow(tovtest::AllocationKind::kC) ? nullptr : __real_realloc(block, size);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)
}

// The replaceable forms of operator new and delete, all over the functions above.
void* operator new(std::size_t size) {
    return newBlock(size);
}
void* operator new[](std::size_t size) {
    return newBlock(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
    return newBlockOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
    return newBlockOrNull(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t& /*unused*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t& /*unused*/) noexcept {
    std::free(block);
}

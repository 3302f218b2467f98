// Fails one chosen allocation, for tests that sweep every allocation of a
// call in turn. This program replaces the global operator new and links with
// malloc, calloc and realloc wrapped (see tests/oom/CMakeLists.txt), so that
// both the library's C++ allocations and its C ones pass through here.
#ifndef TOV_TESTS_OOM_FAILURE_INJECTION_H_
#define TOV_TESTS_OOM_FAILURE_INJECTION_H_

#include <cstdint>

namespace tovtest {

enum class AllocationKind {
    kCxx,  // operator new, in every form, throws std::bad_alloc
    kC,    // malloc, calloc and realloc give NULL
};

// Counts the allocations of one kind from now on and fails the `nth` (from
// 1); every other allocation succeeds, or, when `persistent`, every one after
// the nth fails too, as when memory is truly gone. Nothing fails until armed.
void armAllocationFailure(AllocationKind kind, std::uint64_t nth, bool persistent = false);

// Stops counting. True when the armed failure happened since arming; false
// when the call made fewer allocations of that kind, so that the sweep is done.
bool disarmAllocationFailure();

// Lets allocations pass uncounted for a while, such as while a test writes
// down an answer; false when nothing was armed.
bool pauseAllocationFailure();
void resumeAllocationFailure(bool wasArmed);

}  // namespace tovtest

#endif  // TOV_TESTS_OOM_FAILURE_INJECTION_H_

// failing_memory.h: lets the allocations of a test's step fail, one by one.
#pragma once

#include <cstdint>
#include <functional>

// A step of a test, and what stands around it. Nothing else of the test runs while allocations may fail.
struct MemoryStep {
    std::function<uint64_t()> run;     // gives a result code
    std::function<void()> undo;        // after a run that succeeded
    std::function<void()> checkFail;   // after a run that failed
};

/** Calls of realloc so far. */
[[nodiscard]] uint64_t reallocations();

/** Bytes of the largest block that was asked for since the call before. */
[[nodiscard]] uint64_t largestAllocation();

/** Runs a step with its n-th allocation failing, n = 1, 2, ... until no allocation is left to fail; then again with the
    n-th and all later ones failing. Every failed run must give this code. @return failed runs */
uint64_t failEveryAllocation(const MemoryStep& step, uint64_t code);

// failing_memory.cpp: the linker leads the program's calls of malloc and its like through the functions below
// (base.cmake); the language's own allocations come by way of operator new.
#include "tests/base/posix/failing_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

static uint64_t allocationsUntilFailure = 0;   // 0: none fails
static bool laterOnesFailToo = false;
static uint64_t failedAllocations = 0;
static uint64_t reallocationCount = 0;
static uint64_t largestSize = 0;

static bool failsNow(uint64_t size)
{
    largestSize = std::max(largestSize, size);
    if (allocationsUntilFailure == 0) return false;
    if (allocationsUntilFailure > 1) {
        allocationsUntilFailure--;
        return false;
    }
    if (!laterOnesFailToo) allocationsUntilFailure = 0;
    failedAllocations++;
    return true;
}

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t size);
void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* memory, size_t size);

void* __wrap_malloc(size_t size)
{
    return failsNow(size) ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size)
{
    return failsNow(count * size) ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* memory, size_t size)
{
    reallocationCount++;
    return failsNow(size) ? nullptr : __real_realloc(memory, size);
}
}

void* operator new(size_t size)
{
    void* memory = failsNow(size) ? nullptr : __real_malloc(size ? size : 1);
    if (!memory) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

uint64_t reallocations()
{
    return reallocationCount;
}

uint64_t largestAllocation()
{
    return std::exchange(largestSize, 0);
}

uint64_t failEveryAllocation(const MemoryStep& step, uint64_t code)
{
    uint64_t failures = 0;
    for (const bool all : { false, true }) {
        for (uint64_t n = 1;; n++) {
            laterOnesFailToo = all;
            failedAllocations = 0;
            allocationsUntilFailure = n;
            const uint64_t result = step.run();
            allocationsUntilFailure = 0;
            if (result) {
                EXPECT_EQ(result, code) << n;
                EXPECT_NE(failedAllocations, 0u) << n;
                failures++;
                step.checkFail();
            } else {
                step.undo();
            }
            if (failedAllocations == 0) break;
        }
    }
    return failures;
}

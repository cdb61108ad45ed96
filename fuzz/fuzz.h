// fuzz.h: what a fuzz target gives: one function that takes any bytes, and seeds to start from.
#pragma once

#include "tests/support/files.h"

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/** Good inputs of the target, from which mutations begin. */
std::vector<Bytes> fuzzSeeds();

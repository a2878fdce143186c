// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the run, so that the fuzzer keeps the input, when a promise does not hold.
inline void check(bool holds, const char* promise) {
  if (!holds) {
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
  }
}

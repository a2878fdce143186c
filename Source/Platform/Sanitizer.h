// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

// Whether the address sanitizer watches this build, and what is told to it. Memory that was poisoned may not be
// touched; in other builds nothing happens.
#if defined(__SANITIZE_ADDRESS__)
#define TARN_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ADDRESS_SANITIZER 1
#endif
#endif
#if !defined(TARN_ADDRESS_SANITIZER)
#define TARN_ADDRESS_SANITIZER 0
#endif

#if TARN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

inline constexpr bool kHasAddressSanitizer = TARN_ADDRESS_SANITIZER != 0;

inline void poisonMemory([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t size) {
#if TARN_ADDRESS_SANITIZER
  __asan_poison_memory_region(start, size);
#endif
}

inline void unpoisonMemory([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t size) {
#if TARN_ADDRESS_SANITIZER
  __asan_unpoison_memory_region(start, size);
#endif
}

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Mach/Pages.h"
#include "Platform/Sanitizer.h"

// In a build with the address sanitizer a page that cannot be touched lies behind memory that was allocated anywhere,
// and users may poison parts of their memory. Elsewhere none of this costs anything.
namespace mach {

#if TARN_ADDRESS_SANITIZER

inline std::size_t guardSize() {
  return pageSize();
}

// The memory has its guard.
void noteGuard(const Range& memory);

// The range is given back: nothing in it stays poisoned, and guards whose memory ends in it go too.
void liftGuards(const Range& range);

#else

inline std::size_t guardSize() {
  return 0;
}
inline void noteGuard(const Range&) {}
inline void liftGuards(const Range&) {}

#endif

}  // namespace mach

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Sanitizer.h"

#include <cstddef>
#include <cstdint>

class VortoBitmap;

// Memory goes on behind the pixels of a bitmap, to the end of its allocation. In a build with the address sanitizer it
// may not be touched there, so that a kernel which runs past the last pixel is stopped. Operations whose rule names
// bytes behind the pixels (those of another layout, or of another bitmap's size) say which before they touch them; from
// then on these bytes count as pixels. Elsewhere none of this costs anything.
namespace vorto {

#if TARN_ADDRESS_SANITIZER
void poisonSlack(const VortoBitmap& bitmap);  // after its memory was made
#else
inline void poisonSlack(const VortoBitmap&) {}
#endif

// The rule of an operation names these bytes, all of them allocated.
inline void declareTouched(const std::uint8_t* start, std::size_t size) {
  unpoisonMemory(start, size);
}

}  // namespace vorto

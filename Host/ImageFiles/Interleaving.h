// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace host {

// Puts the samples of four planes beside each other, pixel by pixel.
inline void interleave(const std::array<const float*, 4>& planes, std::size_t count, float* pixels) {
  std::size_t i = 0;
#if defined(__SSE2__)
  for (; i + 4 <= count; i += 4) {
    __m128 first = _mm_loadu_ps(planes[0] + i);
    __m128 second = _mm_loadu_ps(planes[1] + i);
    __m128 third = _mm_loadu_ps(planes[2] + i);
    __m128 fourth = _mm_loadu_ps(planes[3] + i);
    _MM_TRANSPOSE4_PS(first, second, third, fourth);
    _mm_storeu_ps(pixels + i * 4, first);
    _mm_storeu_ps(pixels + i * 4 + 4, second);
    _mm_storeu_ps(pixels + i * 4 + 8, third);
    _mm_storeu_ps(pixels + i * 4 + 12, fourth);
  }
#endif
  for (; i < count; ++i) {
    for (std::size_t plane = 0; plane < 4; ++plane) pixels[i * 4 + plane] = planes[plane][i];
  }
}

// The other way round, of pixels with one to four samples.
inline void separate(const float* pixels, std::size_t samplesPerPixel, std::size_t count, float* const* planes) {
  std::size_t i = 0;
#if defined(__SSE2__)
  for (; samplesPerPixel == 4 && i + 4 <= count; i += 4) {
    __m128 first = _mm_loadu_ps(pixels + i * 4);
    __m128 second = _mm_loadu_ps(pixels + i * 4 + 4);
    __m128 third = _mm_loadu_ps(pixels + i * 4 + 8);
    __m128 fourth = _mm_loadu_ps(pixels + i * 4 + 12);
    _MM_TRANSPOSE4_PS(first, second, third, fourth);
    _mm_storeu_ps(planes[0] + i, first);
    _mm_storeu_ps(planes[1] + i, second);
    _mm_storeu_ps(planes[2] + i, third);
    _mm_storeu_ps(planes[3] + i, fourth);
  }
#endif
  for (; i < count; ++i) {
    for (std::size_t plane = 0; plane < samplesPerPixel; ++plane)
      planes[plane][i] = pixels[i * samplesPerPixel + plane];
  }
}

}  // namespace host

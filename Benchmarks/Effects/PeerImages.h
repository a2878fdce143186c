// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCBitmap.h"

#include <memory>

#if VORTO_HAVE_PIXMAN
#include <pixman.h>
#endif
#if VORTO_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

// Frames as the peers take them, in the same memory.

#if VORTO_HAVE_PIXMAN
using PixmanImage = std::unique_ptr<pixman_image_t, decltype(&pixman_image_unref)>;

inline PixmanImage pixmanImage(const VortoBitmap& bitmap) {
  const int width = static_cast<int>(bitmap.width);
  return {
      pixman_image_create_bits(PIXMAN_a8b8g8r8, width, static_cast<int>(bitmap.height),
                               reinterpret_cast<std::uint32_t*>(static_cast<std::uint8_t*>(bitmap.data)), width * 4),
      &pixman_image_unref};
}
#endif

#if VORTO_HAVE_OPENCV
inline cv::Mat matrixOf(const VortoBitmap& bitmap) {
  const int depth = bitmap.bitsPerChannel == 8 ? CV_8U : bitmap.bitsPerChannel == 16 ? CV_16U : CV_32F;
  return {static_cast<int>(bitmap.height), static_cast<int>(bitmap.width), CV_MAKETYPE(depth, 4),
          static_cast<std::uint8_t*>(bitmap.data)};
}
#endif

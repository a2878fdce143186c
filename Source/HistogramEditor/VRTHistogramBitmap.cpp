// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramBitmap.h"

#include <algorithm>
#include <cstdint>

namespace {

std::uint32_t wholePixels(double length) {
  constexpr double most = 4294967295.0;
  return length > 0 ? static_cast<std::uint32_t>(std::min(length, most)) : 0;
}

}  // namespace

VRTHistogramBitmap VRTMakeHistogramBitmap(NSSize size) {
  const std::uint32_t width = wholePixels(size.width);
  const std::uint32_t pitch = (width * 4 + 15) & ~std::uint32_t{15};
  VRTHistogramBitmap bitmap;
  bitmap.representation = std::make_shared<NSBitmapImageRep>(width, wholePixels(size.height), pitch);
  bitmap.image = std::make_shared<NSImage>(size);
  bitmap.image->addRepresentation(bitmap.representation);
  return bitmap;
}

NSPoint VRTHistogramPictureOrigin(NSRect rect, NSRect bounds, bool isFlipped) {
  return {rect.origin.x + VRTHistogramFrameWidth,
          isFlipped ? bounds.size.height - VRTHistogramFrameWidth : rect.origin.y + VRTHistogramFrameWidth};
}

NSSize VRTHistogramPictureSize(NSRect rect) {
  return {rect.size.width - 2 * VRTHistogramFrameWidth, rect.size.height - 2 * VRTHistogramFrameWidth};
}

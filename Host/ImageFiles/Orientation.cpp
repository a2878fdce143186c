// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Orientation.h"

#include <cstring>
#include <utility>

namespace host {
namespace {

// The tag says where the stored first row and first column lie in the upright picture.
//   tag                  1     2      3       4       5     6      7       8
//   first row            top   top    bottom  bottom  left  right  right   left
//   first column         left  right  right   left    top   top    bottom  bottom
bool rowsBecomeColumns(int orientation) {
  return orientation >= 5;
}
bool storedFromTheRight(int orientation) {
  return orientation == 2 || orientation == 3 || orientation == 6 || orientation == 7;
}
bool storedFromTheBottom(int orientation) {
  return orientation == 3 || orientation == 4 || orientation == 7 || orientation == 8;
}

}  // namespace

void makeUpright(ImagePixels* image, int orientation) {
  if (orientation < 2 || orientation > 8) return;
  ImagePixels upright;
  upright.width = image->width;
  upright.height = image->height;
  upright.sample = image->sample;
  upright.depth = image->depth;
  upright.alpha = image->alpha;
  if (rowsBecomeColumns(orientation)) std::swap(upright.width, upright.height);
  allocatePixels(upright);

  const std::size_t pixelSize = 4 * bytesPerSample(image->sample);
  for (std::size_t row = 0; row < image->height; ++row) {
    for (std::size_t column = 0; column < image->width; ++column) {
      std::size_t x = column;
      std::size_t y = row;
      if (rowsBecomeColumns(orientation)) std::swap(x, y);
      if (storedFromTheRight(orientation)) x = upright.width - 1 - x;
      if (storedFromTheBottom(orientation)) y = upright.height - 1 - y;
      std::memcpy(upright.bytes.get() + (y * upright.width + x) * pixelSize,
                  image->bytes.get() + (row * image->width + column) * pixelSize, pixelSize);
    }
  }
  *image = std::move(upright);
}

}  // namespace host

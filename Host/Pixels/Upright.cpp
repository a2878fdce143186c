// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Upright.h"

#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

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

MutableBitmapRef upright(const MutableBitmapRef& stored, int orientation, const std::string& what) {
  if (orientation < 2 || orientation > 8) return stored;
  const bool turned = rowsBecomeColumns(orientation);
  auto picture = newUnsetBitmap(turned ? stored->height : stored->width, turned ? stored->width : stored->height,
                                stored->formatCode, what);
  const std::size_t pixelSize = TCPixelLayoutOf(stored->formatCode).bytesPerPixel();
  for (std::size_t row = 0; row < stored->height; ++row) {
    const std::uint8_t* from = stored->data + row * bytesPerRow(*stored);
    for (std::size_t column = 0; column < stored->width; ++column, from += pixelSize) {
      std::size_t x = column;
      std::size_t y = row;
      if (turned) std::swap(x, y);
      if (storedFromTheRight(orientation)) x = picture->width - 1 - x;
      if (storedFromTheBottom(orientation)) y = picture->height - 1 - y;
      std::memcpy(picture->data + y * bytesPerRow(*picture) + x * pixelSize, from, pixelSize);
    }
  }
  return picture;
}

}  // namespace host

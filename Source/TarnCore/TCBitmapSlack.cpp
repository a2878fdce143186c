// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmapSlack.h"

#include "TarnCore/TCBitmapRows.h"

#if TARN_ADDRESS_SANITIZER

namespace vorto {

void poisonSlack(const VortoBitmap& bitmap) {
  const std::uint64_t pixels = boundedProduct(rowBytesOf(bitmap), bitmap.height);
  const std::uint64_t allocated = bitmap.accessibleBytes();
  if (pixels < allocated) poisonMemory(bitmap.data + pixels, allocated - pixels);
}

}  // namespace vorto

#endif

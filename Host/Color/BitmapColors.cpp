// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/BitmapColors.h"

#include "TarnCore/TCBitmap.h"

namespace host {

MutableBitmapRef convertedBitmap(ColorConversion& conversion, const VortoBitmap& bitmap, AlphaKind alpha,
                                 const std::string& what) {
  MutableBitmapRef result = newUnsetBitmap(bitmap.width, bitmap.height, formatCodeOf(SampleType::Float), what);
  conversion.convert(reinterpret_cast<const std::byte*>(bitmap.data), {sampleTypeOfResult(bitmap, what), alpha},
                     reinterpret_cast<float*>(result->data), std::size_t{bitmap.width} * bitmap.height);
  return result;
}

}  // namespace host

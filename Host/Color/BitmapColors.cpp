// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/BitmapColors.h"

#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

namespace host {

MutableBitmapRef convertedBitmap(ColorConversion& conversion, const VortoBitmap& bitmap, AlphaKind alpha,
                                 SampleType sample, const std::string& what, std::uint64_t* cut) {
  const VortoBitmap* source = &bitmap;
  MutableBitmapRef ordered;
  if (bitmap.formatCode == VortoPixelFormat::ARGB8) {
    ordered = newUnsetBitmap(bitmap.width, bitmap.height, VortoPixelFormat::RGBA8, what);
    ordered->copyWithSwizzleARGBToRGBA(bitmap);
    source = ordered.get();
  }
  const PixelFormat from{sampleTypeOfResult(*source, what), alpha};
  const bool isInPlace = ordered && sample == SampleType::UInt8;
  MutableBitmapRef result =
      isInPlace ? ordered : newUnsetBitmap(bitmap.width, bitmap.height, formatCodeOf(sample), what);
  const std::uint64_t pixels = std::uint64_t{bitmap.width} * bitmap.height;
  const auto count =
      conversion.convert(reinterpret_cast<const std::byte*>(source->data), from,
                         reinterpret_cast<std::byte*>(result->data), {sample, AlphaKind::Premultiplied}, pixels);
  if (cut) *cut += count;
  return result;
}

}  // namespace host

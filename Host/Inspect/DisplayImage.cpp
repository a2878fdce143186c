// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/DisplayImage.h"

#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>

namespace host {
namespace {

unsigned byteOf(std::uint8_t value) {
  return value;
}

unsigned byteOf(std::uint16_t value) {
  return (value + 128u) / 257u;
}

unsigned byteOf(float value) {
  if (!(value > 0.0f)) return 0;  // NaN too
  return value >= 1.0f ? 255 : static_cast<unsigned>(value * 255.0f + 0.5f);
}

template <class Sample>
QImage shown(const VortoBitmap& bitmap, const VortoPixelLayout& order) {
  QImage image(static_cast<int>(bitmap.width), static_cast<int>(bitmap.height), QImage::Format_ARGB32_Premultiplied);
  if (image.isNull()) return image;
  unsigned everyAlpha = 255;
  const auto* sample = reinterpret_cast<const Sample*>(bitmap.data);
  for (int y = 0; y < image.height(); ++y) {
    auto* pixel = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x, sample += 4) {
      const unsigned alpha = byteOf(sample[order.alpha]);
      everyAlpha &= alpha;
      const unsigned red = std::min(byteOf(sample[order.red]), alpha);
      const unsigned green = std::min(byteOf(sample[order.green]), alpha);
      const unsigned blue = std::min(byteOf(sample[order.blue]), alpha);
      pixel[x] = alpha << 24 | red << 16 | green << 8 | blue;
    }
  }
  if (everyAlpha == 255) image.reinterpretAsFormat(QImage::Format_RGB32);
  return image;
}

}  // namespace

QImage displayImage(const BitmapRef& bitmap) {
  if (!bitmap || !bitmap->data) return {};
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap->formatCode);
  if (!layout.isExchanged) return {};
  switch (layout.number) {
    case VortoPixelLayout::Number::Byte:
      return shown<std::uint8_t>(*bitmap, layout);
    case VortoPixelLayout::Number::Word:
      return shown<std::uint16_t>(*bitmap, layout);
    case VortoPixelLayout::Number::Float:
      return shown<float>(*bitmap, layout);
    default:
      return {};
  }
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayRows.h"

#include "Host/Pixels/Bitmaps.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <cstring>

namespace host {
namespace {

using Float4 = float __attribute__((vector_size(16)));
using Int4 = int __attribute__((vector_size(16)));

template <class Sample>
const Sample* samplesAt(const VortoBitmap& bitmap, std::uint32_t y, std::uint32_t x) {
  return reinterpret_cast<const Sample*>(bitmap.data) + 4 * (std::size_t{y} * bitmap.width + x);
}

void loadArgb(const std::uint8_t* source, std::size_t pixels, float* target) {
  for (std::size_t i = 0; i < 4 * pixels; i += 4) {
    for (std::size_t c = 0; c < 4; ++c) target[i + c] = static_cast<float>(source[i + (c + 1) % 4]) * (1.0f / 255);
  }
}

template <bool isArgb>
bool copyColors(const std::uint8_t* source, std::size_t pixels, QRgb* target) {
  unsigned everyAlpha = 255;
  for (std::size_t i = 0; i < pixels; ++i, source += 4) {
    const unsigned alpha = source[isArgb ? 0 : 3];
    everyAlpha &= alpha;
    const unsigned red = std::min<unsigned>(source[isArgb ? 1 : 0], alpha);
    const unsigned green = std::min<unsigned>(source[isArgb ? 2 : 1], alpha);
    const unsigned blue = std::min<unsigned>(source[isArgb ? 3 : 2], alpha);
    target[i] = alpha << 24 | red << 16 | green << 8 | blue;
  }
  return everyAlpha == 255;
}

}  // namespace

void loadRow(const VortoBitmap& bitmap, std::uint32_t y, std::uint32_t x, std::size_t pixels, float* target) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap.formatCode);
  switch (layout.number) {
    case VortoPixelLayout::Number::Word: {
      const auto* source = samplesAt<std::uint16_t>(bitmap, y, x);
      for (std::size_t i = 0; i < 4 * pixels; ++i) target[i] = static_cast<float>(source[i]) * (1.0f / 65535);
      break;
    }
    case VortoPixelLayout::Number::Float:
      std::memcpy(target, samplesAt<float>(bitmap, y, x), pixels * sizeof(Float4));
      break;
    default: {
      const auto* source = samplesAt<std::uint8_t>(bitmap, y, x);
      if (layout.alpha == 0) return loadArgb(source, pixels, target);
      for (std::size_t i = 0; i < 4 * pixels; ++i) target[i] = static_cast<float>(source[i]) * (1.0f / 255);
    }
  }
}

void addRow(const float* source, float weight, std::size_t floats, float* target, bool isFirst) {
  if (isFirst) {
    for (std::size_t i = 0; i < floats; ++i) target[i] = weight * source[i];
  } else {
    for (std::size_t i = 0; i < floats; ++i) target[i] += weight * source[i];
  }
}

void isolateChannel(ChannelView channels, float* row, std::size_t pixels) {
  if (channels == ChannelView::Color) return;
  const auto channel = static_cast<std::size_t>(channels) - static_cast<std::size_t>(ChannelView::Red);
  for (float* pixel = row; pixel != row + 4 * pixels; pixel += 4) {
    if (channels != ChannelView::Luminance) pixel[0] = pixel[1] = pixel[2] = pixel[channel];
    pixel[3] = 1;
  }
}

bool roundRow(const float* row, std::size_t pixels, QRgb* target) {
  unsigned everyAlpha = 255;
  for (std::size_t i = 0; i < pixels; ++i) {
    Float4 value;
    std::memcpy(&value, row + 4 * i, sizeof value);
    value = value > 0.0f ? value : Float4{};  // NaN too
    value = value < 1.0f ? value : Float4{1, 1, 1, 1};
    const Int4 bytes = __builtin_convertvector(value * 255.0f + 0.5f, Int4);
    const int alpha = bytes[3];
    const Int4 colors = bytes < alpha ? bytes : Int4{alpha, alpha, alpha, alpha};
    everyAlpha &= static_cast<unsigned>(alpha);
    target[i] = static_cast<unsigned>(alpha << 24 | colors[0] << 16 | colors[1] << 8 | colors[2]);
  }
  return everyAlpha == 255;
}

bool copyRow(const VortoBitmap& bitmap, std::uint32_t y, std::uint32_t x, std::size_t pixels, ChannelView channels,
             QRgb* target) {
  const auto* source = samplesAt<std::uint8_t>(bitmap, y, x);
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap.formatCode);
  if (channels == ChannelView::Color) {
    return layout.alpha == 0 ? copyColors<true>(source, pixels, target) : copyColors<false>(source, pixels, target);
  }
  const int order[] = {layout.red, layout.green, layout.blue, layout.alpha};
  const int channel = order[static_cast<std::size_t>(channels) - static_cast<std::size_t>(ChannelView::Red)];
  for (std::size_t i = 0; i < pixels; ++i)
    target[i] = 0xFF000000u | source[4 * i + static_cast<std::size_t>(channel)] * 0x010101u;
  return true;
}

}  // namespace host

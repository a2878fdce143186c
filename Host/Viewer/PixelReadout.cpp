// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/PixelReadout.h"

#include "Host/Pixels/Alpha.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace host {
namespace {

double maximumOf(Depth depth) {
  return depth == Depth::Bits8 ? 255 : depth == Depth::Bits16 ? 65535 : 1;
}

bool isFloatDepth(Depth depth) {
  return depth == Depth::Half || depth == Depth::Float;
}

// Red, green, blue and alpha as they lie in memory; without premultiplication when it is to be taken off.
template <class Sample>
std::array<double, 4> samplesOf(const VortoBitmap& bitmap, std::size_t index, bool isStraightened) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap.formatCode);
  const auto* source = reinterpret_cast<const Sample*>(bitmap.data) + 4 * index;
  Sample pixel[] = {source[layout.red], source[layout.green], source[layout.blue], source[layout.alpha]};
  if (isStraightened) unpremultiplyRow(pixel, 1);
  return {static_cast<double>(pixel[0]), static_cast<double>(pixel[1]), static_cast<double>(pixel[2]),
          static_cast<double>(pixel[3])};
}

struct BitmapPixel {
  std::array<double, 4> samples;
  Depth depth;  // of the bitmap
};

// The pixel of the bitmap that lies at (x, y) of a picture of that size.
std::optional<BitmapPixel> pixelAt(const BitmapRef& bitmap, PictureSize size, std::int64_t x, std::int64_t y,
                                   bool isStraightened) {
  if (!bitmap || !bitmap->data || !TCPixelLayoutOf(bitmap->formatCode).isExchanged) return std::nullopt;
  const auto along = [](std::int64_t at, std::uint32_t from, std::uint32_t to) {
    const auto middle = (static_cast<double>(at) + 0.5) * to / from;
    return std::min(static_cast<std::size_t>(middle), std::size_t{to} - 1);
  };
  const std::size_t index = along(y, size.height, bitmap->height) * bitmap->width + along(x, size.width, bitmap->width);
  switch (TCPixelLayoutOf(bitmap->formatCode).number) {
    case VortoPixelLayout::Number::Byte:
      return BitmapPixel{samplesOf<std::uint8_t>(*bitmap, index, isStraightened), Depth::Bits8};
    case VortoPixelLayout::Number::Word:
      return BitmapPixel{samplesOf<std::uint16_t>(*bitmap, index, isStraightened), Depth::Bits16};
    default:
      return BitmapPixel{samplesOf<float>(*bitmap, index, isStraightened), Depth::Float};
  }
}

PixelValues valuesOf(const BitmapPixel& pixel, Channels channels, AlphaKind alpha) {
  PixelValues values;
  values.depth = pixel.depth;
  values.alpha = alpha;
  const int colors = isGray(channels) ? 1 : 3;
  for (int c = 0; c < colors; ++c)
    values.samples[static_cast<std::size_t>(c)] = pixel.samples[static_cast<std::size_t>(c)];
  values.count = colors;
  if (hasAlpha(channels)) values.samples[static_cast<std::size_t>(values.count++)] = pixel.samples[3];
  return values;
}

std::optional<PixelValues> valuesBefore(const PreviewPicture& picture, std::int64_t x, std::int64_t y) {
  const bool isOfFile = picture.fileBefore != nullptr;
  const auto pixel = pixelAt(isOfFile ? picture.fileBefore : picture.before, picture.size, x, y, false);
  if (!pixel) return std::nullopt;
  const PictureInfo* const info = picture.fileInfo.get();
  if (!info) return valuesOf(*pixel, Channels::RGBA, AlphaKind::Premultiplied);
  const AlphaKind alpha = !hasAlpha(info->channels) ? AlphaKind::None
                          : isOfFile                ? info->alpha
                                                    : AlphaKind::Premultiplied;
  PixelValues values = valuesOf(*pixel, info->channels, alpha);
  if (values.depth == Depth::Float && info->depth == Depth::Half) values.depth = Depth::Half;
  return values;
}

}  // namespace

std::array<double, 4> PixelValues::asParts() const {
  const double full = maximumOf(depth);
  const bool isGray = count < 3;
  const bool hasAlpha = count == 2 || count == 4;
  const auto color = [&](std::size_t c) { return samples[isGray ? 0 : c] / full; };
  return {color(0), color(1), color(2), hasAlpha ? samples[static_cast<std::size_t>(count) - 1] / full : 1.0};
}

bool PixelValues::isOutside() const {
  return isFloatDepth(depth) &&
         std::any_of(samples.begin(), samples.begin() + count, [](double v) { return !(v >= 0 && v <= 1); });
}

std::optional<PixelReadout> readPixel(const PreviewPicture& picture, std::int64_t x, std::int64_t y) {
  if (x < 0 || y < 0 || x >= picture.size.width || y >= picture.size.height) return std::nullopt;
  PixelReadout readout;
  readout.x = static_cast<std::uint32_t>(x);
  readout.y = static_cast<std::uint32_t>(y);
  readout.isApproximate = !picture.isFull;
  readout.before = valuesBefore(picture, x, y);
  if (const auto after = pixelAt(picture.result, picture.size, x, y, true)) {
    readout.after = valuesOf(*after, Channels::RGBA, AlphaKind::Straight);
  }
  return readout;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Alpha.h"

#include "Host/Pixels/Bitmaps.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace host {
namespace {

template <class Sample>
constexpr Sample fullAlpha() {
  if constexpr (std::is_same_v<Sample, float>) {
    return 1.0f;
  } else {
    return std::numeric_limits<Sample>::max();
  }
}

// The product of two samples by the largest, rounded: it never lies half way, as the largest is odd.
constexpr std::uint32_t scaled(std::uint8_t color, std::uint8_t alpha) {
  const std::uint32_t product = std::uint32_t{color} * alpha + 128;
  return (product + (product >> 8)) >> 8;
}
constexpr std::uint32_t scaled(std::uint16_t color, std::uint16_t alpha) {
  const std::uint32_t product = std::uint32_t{color} * alpha + 32768;
  return (product + (product >> 16)) >> 16;
}

// Quotients below twice the largest sample are so far apart that division in floating point, cut off, is exact; above
// it they are limited.
using DividendOf8 = float;
using DividendOf16 = double;

template <class Sample>
void divideRow(Sample* samples, std::size_t pixels) {
  using Real = std::conditional_t<sizeof(Sample) == 1, DividendOf8, DividendOf16>;
  constexpr auto full = static_cast<Real>(fullAlpha<Sample>());
  for (std::size_t i = 0; i < 4 * pixels; i += 4) {
    const auto alpha = static_cast<Real>(samples[i + 3]);
    const auto halfAlpha = static_cast<Sample>(samples[i + 3] / 2);
    const auto half = static_cast<Real>(halfAlpha);
    const Real divisor = std::max(alpha, Real{1});
    const Real visible = alpha > 0 ? Real{1} : Real{0};
    for (std::size_t c = 0; c < 3; ++c) {
      const Real straight = (static_cast<Real>(samples[i + c]) * full + half) / divisor;
      samples[i + c] = static_cast<Sample>(static_cast<std::int32_t>(std::min(straight, full) * visible));
    }
  }
}

template <class Function>
auto withSamples(const VortoBitmap& bitmap, Function function) {
  switch (TCPixelLayoutOf(bitmap.formatCode).number) {
    case VortoPixelLayout::Number::Word:
      return function(std::uint16_t{});
    case VortoPixelLayout::Number::Float:
      return function(float{});
    default:
      return function(std::uint8_t{});
  }
}

template <class Sample, class Function>
bool ofAllRows(const VortoBitmap& bitmap, Function function) {
  for (std::size_t y = 0; y < bitmap.height; ++y) {
    if (!function(reinterpret_cast<const Sample*>(bitmap.data + y * bytesPerRow(bitmap)))) return false;
  }
  return true;
}

template <class Sample>
bool isOpaqueFrom(const Sample* samples, std::size_t pixels, std::size_t alpha) {
  bool opaque = true;
  for (std::size_t i = 0; i < pixels; ++i) opaque &= samples[4 * i + alpha] == fullAlpha<Sample>();
  return opaque;
}

// Floats that went through another space and back may differ by what a half rounds away.
template <class Sample>
bool areEqual(Sample a, Sample b) {
  if constexpr (std::is_same_v<Sample, float>) {
    return a == b || std::abs(a - b) <= 0x1p-11F * std::max(std::abs(a), std::abs(b));
  } else {
    return a == b;
  }
}

template <class Sample>
bool isGrayFrom(const Sample* samples, std::size_t pixels, std::size_t red) {
  bool gray = true;
  for (std::size_t i = 0; i < pixels; ++i) {
    const Sample* const pixel = samples + 4 * i + red;
    gray &= areEqual(pixel[0], pixel[1]);
    gray &= areEqual(pixel[1], pixel[2]);
  }
  return gray;
}

}  // namespace

template <class Sample>
void premultiplyRow(Sample* samples, std::size_t pixels) {
  if (isOpaqueRow(samples, pixels)) return;
  for (std::size_t i = 0; i < 4 * pixels; i += 4) {
    const Sample alpha = samples[i + 3];
    for (std::size_t c = 0; c < 3; ++c) samples[i + c] = static_cast<Sample>(scaled(samples[i + c], alpha));
  }
}

template <>
void premultiplyRow(float* samples, std::size_t pixels) {
  for (std::size_t i = 0; i < 4 * pixels; i += 4) {
    const float alpha = samples[i + 3];
    if (alpha == 1.0f) continue;  // also keeps infinities
    for (std::size_t c = 0; c < 3; ++c) samples[i + c] = alpha == 0.0f ? 0.0f : samples[i + c] * alpha;
  }
}

template <class Sample>
void unpremultiplyRow(Sample* samples, std::size_t pixels) {
  if (!isOpaqueRow(samples, pixels)) divideRow(samples, pixels);
}

template <>
void unpremultiplyRow(float* samples, std::size_t pixels) {
  for (std::size_t i = 0; i < 4 * pixels; i += 4) {
    const float alpha = samples[i + 3];
    if (alpha == 1.0f) continue;
    for (std::size_t c = 0; c < 3; ++c) samples[i + c] = alpha == 0.0f ? 0.0f : samples[i + c] / alpha;
  }
}

template <class Sample>
bool isOpaqueRow(const Sample* samples, std::size_t pixels) {
  return isOpaqueFrom(samples, pixels, 3);
}

template <class Sample>
bool isGrayRow(const Sample* samples, std::size_t pixels) {
  return isGrayFrom(samples, pixels, 0);
}

template void premultiplyRow(std::uint8_t*, std::size_t);
template void premultiplyRow(std::uint16_t*, std::size_t);
template void unpremultiplyRow(std::uint8_t*, std::size_t);
template void unpremultiplyRow(std::uint16_t*, std::size_t);
template bool isOpaqueRow(const std::uint8_t*, std::size_t);
template bool isOpaqueRow(const std::uint16_t*, std::size_t);
template bool isOpaqueRow(const float*, std::size_t);
template bool isGrayRow(const std::uint8_t*, std::size_t);
template bool isGrayRow(const std::uint16_t*, std::size_t);
template bool isGrayRow(const float*, std::size_t);

void premultiply(VortoBitmap& bitmap) {
  withSamples(bitmap, [&](auto sample) {
    using Sample = decltype(sample);
    for (std::size_t y = 0; y < bitmap.height; ++y) {
      premultiplyRow(reinterpret_cast<Sample*>(bitmap.data + y * bytesPerRow(bitmap)), bitmap.width);
    }
  });
}

bool isOpaque(const VortoBitmap& bitmap) {
  const auto alpha = static_cast<std::size_t>(TCPixelLayoutOf(bitmap.formatCode).alpha);
  return withSamples(bitmap, [&](auto sample) {
    using Sample = decltype(sample);
    return ofAllRows<Sample>(bitmap, [&](const Sample* row) { return isOpaqueFrom(row, bitmap.width, alpha); });
  });
}

bool isGray(const VortoBitmap& bitmap) {
  const auto red = static_cast<std::size_t>(TCPixelLayoutOf(bitmap.formatCode).red);
  return withSamples(bitmap, [&](auto sample) {
    using Sample = decltype(sample);
    return ofAllRows<Sample>(bitmap, [&](const Sample* row) { return isGrayFrom(row, bitmap.width, red); });
  });
}

}  // namespace host

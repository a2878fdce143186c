// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

#include <optional>
#include <string>

namespace host {

struct PictureSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool operator==(const PictureSize&) const = default;
};

// How pixels between pixels are computed. All but Nearest widen with the ratio of the sizes where a picture becomes
// smaller, so that every pixel counts.
//   Nearest   the pixel whose center is nearest, as VortoBitmap::copyWithScaling has it
//   Box       the mean of the pixels under it
//   Linear    a triangle of radius 1
//   Cubic     the cubic of Keys (1981) with a = -1/2, radius 2, also known as Catmull-Rom
//   Lanczos   sinc(x) sinc(x / 3), radius 3 (Duchon 1979)
enum class ScalingFilter { Nearest, Box, Linear, Cubic, Lanczos };
std::optional<ScalingFilter> scalingFilterNamed(const std::string& name);  // "nearest", ...

// How a picture of another shape fills a size.
//   Stretch   its sides are scaled apart from each other
//   Fit       the whole of it, in the middle; what it does not cover is empty
//   Fill      all is covered; what stands out on two sides is cut off
enum class ScalingFit { Stretch, Fit, Fill };
std::optional<ScalingFit> scalingFitNamed(const std::string& name);  // "stretch", ...

struct Scaling {
  ScalingFilter filter = ScalingFilter::Lanczos;
  ScalingFit fit = ScalingFit::Stretch;
};

// The picture in another size; itself where it has that size. RGBA8, ARGB8, RGBA16 or RGBAFloat, premultiplied, and the
// result in the same layout. Computed in floats; integers are rounded once, limited to their range and their colors to
// alpha; the alpha of floats is limited to 0 to 1. Opaque pictures stay opaque. Throws Failure when memory runs out.
BitmapRef scaledBitmap(const BitmapRef& bitmap, const PictureSize& size, const Scaling& scaling);

// Where a picture lies on a larger or smaller one, in pixels from the upper left corner.
struct Placement {
  std::int64_t x = 0;
  std::int64_t y = 0;
};

// A canvas of that size, empty but for the picture at its place. The picture itself where it covers all exactly.
BitmapRef placedBitmap(const BitmapRef& bitmap, const PictureSize& canvas, const Placement& place);

}  // namespace host

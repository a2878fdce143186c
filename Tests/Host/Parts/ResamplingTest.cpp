// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Resampling.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace host;

namespace {

// The definitions of the filters, for one coordinate.
double sinc(double x) {
  return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

double weightOf(ScalingFilter filter, double x) {
  const double d = std::abs(x);
  switch (filter) {
    case ScalingFilter::Box:
      return x >= -0.5 && x < 0.5;
    case ScalingFilter::Linear:
      return d < 1 ? 1 - d : 0;
    case ScalingFilter::Cubic:
      return d < 1 ? 1.5 * d * d * d - 2.5 * d * d + 1 : d < 2 ? -0.5 * d * d * d + 2.5 * d * d - 4 * d + 2 : 0;
    default:
      return d < 3 ? sinc(x) * sinc(x / 3) : 0;
  }
}

// Every sample of a line counts with its weight; beyond its ends it goes on with its last.
std::vector<double> lineWeights(ScalingFilter filter, int from, int to, int place) {
  const double ratio = static_cast<double>(from) / to;
  const double widening = std::max(ratio, 1.0);
  const double center = (place + 0.5) * ratio;
  std::vector<double> weights(static_cast<std::size_t>(from));
  double sum = 0;
  for (int i = -8 * from - 64; i < 9 * from + 64; ++i) {
    const double weight = weightOf(filter, (i + 0.5 - center) / widening);
    weights[static_cast<std::size_t>(std::clamp(i, 0, from - 1))] += weight;
    sum += weight;
  }
  for (double& weight : weights) weight /= sum;
  return weights;
}

MutableBitmapRef variedBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode) {
  auto bitmap = newBitmap(width, height, formatCode, "a picture");
  std::uint32_t state = 7;
  const auto next = [&] { return (state = state * 1664525u + 1013904223u) >> 8; };
  for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
    const double alpha = i % 3 == 0 ? 1 : next() % 1001 / 1000.0;
    for (std::size_t c = 0; c < 4; ++c) {
      const double value = c == 3 ? alpha : alpha * (next() % 1001) / 1000.0;
      if (formatCode == VortoPixelFormat::RGBAFloat) {
        reinterpret_cast<float*>(bitmap->data)[4 * i + c] = static_cast<float>(value);
      } else {
        reinterpret_cast<std::uint16_t*>(bitmap->data)[4 * i + c] = static_cast<std::uint16_t>(value * 65535);
      }
    }
  }
  return bitmap;
}

double sampleOf(const VortoBitmap& bitmap, std::size_t index) {
  return bitmap.formatCode == VortoPixelFormat::RGBAFloat
             ? static_cast<double>(reinterpret_cast<const float*>(bitmap.data)[index])
             : reinterpret_cast<const std::uint16_t*>(bitmap.data)[index];
}

}  // namespace

TEST(Resampling, FollowsTheDefinitionsOfItsFilters) {
  const PictureSize sizes[] = {{7, 5}, {3, 11}, {1, 1}, {29, 2}, {13, 9}};
  for (const std::uint32_t code : {VortoPixelFormat::RGBA16, VortoPixelFormat::RGBAFloat}) {
    const BitmapRef source = variedBitmap(13, 9, code);
    const double full = code == VortoPixelFormat::RGBA16 ? 65535 : 1;
    for (const auto filter :
         {ScalingFilter::Box, ScalingFilter::Linear, ScalingFilter::Cubic, ScalingFilter::Lanczos}) {
      for (const PictureSize& size : sizes) {
        const BitmapRef scaled = scaledBitmap(source, size, {filter, ScalingFit::Stretch});
        for (std::uint32_t y = 0; y < size.height; ++y) {
          const auto rows = lineWeights(filter, 9, static_cast<int>(size.height), static_cast<int>(y));
          for (std::uint32_t x = 0; x < size.width; ++x) {
            const auto columns = lineWeights(filter, 13, static_cast<int>(size.width), static_cast<int>(x));
            double sums[4] = {};
            for (std::size_t i = 0; i < 9 * 13 * 4; ++i) {
              sums[i % 4] += rows[i / 52] * columns[i / 4 % 13] * sampleOf(*source, i);
            }
            const double alpha = std::clamp(sums[3], 0.0, full);
            for (std::size_t c = 0; c < 4; ++c) {
              const double limited = full == 1 ? sums[c] : std::clamp(sums[c], 0.0, alpha);
              const double expected = c == 3 ? alpha : limited;
              ASSERT_NEAR(sampleOf(*scaled, (std::size_t{y} * size.width + x) * 4 + c), expected,
                          full == 1 ? 2e-6 : 0.51)
                  << int(filter) << ' ' << size.width << " x " << size.height << " at " << x << ' ' << y << ' ' << c;
            }
          }
        }
      }
    }
  }
}

TEST(Resampling, KeepsFlatAndOpaquePicturesSo) {
  for (const std::uint32_t code : {VortoPixelFormat::RGBA8, VortoPixelFormat::ARGB8}) {
    const auto source = newBitmap(31, 17, code, "a picture");
    std::fill_n(source->data, std::size_t{31} * 17 * 4, std::uint8_t{255});
    for (const PictureSize size : {PictureSize{100, 3}, PictureSize{5, 64}, PictureSize{1920, 1}}) {
      const BitmapRef scaled = scaledBitmap(source, size, {});
      for (std::size_t i = 0; i < std::size_t{4} * size.width * size.height; ++i) ASSERT_EQ(scaled->data[i], 255);
    }
  }
}

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Resampling.h"

#include "Host/Pixels/Alpha.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <type_traits>
#include <vector>

namespace host {
namespace {

struct Kernel {
  double radius;
  double (*value)(double);
};

double boxValue(double x) {
  return x >= -0.5 && x < 0.5 ? 1 : 0;
}

double triangleValue(double x) {
  return std::max(0.0, 1 - std::abs(x));
}

double cubicValue(double x) {
  const double d = std::abs(x);
  if (d < 1) return (1.5 * d - 2.5) * d * d + 1;
  return d < 2 ? ((-0.5 * d + 2.5) * d - 4) * d + 2 : 0;
}

double sinc(double x) {
  return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

double lanczosValue(double x) {
  return std::abs(x) < 3 ? sinc(x) * sinc(x / 3) : 0;
}

Kernel kernelOf(ScalingFilter filter) {
  switch (filter) {
    case ScalingFilter::Box:
      return {0.5, boxValue};
    case ScalingFilter::Linear:
      return {1, triangleValue};
    case ScalingFilter::Cubic:
      return {2, cubicValue};
    default:
      return {3, lanczosValue};
  }
}

// Which samples of a line make one of another length, and how much each weighs: `count` of them from `first` on, whose
// weights add up to 1.
struct Taps {
  std::vector<std::size_t> first;
  std::vector<float> weights;  // `count` for each
  std::size_t count = 0;
};

// Positions beyond the ends count as the last sample there.
void addTaps(const Kernel& kernel, double center, double widening, std::size_t length, Taps* taps) {
  const double reach = kernel.radius * widening;
  const auto from = static_cast<std::int64_t>(std::floor(center - reach));
  const auto to = static_cast<std::int64_t>(std::floor(center + reach)) + 1;
  const auto last = static_cast<std::int64_t>(length) - 1;
  const auto first = std::min(static_cast<std::size_t>(std::clamp<std::int64_t>(from, 0, last)), length - taps->count);
  std::vector<double> weights(taps->count);
  double sum = 0;
  for (std::int64_t position = from; position <= to; ++position) {
    const double weight = kernel.value((static_cast<double>(position) + 0.5 - center) / widening);
    const auto index = static_cast<std::size_t>(std::clamp<std::int64_t>(position, 0, last));
    if (weight == 0 || index < first || index >= first + taps->count) continue;
    weights[index - first] += weight;
    sum += weight;
  }
  taps->first.push_back(first);
  for (const double weight : weights) taps->weights.push_back(static_cast<float>(weight / sum));
}

Taps tapsBetween(std::size_t from, std::size_t to, const Kernel& kernel) {
  const double ratio = static_cast<double>(from) / static_cast<double>(to);
  const double widening = std::max(ratio, 1.0);
  Taps taps;
  taps.count = std::min(from, static_cast<std::size_t>(std::ceil(2 * kernel.radius * widening)) + 2);
  for (std::size_t i = 0; i < to; ++i) {
    addTaps(kernel, (static_cast<double>(i) + 0.5) * ratio, widening, from, &taps);
  }
  return taps;
}

// The four samples of a pixel, computed side by side.
using Pixel __attribute__((vector_size(16))) = float;

Pixel pixelAt(const float* samples) {
  Pixel pixel;
  std::memcpy(&pixel, samples, sizeof pixel);
  return pixel;
}

template <class Sample>
void widenRow(const std::uint8_t* row, std::size_t samples, float* out) {
  if constexpr (std::is_same_v<Sample, float>) {
    std::memcpy(out, row, samples * sizeof(float));
  } else {
    const auto* const from = reinterpret_cast<const Sample*>(row);
    for (std::size_t i = 0; i < samples; ++i) out[i] = static_cast<float>(from[i]);
  }
}

void resampleRow(const float* row, const Taps& taps, float* out) {
  for (std::size_t x = 0; x < taps.first.size(); ++x) {
    const float* const from = row + 4 * taps.first[x];
    const float* const weights = &taps.weights[x * taps.count];
    Pixel sum = pixelAt(from) * weights[0];
    for (std::size_t i = 1; i < taps.count; ++i) sum += pixelAt(from + 4 * i) * weights[i];
    std::memcpy(out + 4 * x, &sum, sizeof sum);
  }
}

// A row of sums as pixels. Lobes below zero reach beyond what colors can be: integers are limited, to alpha too.
template <class Sample>
void storeRow(const float* sums, std::size_t pixels, std::size_t alphaIndex, bool isOpaque, std::uint8_t* out) {
  auto* const to = reinterpret_cast<Sample*>(out);
  if constexpr (std::is_same_v<Sample, float>) {
    std::memcpy(to, sums, 4 * pixels * sizeof(float));
    for (std::size_t i = 0; i < pixels; ++i) {
      float& alpha = to[4 * i + alphaIndex];
      alpha = isOpaque ? 1.0f : std::clamp(alpha, 0.0f, 1.0f);
    }
  } else {
    constexpr auto full = static_cast<float>(std::numeric_limits<Sample>::max());
    for (std::size_t i = 0; i < 4 * pixels; i += 4) {
      const float alpha = isOpaque ? full : std::clamp(sums[i + alphaIndex], 0.0f, full);
      for (std::size_t c = 0; c < 4; ++c) {
        const float value = c == alphaIndex ? alpha : std::clamp(sums[i + c], 0.0f, alpha);
        to[i + c] = static_cast<Sample>(static_cast<std::int32_t>(value + 0.5f));
      }
    }
  }
}

// Rows of the source in the new width, kept while the rows of the result need them.
template <class Sample>
class ResampledRows {
 public:
  ResampledRows(const VortoBitmap& source, const Taps& columns, std::size_t kept)
      : source_(source), columns_(columns), wide_(std::size_t{4} * source.width), numbers_(kept, kNone) {
    rows_.assign(kept, std::vector<float>(4 * columns.first.size()));
  }

  const float* row(std::size_t y) {
    const std::size_t slot = y % rows_.size();
    if (numbers_[slot] != y) {
      widenRow<Sample>(source_.data + y * bytesPerRow(source_), wide_.size(), wide_.data());
      resampleRow(wide_.data(), columns_, rows_[slot].data());
      numbers_[slot] = y;
    }
    return rows_[slot].data();
  }

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  const VortoBitmap& source_;
  const Taps& columns_;
  std::vector<float> wide_;
  std::vector<std::vector<float>> rows_;
  std::vector<std::size_t> numbers_;
};

template <class Sample>
void resample(const VortoBitmap& source, const Kernel& kernel, VortoBitmap* result) {
  const Taps columns = tapsBetween(source.width, result->width, kernel);
  const Taps lines = tapsBetween(source.height, result->height, kernel);
  const auto alphaIndex = static_cast<std::size_t>(TCPixelLayoutOf(source.formatCode).alpha);
  const bool opaque = isOpaque(source);
  ResampledRows<Sample> rows(source, columns, lines.count);
  std::vector<float> sums(std::size_t{4} * result->width);
  for (std::size_t y = 0; y < result->height; ++y) {
    std::ranges::fill(sums, 0.0f);
    for (std::size_t i = 0; i < lines.count; ++i) {
      const float weight = lines.weights[y * lines.count + i];
      if (weight == 0) continue;
      const float* const row = rows.row(lines.first[y] + i);
      for (std::size_t x = 0; x < sums.size(); ++x) sums[x] += weight * row[x];
    }
    storeRow<Sample>(sums.data(), result->width, alphaIndex, opaque, result->data + y * bytesPerRow(*result));
  }
}

BitmapRef stretched(const BitmapRef& bitmap, const PictureSize& size, ScalingFilter filter) {
  if (bitmap->width == size.width && bitmap->height == size.height) return bitmap;
  const auto result = newUnsetBitmap(size.width, size.height, bitmap->formatCode, "a scaled picture");
  if (filter == ScalingFilter::Nearest) {
    result->copyWithScaling(*bitmap);
    return result;
  }
  switch (TCPixelLayoutOf(bitmap->formatCode).number) {
    case VortoPixelLayout::Number::Word:
      resample<std::uint16_t>(*bitmap, kernelOf(filter), result.get());
      break;
    case VortoPixelLayout::Number::Float:
      resample<float>(*bitmap, kernelOf(filter), result.get());
      break;
    default:
      resample<std::uint8_t>(*bitmap, kernelOf(filter), result.get());
      break;
  }
  return result;
}

// The size of a picture that is scaled in proportion until it just lies in another; at least a pixel.
PictureSize sizeWithin(const VortoBitmap& bitmap, const PictureSize& size) {
  const double x = static_cast<double>(size.width) / bitmap.width;
  const double y = static_cast<double>(size.height) / bitmap.height;
  const double scale = std::min(x, y);
  const auto edge = [&](std::uint32_t length, std::uint32_t wanted, bool isExact) {
    if (isExact) return wanted;
    return static_cast<std::uint32_t>(std::clamp(std::round(length * scale), 1.0, static_cast<double>(wanted)));
  };
  return {edge(bitmap.width, size.width, scale == x), edge(bitmap.height, size.height, scale == y)};
}

// What of a picture is seen when it fills a size, so that no more than that is computed.
BitmapRef cutToShape(const BitmapRef& bitmap, const PictureSize& size) {
  const double shape = static_cast<double>(size.width) / size.height;
  const double width = std::min<double>(bitmap->width, std::max(1.0, std::round(bitmap->height * shape)));
  const double height = std::min<double>(bitmap->height, std::max(1.0, std::round(bitmap->width / shape)));
  const PictureSize seen{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
  return placedBitmap(
      bitmap, seen,
      {-(std::int64_t{bitmap->width} - seen.width) / 2, -(std::int64_t{bitmap->height} - seen.height) / 2});
}

}  // namespace

std::optional<ScalingFilter> scalingFilterNamed(const std::string& name) {
  if (name == "nearest") return ScalingFilter::Nearest;
  if (name == "box") return ScalingFilter::Box;
  if (name == "linear") return ScalingFilter::Linear;
  if (name == "cubic") return ScalingFilter::Cubic;
  if (name == "lanczos") return ScalingFilter::Lanczos;
  return std::nullopt;
}

std::optional<ScalingFit> scalingFitNamed(const std::string& name) {
  if (name == "stretch") return ScalingFit::Stretch;
  if (name == "fit") return ScalingFit::Fit;
  if (name == "fill") return ScalingFit::Fill;
  return std::nullopt;
}

BitmapRef scaledBitmap(const BitmapRef& bitmap, const PictureSize& size, const Scaling& scaling) {
  switch (scaling.fit) {
    case ScalingFit::Stretch:
      return stretched(bitmap, size, scaling.filter);
    case ScalingFit::Fill:
      return stretched(cutToShape(bitmap, size), size, scaling.filter);
    case ScalingFit::Fit:
      break;
  }
  const PictureSize inside = sizeWithin(*bitmap, size);
  const BitmapRef scaled = stretched(bitmap, inside, scaling.filter);
  return placedBitmap(scaled, size,
                      {(std::int64_t{size.width} - inside.width) / 2, (std::int64_t{size.height} - inside.height) / 2});
}

BitmapRef placedBitmap(const BitmapRef& bitmap, const PictureSize& canvas, const Placement& place) {
  if (bitmap->width == canvas.width && bitmap->height == canvas.height && place.x == 0 && place.y == 0) return bitmap;
  const auto result = newBitmap(canvas.width, canvas.height, bitmap->formatCode, "a placed picture");
  const std::int64_t left = std::max<std::int64_t>(place.x, 0);
  const std::int64_t right = std::min<std::int64_t>(place.x + bitmap->width, canvas.width);
  const std::int64_t top = std::max<std::int64_t>(place.y, 0);
  const std::int64_t bottom = std::min<std::int64_t>(place.y + bitmap->height, canvas.height);
  if (left >= right) return result;
  const std::size_t pixelSize = TCPixelLayoutOf(bitmap->formatCode).bytesPerPixel();
  for (std::int64_t y = top; y < bottom; ++y) {
    const std::uint8_t* const from = bitmap->data + static_cast<std::size_t>(y - place.y) * bytesPerRow(*bitmap) +
                                     static_cast<std::size_t>(left - place.x) * pixelSize;
    std::uint8_t* const to =
        result->data + static_cast<std::size_t>(y) * bytesPerRow(*result) + static_cast<std::size_t>(left) * pixelSize;
    std::memcpy(to, from, static_cast<std::size_t>(right - left) * pixelSize);
  }
  return result;
}

}  // namespace host

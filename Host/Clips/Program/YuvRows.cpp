// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/YuvRows.h"

#include <algorithm>
#include <limits>

// Compiled once more for processors with wider registers; the results are the same.
#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
#define VORTO_WIDE __attribute__((target_clones("default", "avx2")))
#else
#define VORTO_WIDE
#endif

namespace host {
namespace {

// Behind each plane there is room for what is repeated at its edge.
constexpr std::size_t kEdge = 16;

template <class Sample, std::size_t kSamples>
[[gnu::always_inline]] inline void split(const Sample* __restrict row, std::size_t width, float* __restrict red,
                                         float* __restrict green, float* __restrict blue) {
  for (std::size_t x = 0; x < width; ++x) {
    red[x] = static_cast<float>(row[x * kSamples]);
    green[x] = static_cast<float>(row[x * kSamples + 1]);
    blue[x] = static_cast<float>(row[x * kSamples + 2]);
  }
}
VORTO_WIDE void split3(const std::uint8_t* row, std::size_t width, float* red, float* green, float* blue) {
  split<std::uint8_t, 3>(row, width, red, green, blue);
}
VORTO_WIDE void split4(const std::uint8_t* row, std::size_t width, float* red, float* green, float* blue) {
  split<std::uint8_t, 4>(row, width, red, green, blue);
}
VORTO_WIDE void split3Deep(const std::uint16_t* row, std::size_t width, float* red, float* green, float* blue) {
  split<std::uint16_t, 3>(row, width, red, green, blue);
}
VORTO_WIDE void split4Deep(const std::uint16_t* row, std::size_t width, float* red, float* green, float* blue) {
  split<std::uint16_t, 4>(row, width, red, green, blue);
}

template <class Sample>
[[gnu::always_inline]] inline void weigh(const float* __restrict red, const float* __restrict green,
                                         const float* __restrict blue, const float* weights, std::size_t width,
                                         Sample* __restrict result) {
  const float r = weights[0];
  const float g = weights[1];
  const float b = weights[2];
  const float offset = weights[3];
  for (std::size_t x = 0; x < width; ++x) {
    result[x] = static_cast<Sample>(static_cast<std::int32_t>(red[x] * r + green[x] * g + blue[x] * b + offset));
  }
}
VORTO_WIDE void weigh8(const float* red, const float* green, const float* blue, const float* weights, std::size_t width,
                       std::uint8_t* result) {
  weigh(red, green, blue, weights, width, result);
}
VORTO_WIDE void weigh16(const float* red, const float* green, const float* blue, const float* weights,
                        std::size_t width, std::uint16_t* result) {
  weigh(red, green, blue, weights, width, result);
}

VORTO_WIDE void add(float* __restrict sum, const float* __restrict values, std::size_t width) {
  for (std::size_t x = 0; x < width; ++x) sum[x] += values[x];
}

// The mean of two at a time; `values` has one behind the last.
VORTO_WIDE void halve(const float* __restrict values, std::size_t width, float* __restrict result) {
  for (std::size_t x = 0; x < width; ++x) result[x] = (values[2 * x] + values[2 * x + 1]) * 0.5f;
}

void weighRow(const float* red, const float* green, const float* blue, const float* weights, std::size_t width,
              int bits, void* result) {
  if (bits == 8) return weigh8(red, green, blue, weights, width, static_cast<std::uint8_t*>(result));
  weigh16(red, green, blue, weights, width, static_cast<std::uint16_t*>(result));
}

template <class From, class To>
void scaleAlpha(const void* row, std::size_t width, std::size_t largest, void* plane) {
  constexpr std::size_t kLargest = std::numeric_limits<From>::max();
  const auto* from = static_cast<const From*>(row);
  auto* to = static_cast<To*>(plane);
  for (std::size_t x = 0; x < width; ++x) {
    to[x] = static_cast<To>((from[4 * x + 3] * largest + kLargest / 2) / kLargest);
  }
}

}  // namespace

YuvRows::YuvRows(const YuvKind& kind, std::size_t width, std::size_t samples, std::size_t bytes)
    : kind_(kind), width_(width), samples_(samples), bytes_(bytes), stride_(width + 2 * kEdge), values_(9 * stride_) {
  const double largest = bytes == 1 ? 255 : 65535;
  const double step = 1 << (kind.bits - 8);
  const double green = 1 - kind.red - kind.blue;
  const auto set = [&](float* weights, double r, double g, double b, double scale, double offset) {
    weights[0] = static_cast<float>(r * scale * step / largest);
    weights[1] = static_cast<float>(g * scale * step / largest);
    weights[2] = static_cast<float>(b * scale * step / largest);
    weights[3] = static_cast<float>(offset * step + 0.5);
  };
  set(luma_, kind.red, green, kind.blue, 219, 16);
  set(chroma_[0], -kind.red, -green, 1 - kind.blue, 112 / (1 - kind.blue), 128);
  set(chroma_[1], 1 - kind.red, -green, -kind.blue, 112 / (1 - kind.red), 128);
}

void YuvRows::luma(const void* row, void* y, bool first) {
  // The first row of chroma's is its sum so far.
  const int planes = first ? 3 : 0;
  float* red = plane(planes) + kEdge;
  float* green = plane(planes + 1) + kEdge;
  float* blue = plane(planes + 2) + kEdge;
  const auto* bytes = static_cast<const std::uint8_t*>(row);
  const auto* words = static_cast<const std::uint16_t*>(row);
  if (bytes_ == 1) {
    (samples_ == 3 ? split3 : split4)(bytes, width_, red, green, blue);
  } else {
    (samples_ == 3 ? split3Deep : split4Deep)(words, width_, red, green, blue);
  }
  weighRow(red, green, blue, luma_, width_, kind_.bits, y);
  rows_ = first ? 1 : rows_ + 1;
  for (int i = 0; i < 3 && !first; ++i) add(plane(3 + i) + kEdge, plane(i) + kEdge, width_);
}

void YuvRows::chroma(void* cb, void* cr) {
  const float* sums[3];
  for (int i = 0; i < 3; ++i) {
    float* sum = plane(3 + i) + kEdge;
    sums[i] = sum;
    if (!kind_.isHalfWide) continue;
    sum[width_] = sum[width_ - 1];
    float* half = plane(6 + i) + kEdge;
    halve(sum, (width_ + 1) / 2, half);
    sums[i] = half;
  }
  const std::size_t width = kind_.isHalfWide ? (width_ + 1) / 2 : width_;
  const float share = 1.0f / static_cast<float>(rows_);
  for (int i = 0; i < 2; ++i) {
    const float weights[4] = {chroma_[i][0] * share, chroma_[i][1] * share, chroma_[i][2] * share, chroma_[i][3]};
    weighRow(sums[0], sums[1], sums[2], weights, width, kind_.bits, i == 0 ? cb : cr);
  }
}

void YuvRows::alpha(const void* row, void* plane) {
  const std::size_t largest = (std::size_t{1} << kind_.bits) - 1;
  if (bytes_ == 1) {
    return kind_.bits == 8 ? scaleAlpha<std::uint8_t, std::uint8_t>(row, width_, largest, plane)
                           : scaleAlpha<std::uint8_t, std::uint16_t>(row, width_, largest, plane);
  }
  return kind_.bits == 8 ? scaleAlpha<std::uint16_t, std::uint8_t>(row, width_, largest, plane)
                         : scaleAlpha<std::uint16_t, std::uint16_t>(row, width_, largest, plane);
}

}  // namespace host

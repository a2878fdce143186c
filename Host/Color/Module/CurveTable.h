// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace host {

// A curve of a color channel, 0 at 0 and mirrored below.
struct ChannelCurve {
  std::function<double(double)> function;
  bool isSmooth = true;
};

// Such a curve, smooth ones looked up instead of computed: parabolas in 128 steps of each octave from 2^-48 to 16. Of a
// power from 1/3 to 3 they are right to 1e-7 of the value.
class CurveTable {
 public:
  explicit CurveTable(ChannelCurve curve) : curve_(std::move(curve)) {
    if (!curve_.isSmooth) return;
    parabolas_.reserve((kEnd - kBegin) >> kShift);
    for (std::uint32_t bits = kBegin; bits < kEnd; bits += 1u << kShift) {
      const double first = valueAt(bits);
      const double middle = valueAt(bits + (1u << (kShift - 1)));
      const double last = valueAt(bits + (1u << kShift));
      const double bend = 2 * (first + last - 2 * middle);
      parabolas_.push_back(
          {static_cast<float>(first), static_cast<float>(last - first - bend), static_cast<float>(bend)});
    }
  }

  float operator()(float x) const { return std::copysign(ofPositive(std::abs(x)), x); }

 private:
  struct Parabola {
    float value, slope, bend;
  };
  static constexpr int kShift = 23 - 7;
  static constexpr std::uint32_t kBegin = (127u - 48u) << 23;
  static constexpr std::uint32_t kEnd = (127u + 4u) << 23;

  double valueAt(std::uint32_t bits) const { return curve_.function(std::bit_cast<float>(bits)); }

  float ofPositive(float x) const {
    const auto bits = std::bit_cast<std::uint32_t>(x);
    if (!curve_.isSmooth || bits >= kEnd) return static_cast<float>(curve_.function(x));  // NaN too
    if (bits < kBegin) return parabolas_[0].value * (x / std::bit_cast<float>(kBegin));
    const Parabola& parabola = parabolas_[(bits - kBegin) >> kShift];
    const float part = static_cast<float>(bits & ((1u << kShift) - 1)) * (1.0f / (1u << kShift));
    return parabola.value + part * (parabola.slope + part * parabola.bend);
  }

  ChannelCurve curve_;
  std::vector<Parabola> parabolas_;
};

}  // namespace host

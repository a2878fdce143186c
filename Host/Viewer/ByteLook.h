// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"

#include <QRgb>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace host {

// A rising curve of floats as bytes: what 255 times the curve rounds to, limited, without computing the curve. The
// floats where each byte begins were searched before; a table says which is next.
class ByteCurve {
 public:
  explicit ByteCurve(const std::function<double(double)>& curve);

  std::uint32_t operator()(float x) const {
    const float above = x > least_ ? x : least_;  // NaN too
    const float within = above < begins_[255] ? above : begins_[255];
    const std::uint32_t byte = bytes_[(std::bit_cast<std::uint32_t>(within) >> shift_) - first_];
    return byte + (within >= begins_[byte + 1] ? 1 : 0);
  }

 private:
  bool fillTable();

  std::array<float, 257> begins_{};  // the least float of each byte; the last is never reached
  float least_ = 0;                  // of the table
  int shift_ = 16;                   // 128 entries an octave, or more where the curve is steep
  std::uint32_t first_ = 0;
  std::vector<std::uint8_t> bytes_;  // at the beginning of each entry; at most one more begins in it
};

class ColorConversion;

// How the colors of premultiplied pixels become the screen's; without `exact` they are shown as they are.
class ByteLook;
struct ColorWay {
  ColorConversion* exact = nullptr;
  const ByteLook* bytes = nullptr;  // the same, quickly, for opaque pixels; where there is such a way
};

// Looks that are curves and a matrix, as those of the known spaces are: samples become light, light other light, and
// this the screen's bytes. The same bytes as the conversion itself gives, but where rounding is a toss-up.
class ByteLook {
 public:
  struct Steps {
    std::function<double(double)> toLight;                                           // empty: the samples are light
    std::array<std::array<double, 3>, 3> matrix{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};  // rows, of light
    std::function<double(double)> fromLight;
  };
  explicit ByteLook(const Steps& steps);

  // An opaque pixel: red, green and blue.
  QRgb operator()(const float* pixel) const;

 private:
  // A curve from 0 to 1 by straight lines in 4096 parts, which for those of screens are right to 1e-7; computed beyond.
  class Lines {
   public:
    explicit Lines(std::function<double(double)> curve);
    float operator()(float x) const;

   private:
    std::function<double(double)> curve_;
    std::vector<float> values_;
  };

  bool isSeparate_ = false;  // each color by itself: only the bytes' curve counts
  std::optional<Lines> toLight_;
  float columns_[3][4]{};
  ByteCurve toBytes_;
};

}  // namespace host

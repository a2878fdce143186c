// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/ByteLook.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace host {
namespace {

std::uint32_t bitsOf(float x) {
  return std::bit_cast<std::uint32_t>(x);
}

using Float4 = float __attribute__((vector_size(16)));

constexpr int kLines = 4096;
constexpr int kLeastShift = 8;  // where the most that 16 stops and a gamma of 0.1 make still fits

// Whether all colors take the same factor, and nothing of each other.
bool isScale(const std::array<std::array<double, 3>, 3>& matrix) {
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      if (matrix[i][j] != (i == j ? matrix[0][0] : 0)) return false;
    }
  }
  return true;
}

std::function<double(double)> wholeCurve(const ByteLook::Steps& steps) {
  if (!isScale(steps.matrix)) return steps.fromLight;
  return [&steps](double x) { return steps.fromLight(steps.matrix[0][0] * (steps.toLight ? steps.toLight(x) : x)); };
}

}  // namespace

ByteCurve::ByteCurve(const std::function<double(double)>& curve) {
  // Positive floats are in the order of their bits.
  std::uint32_t below = 0;
  for (unsigned byte = 1; byte < 256; ++byte) {
    std::uint32_t above = bitsOf(std::numeric_limits<float>::max());
    while (above - below > 1) {
      const std::uint32_t middle = below + (above - below) / 2;
      (curve(std::bit_cast<float>(middle)) * 255 + 0.5 >= byte ? above : below) = middle;
    }
    begins_[byte] = std::bit_cast<float>(above);
  }
  begins_[256] = std::numeric_limits<float>::infinity();
  while (!fillTable() && shift_ > kLeastShift) --shift_;
}

// False when an entry has several beginnings: they are too long for the curve.
bool ByteCurve::fillTable() {
  bytes_.clear();
  first_ = bitsOf(begins_[1]) >> shift_;
  least_ = std::bit_cast<float>(first_ << shift_);
  const std::uint32_t last = bitsOf(begins_[255]) >> shift_;
  std::uint32_t byte = 0;
  for (std::uint32_t entry = first_; entry <= last; ++entry) {
    const std::uint32_t before = byte;
    while (byte < 255 && bitsOf(begins_[byte + 1]) <= entry << shift_) ++byte;
    if (entry > first_ && byte > before + 1) return false;
    bytes_.push_back(static_cast<std::uint8_t>(byte));
  }
  // What begins in the last entry.
  return byte >= 254;
}

ByteLook::Lines::Lines(std::function<double(double)> curve) : curve_(std::move(curve)) {
  for (int i = 0; i <= kLines + 1; ++i) values_.push_back(static_cast<float>(curve_(static_cast<double>(i) / kLines)));
}

float ByteLook::Lines::operator()(float x) const {
  if (!(x >= 0 && x <= 1)) return static_cast<float>(curve_(x));
  const float at = x * kLines;
  const int line = static_cast<int>(at);
  const float* const value = values_.data() + line;
  return value[0] + (at - static_cast<float>(line)) * (value[1] - value[0]);
}

ByteLook::ByteLook(const Steps& steps) : isSeparate_(isScale(steps.matrix)), toBytes_(wholeCurve(steps)) {
  if (!isSeparate_ && steps.toLight) toLight_.emplace(steps.toLight);
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) columns_[j][i] = static_cast<float>(steps.matrix[i][j]);
  }
}

QRgb ByteLook::operator()(const float* pixel) const {
  float light[4] = {pixel[0], pixel[1], pixel[2], 0};
  if (!isSeparate_) {
    if (toLight_) {
      for (std::size_t c = 0; c < 3; ++c) light[c] = (*toLight_)(light[c]);
    }
    Float4 columns[3];
    std::memcpy(columns, columns_, sizeof columns);
    const Float4 sum = light[0] * columns[0] + light[1] * columns[1] + light[2] * columns[2];
    std::memcpy(light, &sum, sizeof light);
  }
  return 0xFF000000u | toBytes_(light[0]) << 16 | toBytes_(light[1]) << 8 | toBytes_(light[2]);
}

}  // namespace host

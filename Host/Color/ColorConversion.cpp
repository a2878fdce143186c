// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorConversion.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

namespace host {
namespace {

constexpr std::size_t kBandPixels = 16384;  // what the second-level cache holds

// By less the quotients would leave the floats.
bool isDivisor(float alpha) {
  constexpr float least = 1e-20f;
  return std::abs(alpha) >= least;
}

template <class Sample>
constexpr float fullValue() {
  return std::is_same_v<Sample, float> ? 1.0f : static_cast<float>(std::numeric_limits<Sample>::max());
}

// Divided, not multiplied by the inverse: full is 1.
template <class Sample>
void loadSamples(const Sample* source, float* target, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) target[i] = static_cast<float>(source[i]) / fullValue<Sample>();
}

void loadSamples(const std::byte* source, SampleType sample, float* target, std::size_t count) {
  switch (sample) {
    case SampleType::UInt8:
      return loadSamples(reinterpret_cast<const std::uint8_t*>(source), target, count);
    case SampleType::UInt16:
      return loadSamples(reinterpret_cast<const std::uint16_t*>(source), target, count);
    case SampleType::Float:
      if (source == reinterpret_cast<const std::byte*>(target)) return;
      std::copy_n(reinterpret_cast<const float*>(source), count, target);
  }
}

void takeAlphaOff(AlphaKind alpha, float* band, std::size_t pixels) {
  if (alpha == AlphaKind::None) return;
  for (float* pixel = band; pixel != band + 4 * pixels; pixel += 4) {
    const float divisor = pixel[3];
    if (divisor == 1) continue;
    if (alpha == AlphaKind::Straight) {
      if (divisor == 0) std::fill_n(pixel, 3, 0.0f);
    } else if (isDivisor(divisor)) {
      for (std::size_t c = 0; c < 3; ++c) pixel[c] /= divisor;
    }
  }
}

void putAlphaBack(float* band, std::size_t pixels) {
  for (float* pixel = band; pixel != band + 4 * pixels; pixel += 4) {
    const float factor = pixel[3];
    if (factor == 1 || !isDivisor(factor)) continue;
    for (std::size_t c = 0; c < 3; ++c) pixel[c] *= factor;
  }
}

}  // namespace

ColorConversion::ColorConversion(const ColorSpace& from, const ColorSpace& to)
    : ColorConversion(colorModule(), from, to) {}

ColorConversion::ColorConversion(ColorModule& module, const ColorSpace& from, const ColorSpace& to) {
  std::string reason;
  transform_ = module.makeTransform(from, to, &reason);
  if (!transform_) {
    throw Failure(ExitCode::Input, "cannot convert from " + spaceText(from) + " to " + spaceText(to) + ": " + reason);
  }
}

// Spaces may have their black elsewhere; what is not there stays nothing.
void ColorConversion::findBlack(const float* band, std::size_t pixels) {
  black_.clear();
  for (std::size_t at = 0; at < 4 * pixels; at += 4) {
    if (band[at + 3] == 0 && band[at] == 0 && band[at + 1] == 0 && band[at + 2] == 0) black_.push_back(at);
  }
}

void ColorConversion::convert(const std::byte* source, PixelFormat from, float* target, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; i += kBandPixels) {
    const std::size_t count = std::min(kBandPixels, pixels - i);
    float* const band = target + 4 * i;
    loadSamples(source + 4 * i * bytesPerSample(from.sample), from.sample, band, 4 * count);
    takeAlphaOff(from.alpha, band, count);
    findBlack(band, count);
    transform_->apply(band, count);
    for (const std::size_t at : black_) std::fill_n(band + at, 3, 0.0f);
    putAlphaBack(band, count);
  }
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorConversion.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace host {
namespace {

constexpr std::size_t kBandPixels = 16384;  // what the second-level cache holds

template <class Sample>
constexpr float fullValue() {
  return std::is_same_v<Sample, float> ? 1.0f : static_cast<float>(std::numeric_limits<Sample>::max());
}

// Straight floats. Divided, not multiplied by the inverse: full is 1.
template <class Sample>
void load(const Sample* source, AlphaKind alpha, float* target, std::size_t pixels) {
  for (std::size_t i = 0; i < 4 * pixels; ++i) target[i] = static_cast<float>(source[i]) / fullValue<Sample>();
  if (alpha != AlphaKind::Premultiplied) return;
  for (float* pixel = target; pixel != target + 4 * pixels; pixel += 4) {
    const float divisor = pixel[3];
    if (divisor == 0 || divisor == 1) continue;
    for (std::size_t c = 0; c < 3; ++c) pixel[c] /= divisor;
  }
}

template <class Sample>
Sample stored(float value, bool& isCut) {
  if constexpr (std::is_same_v<Sample, float>) {
    return value;
  } else {
    constexpr double full = std::numeric_limits<Sample>::max();
    const double scaled = static_cast<double>(value) * full + 0.5;
    if (!(scaled >= 0 && scaled < full + 1)) isCut = true;
    return static_cast<Sample>(!(scaled > 0) ? 0 : std::min(scaled, full));
  }
}

template <class Sample>
std::uint64_t store(const float* source, AlphaKind alpha, Sample* target, std::size_t pixels) {
  std::uint64_t cut = 0;
  for (std::size_t i = 0; i < pixels; ++i, source += 4, target += 4) {
    const bool isMultiplied = alpha == AlphaKind::Premultiplied && source[3] != 0;
    const float factor = isMultiplied ? source[3] : 1.0f;
    bool isCut = false;
    for (std::size_t c = 0; c < 3; ++c) target[c] = stored<Sample>(source[c] * factor, isCut);
    bool isAlphaCut = false;
    target[3] = stored<Sample>(source[3], isAlphaCut);
    cut += isCut;
  }
  return cut;
}

void load(const std::byte* source, PixelFormat format, float* target, std::size_t pixels) {
  switch (format.sample) {
    case SampleType::UInt8:
      return load(reinterpret_cast<const std::uint8_t*>(source), format.alpha, target, pixels);
    case SampleType::UInt16:
      return load(reinterpret_cast<const std::uint16_t*>(source), format.alpha, target, pixels);
    case SampleType::Float:
      return load(reinterpret_cast<const float*>(source), format.alpha, target, pixels);
  }
}

std::uint64_t store(const float* source, std::byte* target, PixelFormat format, std::size_t pixels) {
  switch (format.sample) {
    case SampleType::UInt8:
      return store(source, format.alpha, reinterpret_cast<std::uint8_t*>(target), pixels);
    case SampleType::UInt16:
      return store(source, format.alpha, reinterpret_cast<std::uint16_t*>(target), pixels);
    case SampleType::Float:
      break;
  }
  return store(source, format.alpha, reinterpret_cast<float*>(target), pixels);
}

}  // namespace

ColorConversion::ColorConversion(const ColorSpace& from, const ColorSpace& to)
    : ColorConversion(colorModule(), from, to) {}

ColorConversion::ColorConversion(ColorModule& module, const ColorSpace& from, const ColorSpace& to)
    : band_(4 * kBandPixels) {
  std::string reason;
  transform_ = module.makeTransform(from, to, &reason);
  if (!transform_) {
    throw Failure(ExitCode::Input, "cannot convert from " + spaceText(from) + " to " + spaceText(to) + ": " + reason);
  }
}

void ColorConversion::keepTransparent(bool isMultiplied, std::size_t pixels) {
  transparent_.clear();
  for (std::size_t at = 0; at < 4 * pixels; at += 4) {
    if (band_[at + 3] != 0) continue;
    Transparent kept{at, {}};
    if (!isMultiplied) std::copy_n(&band_[at], 3, kept.color.begin());
    transparent_.push_back(kept);
  }
}

std::uint64_t ColorConversion::convert(const std::byte* source, PixelFormat from, std::byte* target, PixelFormat to,
                                       std::size_t pixels) {
  std::uint64_t cut = 0;
  for (std::size_t i = 0; i < pixels; i += kBandPixels) {
    const std::size_t count = std::min(kBandPixels, pixels - i);
    load(source + 4 * i * bytesPerSample(from.sample), from, band_.data(), count);
    keepTransparent(from.alpha == AlphaKind::Straight && to.alpha == AlphaKind::Premultiplied, count);
    transform_->apply(band_.data(), count);
    for (const Transparent& kept : transparent_) std::copy(kept.color.begin(), kept.color.end(), &band_[kept.at]);
    cut += store(band_.data(), target + 4 * i * bytesPerSample(to.sample), to, count);
  }
  return cut;
}

}  // namespace host

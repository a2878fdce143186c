// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Pixels.h"

#include <limits>
#include <type_traits>
#include <utility>

namespace host {
namespace {

template <class Sample>
constexpr std::uint32_t kFull = std::numeric_limits<Sample>::max();

template <class Sample>
void premultiplyIntegers(std::span<Sample> samples) {
  constexpr std::uint64_t full = kFull<Sample>;
  for (std::size_t i = 0; i < samples.size(); i += 4) {
    const std::uint64_t alpha = samples[i + 3];
    for (std::size_t c = 0; c < 3; ++c) {
      samples[i + c] = static_cast<Sample>((samples[i + c] * alpha + full / 2) / full);
    }
  }
}

void premultiplyFloats(std::span<float> samples) {
  for (std::size_t i = 0; i < samples.size(); i += 4) {
    const float alpha = samples[i + 3];
    if (alpha == 1.0f) continue;  // also keeps infinities
    for (std::size_t c = 0; c < 3; ++c) samples[i + c] = alpha == 0.0f ? 0.0f : samples[i + c] * alpha;
  }
}

template <class Sample>
void unpremultiplyIntegers(std::span<Sample> samples) {
  constexpr std::uint64_t full = kFull<Sample>;
  for (std::size_t i = 0; i < samples.size(); i += 4) {
    const std::uint64_t alpha = samples[i + 3];
    if (alpha == full) continue;
    for (std::size_t c = 0; c < 3; ++c) {
      const std::uint64_t color = samples[i + c];
      const std::uint64_t straight = alpha == 0 ? 0 : (color * full + alpha / 2) / alpha;
      samples[i + c] = static_cast<Sample>(straight < full ? straight : full);
    }
  }
}

template <class To, class From>
To convertedSample(From value) {
  if constexpr (std::is_same_v<To, float>) {
    return static_cast<float>(value) / static_cast<float>(kFull<From>);
  } else if constexpr (std::is_same_v<From, float>) {
    if (!(value > 0.0f)) return 0;  // NaN too
    if (value >= 1.0f) return static_cast<To>(kFull<To>);
    return static_cast<To>(static_cast<double>(value) * kFull<To> + 0.5);
  } else if constexpr (sizeof(To) > sizeof(From)) {
    return static_cast<To>(value * 257u);
  } else {
    return static_cast<To>((value + 128u) / 257u);
  }
}

template <class To, class From>
void convertSamples(const ImagePixels& from, ImagePixels& to) {
  const auto source = from.samples<From>();
  const auto target = to.samples<To>();
  for (std::size_t i = 0; i < source.size(); ++i) target[i] = convertedSample<To>(source[i]);
}

template <class From>
void convertFrom(const ImagePixels& from, ImagePixels& to) {
  switch (to.sample) {
    case SampleType::UInt8:
      if constexpr (!std::is_same_v<From, std::uint8_t>) convertSamples<std::uint8_t, From>(from, to);
      break;
    case SampleType::UInt16:
      if constexpr (!std::is_same_v<From, std::uint16_t>) convertSamples<std::uint16_t, From>(from, to);
      break;
    case SampleType::Float:
      if constexpr (!std::is_same_v<From, float>) convertSamples<float, From>(from, to);
      break;
  }
}

}  // namespace

void premultiply(ImagePixels& image) {
  if (image.alpha == AlphaKind::Straight) {
    switch (image.sample) {
      case SampleType::UInt8:
        premultiplyIntegers(image.samples<std::uint8_t>());
        break;
      case SampleType::UInt16:
        premultiplyIntegers(image.samples<std::uint16_t>());
        break;
      case SampleType::Float:
        premultiplyFloats(image.samples<float>());
        break;
    }
  }
  image.alpha = AlphaKind::Premultiplied;
}

void unpremultiply(ImagePixels& image) {
  if (image.alpha != AlphaKind::Premultiplied) return;
  if (image.sample == SampleType::UInt8) unpremultiplyIntegers(image.samples<std::uint8_t>());
  if (image.sample == SampleType::UInt16) unpremultiplyIntegers(image.samples<std::uint16_t>());
  if (image.sample != SampleType::Float) image.alpha = AlphaKind::Straight;
}

ImagePixels converted(ImagePixels image, SampleType sample) {
  if (image.sample == sample) return image;
  ImagePixels result;
  result.width = image.width;
  result.height = image.height;
  result.alpha = image.alpha;
  result.sample = sample;
  allocatePixels(result);
  switch (image.sample) {
    case SampleType::UInt8:
      convertFrom<std::uint8_t>(image, result);
      break;
    case SampleType::UInt16:
      convertFrom<std::uint16_t>(image, result);
      break;
    case SampleType::Float:
      convertFrom<float>(image, result);
      break;
  }
  return result;
}

}  // namespace host

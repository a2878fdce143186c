// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/OutputRows.h"

#include "Host/Pixels/Alpha.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <type_traits>

namespace host {
namespace {

template <class Sample>
constexpr std::uint32_t kFull = std::numeric_limits<Sample>::max();

template <class To, class From>
To convertedSample(From value) {
  if constexpr (std::is_same_v<To, float>) {
    return static_cast<float>(value) / static_cast<float>(kFull<From>);
  } else if constexpr (std::is_same_v<From, float>) {
    const float positive = value > 0.0f ? value : 0.0f;  // NaN is 0
    const double limited = positive < 1.0f ? positive : 1.0f;
    return static_cast<To>(static_cast<std::int32_t>(limited * kFull<To> + 0.5));
  } else if constexpr (sizeof(To) > sizeof(From)) {
    return static_cast<To>(value * 257u);
  } else {
    return static_cast<To>((value + 128u) / 257u);
  }
}

template <class From, class To>
void convertRow(const std::byte* source, std::size_t samples, std::vector<std::byte>* target) {
  target->resize(samples * sizeof(To));
  const auto* const from = reinterpret_cast<const From*>(source);
  auto* const to = reinterpret_cast<To*>(target->data());
  for (std::size_t i = 0; i < samples; ++i) to[i] = convertedSample<To>(from[i]);
}

template <class From>
void convertRowTo(SampleType sample, const std::byte* source, std::size_t samples, std::vector<std::byte>* target) {
  switch (sample) {
    case SampleType::UInt8:
      if constexpr (!std::is_same_v<From, std::uint8_t>) convertRow<From, std::uint8_t>(source, samples, target);
      break;
    case SampleType::UInt16:
      if constexpr (!std::is_same_v<From, std::uint16_t>) convertRow<From, std::uint16_t>(source, samples, target);
      break;
    case SampleType::Float:
      if constexpr (!std::is_same_v<From, float>) convertRow<From, float>(source, samples, target);
      break;
  }
}

void moveAlphaToTheEnd(const std::byte* source, std::size_t pixels, std::vector<std::byte>* target) {
  target->resize(4 * pixels);
  for (std::size_t i = 0; i < 4 * pixels; i += 4) {
    for (std::size_t c = 0; c < 4; ++c) (*target)[i + c] = source[i + (c + 1) % 4];
  }
}

// ITU-R BT.601's luma; exactly the color where all three are the same.
template <class Sample>
Sample grayOf(const Sample* pixel) {
  if (pixel[0] == pixel[1] && pixel[1] == pixel[2]) return pixel[0];
  if constexpr (std::is_same_v<Sample, float>) {
    return static_cast<float>(0.299 * pixel[0] + 0.587 * pixel[1] + 0.114 * pixel[2]);
  } else {
    return static_cast<Sample>((299u * pixel[0] + 587u * pixel[1] + 114u * pixel[2] + 500u) / 1000u);
  }
}

template <class Sample>
void packColors(const Sample* from, std::size_t pixels, Sample* to) {
  for (std::size_t i = 0; i < pixels; ++i) {
    for (std::size_t c = 0; c < 3; ++c) to[3 * i + c] = from[4 * i + c];
  }
}

// Four pixels at a time, which become three words: several times as fast as byte after byte.
template <>
void packColors(const std::uint8_t* from, std::size_t pixels, std::uint8_t* to) {
  static_assert(std::endian::native == std::endian::little);
  const auto put = [](std::uint8_t* place, std::uint32_t word) { std::memcpy(place, &word, sizeof word); };
  const std::size_t fours = pixels / 4;
  for (std::size_t i = 0; i < fours; ++i) {
    std::uint32_t pixel[4];
    std::memcpy(pixel, from + 16 * i, sizeof pixel);
    put(to + 12 * i, (pixel[0] & 0xFFFFFFu) | pixel[1] << 24);
    put(to + 12 * i + 4, (pixel[1] >> 8 & 0xFFFFu) | pixel[2] << 16);
    put(to + 12 * i + 8, (pixel[2] >> 16 & 0xFFu) | pixel[3] << 8);
  }
  for (std::size_t i = 4 * fours; i < pixels; ++i) {
    for (std::size_t c = 0; c < 3; ++c) to[3 * i + c] = from[4 * i + c];
  }
}

template <class Sample>
void packRow(const Sample* from, std::size_t pixels, Channels channels, Sample* to) {
  switch (channels) {
    case Channels::Gray:
      for (std::size_t i = 0; i < pixels; ++i) to[i] = grayOf(from + 4 * i);
      break;
    case Channels::GrayAlpha:
      for (std::size_t i = 0; i < pixels; ++i) {
        to[2 * i] = grayOf(from + 4 * i);
        to[2 * i + 1] = from[4 * i + 3];
      }
      break;
    case Channels::RGB:
      packColors(from, pixels, to);
      break;
    case Channels::RGBA:
      std::memcpy(to, from, 4 * pixels * sizeof(Sample));
      break;
  }
}

SampleType sampleTypeOf(const VortoBitmap& bitmap) {
  switch (TCPixelLayoutOf(bitmap.formatCode).number) {
    case VortoPixelLayout::Number::Word:
      return SampleType::UInt16;
    case VortoPixelLayout::Number::Float:
      return SampleType::Float;
    default:
      return SampleType::UInt8;
  }
}

// Whether integers cannot hold a color, by more than half a unit of 8 bits: less comes of the rounding of floats in
// light, under steep curves. Where they are held without alpha it may not be brighter than that.
bool isOutside(const float* pixel, float most) {
  constexpr float tolerance = 0.5f / 255;
  bool isInside = true;
  for (std::size_t c = 0; c < 3; ++c) isInside &= (pixel[c] >= -tolerance) & (pixel[c] - most <= tolerance);
  return !isInside;
}

// Straight or premultiplied: colors limited without their alpha.
template <class Sample>
void roundPixel(const float* from, AlphaKind alpha, Sample* to) {
  to[3] = convertedSample<Sample>(from[3]);
  const float held =
      alpha == AlphaKind::Premultiplied ? static_cast<float>(to[3]) / static_cast<float>(kFull<Sample>) : 1.0f;
  for (std::size_t c = 0; c < 3; ++c) {
    const float straight = std::clamp(from[c] / from[3], 0.0f, 1.0f);
    to[c] = from[3] > 0 ? convertedSample<Sample>(straight * held) : Sample{0};
  }
}

}  // namespace

OutputRows::OutputRows(const VortoBitmap& bitmap, const RowKind& kind) : bitmap_(bitmap), kind_(kind) {}

const std::byte* OutputRows::ordered(std::uint32_t y) {
  const auto* row = reinterpret_cast<const std::byte*>(bitmap_.data) + y * bytesPerRow(bitmap_);
  if (bitmap_.formatCode != VortoPixelFormat::ARGB8) return row;
  moveAlphaToTheEnd(row, bitmap_.width, &ordered_);
  return ordered_.data();
}

const std::byte* OutputRows::row(std::uint32_t y) {
  const std::byte* row = ordered(y);
  const SampleType stored = sampleTypeOf(bitmap_);
  if (kind_.colors) {
    floats_.resize(std::size_t{4} * bitmap_.width);
    kind_.colors->convertRow(row, stored, floats_.data(), bitmap_.width);
    return floatsAsWanted(floats_.data());
  }
  if (stored == SampleType::Float) return floatsAsWanted(reinterpret_cast<const float*>(row));
  if (stored != kind_.sample) {
    const std::size_t samples = std::size_t{4} * bitmap_.width;
    if (stored == SampleType::UInt8) convertRowTo<std::uint8_t>(kind_.sample, row, samples, &converted_);
    if (stored == SampleType::UInt16) convertRowTo<std::uint16_t>(kind_.sample, row, samples, &converted_);
    row = converted_.data();
  }
  return finished(row);
}

const std::byte* OutputRows::floatsAsWanted(const float* row) {
  const auto* bytes = reinterpret_cast<const std::byte*>(row);
  if (kind_.sample == SampleType::Float) return finished(bytes);
  count(row);
  if (kind_.isRoundedStraight && kind_.alpha != AlphaKind::None) {
    return kind_.sample == SampleType::UInt8 ? roundedStraight<std::uint8_t>(row) : roundedStraight<std::uint16_t>(row);
  }
  convertRowTo<float>(kind_.sample, bytes, std::size_t{4} * bitmap_.width, &converted_);
  return finished(converted_.data());
}

void OutputRows::count(const float* row) {
  const bool isLimitedByAlpha =
      kind_.alpha == AlphaKind::Straight || (kind_.alpha == AlphaKind::Premultiplied && kind_.isRoundedStraight);
  for (const float* pixel = row; pixel != row + std::size_t{4} * bitmap_.width; pixel += 4) {
    clipped_ += isOutside(pixel, isLimitedByAlpha ? pixel[3] : 1.0f);
  }
}

template <class Sample>
const std::byte* OutputRows::roundedStraight(const float* row) {
  const std::size_t pixels = bitmap_.width;
  converted_.resize(4 * pixels * sizeof(Sample));
  auto* const to = reinterpret_cast<Sample*>(converted_.data());
  for (std::size_t i = 0; i < 4 * pixels; i += 4) roundPixel(row + i, kind_.alpha, to + i);
  return packed<Sample>(converted_.data());
}

const std::byte* OutputRows::finished(const std::byte* row) {
  switch (kind_.sample) {
    case SampleType::UInt8:
      return finished<std::uint8_t>(row);
    case SampleType::UInt16:
      return finished<std::uint16_t>(row);
    case SampleType::Float:
      break;
  }
  return finished<float>(row);
}

template <class Sample>
const std::byte* OutputRows::finished(const std::byte* row) {
  const std::size_t pixels = bitmap_.width;
  if (kind_.alpha == AlphaKind::Straight && !isOpaqueRow(reinterpret_cast<const Sample*>(row), pixels)) {
    straight_.assign(row, row + 4 * pixels * sizeof(Sample));
    unpremultiplyRow(reinterpret_cast<Sample*>(straight_.data()), pixels);
    row = straight_.data();
  }
  return packed<Sample>(row);
}

template <class Sample>
const std::byte* OutputRows::packed(const std::byte* row) {
  const std::size_t pixels = bitmap_.width;
  if (kind_.channels == Channels::RGBA) return row;
  packed_.resize(channelCount(kind_.channels) * pixels * sizeof(Sample));
  packRow(reinterpret_cast<const Sample*>(row), pixels, kind_.channels, reinterpret_cast<Sample*>(packed_.data()));
  return packed_.data();
}

}  // namespace host

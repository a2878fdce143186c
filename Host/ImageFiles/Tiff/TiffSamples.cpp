// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/TiffSamples.h"

#include "Host/ImageFiles/HalfFloat.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

namespace host::tiff {
namespace {

template <class Sample>
constexpr Sample full() {
  if constexpr (std::is_same_v<Sample, float>) {
    return 1.0f;
  } else {
    return std::numeric_limits<Sample>::max();
  }
}

template <class Sample>
Sample at(const std::uint8_t* stored, std::size_t index) {
  Sample sample;
  std::memcpy(&sample, stored + index * sizeof(Sample), sizeof(Sample));
  return sample;
}

template <class Sample, std::size_t samples>
void expand(const std::uint8_t* stored, std::size_t count, Sample* pixels) {
  for (std::size_t i = 0; i < count; ++i, pixels += 4) {
    const std::size_t first = i * samples;
    pixels[0] = at<Sample>(stored, first);
    pixels[1] = at<Sample>(stored, samples < 3 ? first : first + 1);
    pixels[2] = at<Sample>(stored, samples < 3 ? first : first + 2);
    pixels[3] = samples % 2 == 1 ? full<Sample>() : at<Sample>(stored, first + samples - 1);
  }
}

template <class Sample>
void expandAs(Channels channels, const std::uint8_t* stored, std::size_t count, std::byte* pixels) {
  auto* const to = reinterpret_cast<Sample*>(pixels);
  switch (channels) {
    case Channels::Gray:
      return expand<Sample, 1>(stored, count, to);
    case Channels::GrayAlpha:
      return expand<Sample, 2>(stored, count, to);
    case Channels::RGB:
      return expand<Sample, 3>(stored, count, to);
    case Channels::RGBA:
      std::memcpy(to, stored, count * 4 * sizeof(Sample));
  }
}

template <class Sample>
void expandPlaneAs(Channels channels, std::size_t plane, const std::uint8_t* stored, std::size_t count,
                   std::byte* pixels) {
  auto* to = reinterpret_cast<Sample*>(pixels);
  const bool spreads = isGray(channels) && plane == 0;
  const bool isAlpha = hasAlpha(channels) && plane + 1 == channelCount(channels);
  for (std::size_t i = 0; i < count; ++i, to += 4) {
    const Sample sample = at<Sample>(stored, i);
    to[isAlpha ? 3 : plane] = sample;
    if (spreads) to[1] = to[2] = sample;
    if (plane == 0 && !hasAlpha(channels)) to[3] = full<Sample>();
  }
}

constexpr std::size_t kPiece = 1024;  // samples that are converted at a time

// Calls the function with floats, piece by piece of whole pixels.
template <class Function>
void withFloats(const std::uint8_t* stored, std::size_t samplesPerPixel, std::size_t count, Function function) {
  std::uint16_t halves[kPiece];
  float floats[kPiece];
  const std::size_t pixelsAtOnce = kPiece / samplesPerPixel;
  for (std::size_t done = 0; done < count; done += pixelsAtOnce) {
    const std::size_t piece = std::min(pixelsAtOnce, count - done);
    std::memcpy(halves, stored + done * samplesPerPixel * 2, piece * samplesPerPixel * 2);
    halvesToFloats(halves, piece * samplesPerPixel, floats);
    function(reinterpret_cast<const std::uint8_t*>(floats), done, piece);
  }
}

constexpr std::size_t kFloatPixel = 4 * sizeof(float);

}  // namespace

void expandPixels(const Kind& kind, const std::uint8_t* stored, std::size_t count, std::byte* pixels) {
  switch (kind.stored) {
    case Stored::UInt8:
      return expandAs<std::uint8_t>(kind.channels, stored, count, pixels);
    case Stored::UInt16:
      return expandAs<std::uint16_t>(kind.channels, stored, count, pixels);
    case Stored::Float:
      return expandAs<float>(kind.channels, stored, count, pixels);
    case Stored::Half:
      withFloats(stored, channelCount(kind.channels), count,
                 [&](const std::uint8_t* floats, std::size_t done, std::size_t piece) {
                   expandAs<float>(kind.channels, floats, piece, pixels + done * kFloatPixel);
                 });
  }
}

void expandPlane(const Kind& kind, std::size_t plane, const std::uint8_t* stored, std::size_t count,
                 std::byte* pixels) {
  switch (kind.stored) {
    case Stored::UInt8:
      return expandPlaneAs<std::uint8_t>(kind.channels, plane, stored, count, pixels);
    case Stored::UInt16:
      return expandPlaneAs<std::uint16_t>(kind.channels, plane, stored, count, pixels);
    case Stored::Float:
      return expandPlaneAs<float>(kind.channels, plane, stored, count, pixels);
    case Stored::Half:
      withFloats(stored, 1, count, [&](const std::uint8_t* floats, std::size_t done, std::size_t piece) {
        expandPlaneAs<float>(kind.channels, plane, floats, piece, pixels + done * kFloatPixel);
      });
  }
}

}  // namespace host::tiff

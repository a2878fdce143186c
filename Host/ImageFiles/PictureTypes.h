// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

enum class SampleType { UInt8, UInt16, Float };

inline std::size_t bytesPerSample(SampleType sample) {
  return sample == SampleType::UInt8 ? 1 : sample == SampleType::UInt16 ? 2 : 4;
}

// The depth of a file, of rendering, or both. Half is a depth of files; pixels of that depth are held as floats.
enum class Depth { Bits8, Bits16, Half, Float };

enum class AlphaKind { None, Straight, Premultiplied };

// Which samples a pixel of a file has.
enum class Channels { Gray, GrayAlpha, RGB, RGBA };

inline std::size_t channelCount(Channels channels) {
  switch (channels) {
    case Channels::Gray:
      return 1;
    case Channels::GrayAlpha:
      return 2;
    case Channels::RGB:
      return 3;
    case Channels::RGBA:
      break;
  }
  return 4;
}
inline bool hasAlpha(Channels channels) {
  return channels == Channels::GrayAlpha || channels == Channels::RGBA;
}
inline bool isGray(Channels channels) {
  return channels == Channels::Gray || channels == Channels::GrayAlpha;
}

}  // namespace host

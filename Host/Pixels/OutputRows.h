// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Pixels/Bitmaps.h"

#include <vector>

namespace host {

// Takes rows to another color space on their way into a file.
class RowColors {
 public:
  virtual ~RowColors() = default;
  // Premultiplied red, green, blue and alpha; premultiplied floats result, which nothing limits.
  virtual void convertRow(const std::byte* source, SampleType sample, float* target, std::size_t pixels) = 0;
};

// What the rows of a file hold.
struct RowKind {
  SampleType sample = SampleType::UInt8;
  Channels channels = Channels::RGBA;
  AlphaKind alpha = AlphaKind::Premultiplied;
  // Floats become integers without their alpha, rounded once; else they are rounded as they are, premultiplied.
  bool isRoundedStraight = false;
  RowColors* colors = nullptr;  // to the file's space; null where the result is in it
};

// The rows of a result (RGBA8, ARGB8, RGBA16 or RGBAFloat, premultiplied) as a file wants them, made one at a time.
// Integers widen to their whole range and narrow to the nearest value; floats are cut to 0 to 1 first, NaN to 0. Floats
// from integers are value / maximum. Without alpha they show the picture over black; gray is the color of gray pixels
// and 0.299 red + 0.587 green + 0.114 blue of others. The bitmap and the colors must
// outlive it.
class OutputRows : public PixelRows {
 public:
  OutputRows(const VortoBitmap& bitmap, const RowKind& kind);
  const std::byte* row(std::uint32_t y) override;

  // Of how many pixels integers could not hold the colors: by more than half a unit of 8 bits, or at all. Of the
  // rows that were taken.
  std::uint64_t clippedPixels() const { return clipped_; }

 private:
  const std::byte* ordered(std::uint32_t y);
  const std::byte* floatsAsWanted(const float* row);
  void count(const float* row);
  template <class Sample>
  const std::byte* roundedStraight(const float* row);
  template <class Sample>
  const std::byte* finished(const std::byte* row);
  const std::byte* finished(const std::byte* row);
  template <class Sample>
  const std::byte* packed(const std::byte* row);

  const VortoBitmap& bitmap_;
  const RowKind kind_;
  std::vector<std::byte> ordered_, converted_, straight_, packed_;
  std::vector<float> floats_;
  std::uint64_t clipped_ = 0;
};

}  // namespace host

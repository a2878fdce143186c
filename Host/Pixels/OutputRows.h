// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Pixels/Bitmaps.h"

#include <vector>

namespace host {

// What the rows of a file hold.
struct RowKind {
  SampleType sample = SampleType::UInt8;
  Channels channels = Channels::RGBA;
  AlphaKind alpha = AlphaKind::Premultiplied;
};

// The rows of a result (RGBA8, ARGB8, RGBA16 or RGBAFloat, premultiplied) as a file wants them, made one at a time.
// Integers widen to their whole range and narrow to the nearest value; floats are cut to 0 to 1 first, NaN to 0. Floats
// from integers are value / maximum. Without alpha they show the picture over black; gray is the color of gray pixels
// and 0.299 red + 0.587 green + 0.114 blue of others. The bitmap must outlive it.
class OutputRows : public PixelRows {
 public:
  OutputRows(const VortoBitmap& bitmap, const RowKind& kind);
  const std::byte* row(std::uint32_t y) override;

 private:
  template <class Sample>
  const std::byte* finished(const std::byte* row);

  const VortoBitmap& bitmap_;
  const RowKind kind_;
  std::vector<std::byte> ordered_, converted_, straight_, packed_;
};

}  // namespace host

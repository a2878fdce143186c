// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// How RGB becomes YUV of limited range, as ITU-T H.273 defines it by the weights of red and blue in luma.
struct YuvKind {
  double red = 0.2126;
  double blue = 0.0722;
  int bits = 8;  // of the result, 8 to 16: in bytes at 8, else in the low bits of 16
  // Chroma has half the columns, each between two, and half the rows; edges are repeated. So it is read again: other
  // places would move colors by half a pixel each time that a clip is read and written.
  bool isHalfWide = false;
  bool isHalfHigh = false;
};

// Packed RGB, of bytes or of 16 bits, that becomes planes, row by row. Computed in floats, every value rounded once:
// within 0.51 steps of the definition. Which instructions the processor has makes no difference.
class YuvRows {
 public:
  // `samples` a pixel, 3 or 4 of which the last is alpha; `bytes` each, 1 or 2.
  YuvRows(const YuvKind& kind, std::size_t width, std::size_t samples, std::size_t bytes);

  // One row of luma, and what chroma needs of it. `first`: a row of chroma begins with it.
  void luma(const void* row, void* y, bool first);
  // The row of chroma of the rows since the first.
  void chroma(void* cb, void* cr);
  // The alpha of a row, which uses its whole range.
  void alpha(const void* row, void* plane);

 private:
  float* plane(int index) { return values_.data() + static_cast<std::size_t>(index) * stride_; }

  YuvKind kind_;
  std::size_t width_;
  std::size_t samples_;
  std::size_t bytes_;
  std::size_t stride_;
  float luma_[4] = {};  // by red, green and blue; what is added
  float chroma_[2][4] = {};
  std::vector<float> values_;  // planes of one row: its red, green and blue, and their sums over rows of chroma
  int rows_ = 0;               // that are in the sums
};

}  // namespace host

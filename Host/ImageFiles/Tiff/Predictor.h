// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace host::tiff {

// How samples of deflated rows were prepared.
struct Preparation {
  std::uint16_t predictor = 1;
  std::size_t samplesPerPixel = 1;  // that are stored beside each other
  std::size_t sampleSize = 1;       // in bytes: 1, 2 or 4
  bool isTurned = false;            // the file's byte order is not this machine's

  bool isKnown() const { return predictor >= 1 && predictor <= 3 && (predictor != 3 || sampleSize > 1); }
};

// Makes samples of a row of `size` bytes, in place; `scratch` has room for as many.
void undoPreparation(const Preparation& preparation, std::uint8_t* row, std::size_t size, std::uint8_t* scratch);

}  // namespace host::tiff

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Tiff/Predictor.h"
#include "Host/ImageFiles/Tiff/TiffFile.h"
#include "Host/ImageFiles/Tiff/TiffKind.h"

#include <libdeflate.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace host::tiff {

// Inflates strips and tiles at once. The library does it row by row; of a strip or tile that it inflates at once it may
// leave the end unwritten when it holds more than it should.
class Inflater {
 public:
  Inflater(const TiffFile& file, const Kind& kind, std::span<const std::uint8_t> bytes);

  // Whether the file's strips or tiles are deflated, in a way that is known here.
  bool isUsed() const { return isUsed_; }

  // Makes rows of stored samples in this machine's byte order. False when the strip or tile is damaged or does not hold
  // as much; a tile has to hold exactly that, a strip may hold more.
  bool inflate(std::uint32_t number, std::size_t rowSize, std::span<std::uint8_t> rows);

 private:
  const TiffFile& file_;
  std::span<const std::uint8_t> bytes_;
  Preparation preparation_;
  bool mayHoldMore_ = false;
  bool isUsed_ = false;
  std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater_{
      nullptr, libdeflate_free_decompressor};
  std::vector<std::uint8_t> scratch_;
};

}  // namespace host::tiff

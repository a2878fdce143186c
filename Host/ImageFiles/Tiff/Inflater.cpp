// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/Inflater.h"

#include "Host/ImageFiles/FileBytes.h"

#include <new>

namespace host::tiff {

Inflater::Inflater(const TiffFile& file, const Kind& kind, std::span<const std::uint8_t> bytes)
    : file_(file), bytes_(bytes) {
  const auto compression = file.field<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  if (compression != COMPRESSION_ADOBE_DEFLATE && compression != COMPRESSION_DEFLATE) return;
  preparation_.predictor = file.field<std::uint16_t>(TIFFTAG_PREDICTOR, PREDICTOR_NONE);
  preparation_.samplesPerPixel = kind.isPlanar ? 1 : channelCount(kind.channels);
  preparation_.sampleSize = sizeOf(kind.stored);
  preparation_.isTurned = TIFFIsByteSwapped(file.get()) != 0;
  const bool isFloat = kind.stored == Stored::Half || kind.stored == Stored::Float;
  mayHoldMore_ = !kind.isTiled;
  isUsed_ = preparation_.isKnown() && (preparation_.predictor != 3 || isFloat);
  if (!isUsed_) return;
  inflater_.reset(libdeflate_alloc_decompressor());
  if (!inflater_) throw std::bad_alloc();
}

bool Inflater::inflate(std::uint32_t number, std::size_t rowSize, std::span<std::uint8_t> rows) {
  const std::uint64_t offset = TIFFGetStrileOffset(file_.get(), number);
  const std::uint64_t size = TIFFGetStrileByteCount(file_.get(), number);
  if (offset > bytes_.size() || size > bytes_.size() - offset) return false;
  const auto stored = bytes_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
  const bool isExact = libdeflate_zlib_decompress(inflater_.get(), stored.data(), stored.size(), rows.data(),
                                                  rows.size(), nullptr) == LIBDEFLATE_SUCCESS;
  if (!isExact && !(mayHoldMore_ && inflateFirst(stored, rows))) return false;
  scratch_.resize(rowSize);
  for (std::size_t at = 0; at < rows.size(); at += rowSize) {
    undoPreparation(preparation_, rows.data() + at, rowSize, scratch_.data());
  }
  return true;
}

}  // namespace host::tiff

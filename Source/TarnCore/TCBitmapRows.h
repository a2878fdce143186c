// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapSlack.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// How operations on bitmaps walk through rows without leaving what was allocated. Sizes are computed in 64 bits here,
// so none wraps: what does not fit the allocation is cut off at its end. What is found to be inside is declared
// (TCBitmapSlack.h).
namespace vorto {

// More than any allocation has; larger sizes are cut down to it, so that a row times a stride fits 64 bits.
inline constexpr std::uint64_t kBeyondMemory = std::uint64_t{1} << 32;

inline std::uint64_t boundedProduct(std::uint64_t a, std::uint64_t b) {
  return b != 0 && a > kBeyondMemory / b ? kBeyondMemory : a * b;
}

// Without channels, or with less than a byte for one, rows take no room: all would lie on top of one another, and the
// work would grow with the square of the memory.
inline bool fillsRows(const VortoBitmap& bitmap) {
  return bitmap.channels > 0 && bitmap.bitsPerChannel >= 8;
}

inline std::uint64_t pixelBytesOf(const VortoBitmap& bitmap) {
  return std::min(std::uint64_t{bitmap.channels} * bitmap.bitsPerChannel / 8, kBeyondMemory);
}

inline std::uint64_t rowBytesOf(const VortoBitmap& bitmap) {
  const std::uint64_t channels = boundedProduct(bitmap.width, bitmap.channels);
  return std::min(boundedProduct(channels, bitmap.bitsPerChannel / 8) + bitmap.rowPadding, kBeyondMemory);
}

// How many of `wanted` bytes from an offset on are inside the allocation.
inline std::size_t bytesWithin(const VortoBitmap& bitmap, std::uint64_t offset, std::uint64_t wanted) {
  const std::uint64_t bytes = bitmap.accessibleBytes();
  if (offset >= bytes) return 0;
  const std::uint64_t count = std::min(wanted, bytes - offset);
  declareTouched(bitmap.data + offset, count);
  return count;
}

// How many of `wanted` records of `size` bytes, `step` apart (not 0), lie wholly inside the allocation from an offset
// on.
inline std::size_t recordsWithin(const VortoBitmap& bitmap, std::uint64_t offset, std::uint64_t wanted,
                                 std::uint64_t step, std::uint64_t size) {
  const std::uint64_t bytes = bitmap.accessibleBytes();
  if (offset >= bytes || bytes - offset < size) return 0;
  const std::uint64_t count = std::min(wanted, (bytes - offset - size) / step + 1);
  if (count > 0) declareTouched(bitmap.data + offset, (count - 1) * step + size);
  return count;
}

// Calls operation(pixels, count) for the rows of four-byte pixels that are `step` bytes apart, in order; once for all
// of them when no padding separates the rows.
template <class Operation>
void forEachRow(VortoBitmap& bitmap, std::uint64_t step, Operation operation) {
  const std::uint64_t stride = rowBytesOf(bitmap);
  if (step == 0 || stride == 0 || !fillsRows(bitmap)) return;
  if (stride == bitmap.width * step) {
    const std::uint64_t pixels = std::uint64_t{bitmap.width} * bitmap.height;
    return operation(bitmap.data, recordsWithin(bitmap, 0, pixels, step, 4));
  }
  const std::uint64_t end = std::min(boundedProduct(stride, bitmap.height), std::uint64_t{bitmap.accessibleBytes()});
  for (std::uint64_t offset = 0; offset < end; offset += stride) {
    operation(bitmap.data + offset, recordsWithin(bitmap, offset, bitmap.width, step, 4));
  }
}

// Calls operation(to, from, count) for the source's rows of four-byte pixels that are `step` bytes apart in both
// bitmaps, in order; once for all of them when no padding separates the rows.
template <class Operation>
void forEachRowOf(const VortoBitmap& source, VortoBitmap& destination, std::uint64_t step, Operation operation) {
  const std::uint64_t from = rowBytesOf(source);
  const std::uint64_t to = rowBytesOf(destination);
  if (step == 0 || from == 0 || !fillsRows(source)) return;
  const bool inOnePiece = from == source.width * step && to == from;
  const std::uint64_t pixels = inOnePiece ? std::uint64_t{source.width} * source.height : source.width;
  const std::uint64_t rows = inOnePiece ? std::min(source.height, 1u) : source.height;
  for (std::uint64_t row = 0; row < rows; ++row) {
    const std::size_t count = std::min(recordsWithin(source, row * from, pixels, step, 4),
                                       recordsWithin(destination, row * to, pixels, step, 4));
    if (count == 0) return;  // nor is there anything in later rows
    operation(destination.data + row * to, source.data + row * from, count);
  }
}

}  // namespace vorto

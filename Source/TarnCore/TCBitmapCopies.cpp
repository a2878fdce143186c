// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapRows.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/TCPrint.h"
#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/UnpremultiplyTruncated.h"
#include "TarnCore/kernels/YUV422.h"

#include <cstring>

namespace {

using namespace vorto::kernels;
using Format = VortoPixelFormat;

constexpr BytePattern kARGBToRGBA = BytePattern::ofOrder({1, 2, 3, 0});
constexpr BytePattern kRGBAToARGB = BytePattern::ofOrder({3, 0, 1, 2});

constexpr const char* kSource = "TarnCore/TCBitmap";  // what reports name

// Calls operation(to, from, rowOffset, sourceOffset) for the rows of the destination, in order, each with the source
// row that mirrors it.
template <class Operation>
void forEachMirroredRow(const VortoBitmap& destination, const VortoBitmap& source, Operation operation) {
  const std::uint64_t to = vorto::rowBytesOf(destination);
  const std::uint64_t from = vorto::rowBytesOf(source);
  if (to == 0) return;
  const std::uint64_t rows = destination.height;
  for (std::uint64_t row = 0; row < rows && row * to < destination.accessibleBytes(); ++row) {
    operation(row * to, (rows - 1 - row) * from);
  }
}

bool isStreamedTo(const VortoBitmap& destination) {
  return isStreamed(destination.accessibleBytes());
}

void copyRows(VortoBitmap& destination, const VortoBitmap& source) {
  const std::uint64_t wanted = vorto::rowBytesOf(destination);
  const bool streamed = isStreamedTo(destination);
  forEachMirroredRow(destination, source, [&](std::uint64_t to, std::uint64_t from) {
    const std::size_t bytes =
        std::min(vorto::bytesWithin(destination, to, wanted), vorto::bytesWithin(source, from, wanted));
    if (bytes > 0) copyBytes(destination.data + to, source.data + from, bytes, streamed);
  });
}

void convertRows(VortoBitmap& destination, const VortoBitmap& source) {
  const std::uint64_t wanted = (vorto::rowBytesOf(source) + 3) / 4;
  const bool streamed = isStreamedTo(destination);
  forEachMirroredRow(destination, source, [&](std::uint64_t to, std::uint64_t from) {
    const std::size_t pairs =
        std::min(vorto::recordsWithin(destination, to, wanted, 8, 8), vorto::recordsWithin(source, from, wanted, 4, 4));
    if (pairs > 0) convertYUVtoARGB(destination.data + to, source.data + from, pairs, streamed);
  });
}

void swizzle(VortoBitmap& destination, const VortoBitmap& source, const BytePattern& order) {
  const std::uint64_t step = vorto::pixelBytesOf(source);
  const bool streamed = isStreamedTo(destination) && destination.data != source.data;
  vorto::forEachRowOf(source, destination, step, [&](std::uint8_t* to, const std::uint8_t* from, std::size_t count) {
    if (step == 4) return shuffleBytes(to, from, 4 * count, order, 4, streamed);
    for (std::size_t i = 0; i < count; ++i) {  // pixels of another size: their four bytes are alone, or overlap
      const std::uint8_t* pixel = from + i * step;
      const std::uint8_t ordered[] = {pixel[order.bytes[0]], pixel[order.bytes[1]], pixel[order.bytes[2]],
                                      pixel[order.bytes[3]]};
      std::memcpy(to + i * step, ordered, sizeof ordered);
    }
  });
}

// Where a row of a rectangle begins in the source, in bytes; before the first byte where negative. False when that is
// too far outside to be told.
bool offsetOf(std::int64_t row, std::uint64_t rowBytes, int column, std::uint64_t columnBytes, std::int64_t& offset) {
  std::int64_t rowOffset;
  return !__builtin_mul_overflow(row, static_cast<std::int64_t>(rowBytes), &rowOffset) &&
         !__builtin_add_overflow(rowOffset, column * static_cast<std::int64_t>(columnBytes), &offset);
}

// Copies the bytes of a row that exist on both sides.
void cropRow(VortoBitmap& destination, std::uint64_t to, const VortoBitmap& source, std::int64_t from) {
  const std::uint64_t wanted = vorto::rowBytesOf(destination);
  const std::uint64_t missing = from < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(from) : 0;
  if (missing >= wanted) return;
  const std::uint64_t begin = static_cast<std::uint64_t>(from) + missing;
  const std::size_t bytes = std::min(vorto::bytesWithin(destination, to + missing, wanted - missing),
                                     vorto::bytesWithin(source, begin, wanted - missing));
  if (bytes > 0) copyBytes(destination.data + to + missing, source.data + begin, bytes, isStreamedTo(destination));
}

// Converts the columns of a row that exist on both sides; the first of them is where chroma starts.
void cropYUVRow(VortoBitmap& destination, std::uint64_t to, const VortoBitmap& source, std::int64_t from, int column) {
  const std::uint64_t step = vorto::pixelBytesOf(destination);
  std::uint64_t missing = from < 0 ? (std::uint64_t{1} - static_cast<std::uint64_t>(from)) / 2 : 0;
  std::uint64_t begin = static_cast<std::uint64_t>(from) + 2 * missing;
  bool isOdd = ((static_cast<std::uint64_t>(static_cast<std::int64_t>(column)) + missing) & 1) != 0;
  if (isOdd && begin < 2) {  // its pair begins outside
    ++missing;
    begin += 2;
    isOdd = false;
  }
  if (step == 0 || !vorto::fillsRows(destination) || missing >= destination.width) return;
  if (vorto::bytesWithin(source, isOdd ? begin - 2 : begin, 4) < 3) return;  // its pair ends outside
  const std::uint64_t wanted = destination.width - missing;
  const std::size_t count = std::min(vorto::recordsWithin(destination, to + missing * step, wanted, step, 4),
                                     vorto::recordsWithin(source, begin, wanted, 2, 2));
  if (count == 0) return;
  convertLaggingYUVtoARGB(destination.data + to + missing * step, step, source.data + begin, isOdd, count,
                          isStreamedTo(destination));
}

}  // namespace

void VortoBitmap::copyWithFlip(const VortoBitmap& source) {
  if (!data || !source.data) return;
  if (channels == source.channels) {
    if (vorto::rowBytesOf(*this) != vorto::rowBytesOf(source)) {
      VortoUnreachable(kSource, __LINE__, "Cannot copyWithFlip between bitdepths");
    }
    return copyRows(*this, source);
  }
  if (formatCode != Format::ARGB8 || source.formatCode != Format::YUV8) {
    VortoUnreachable(kSource, __LINE__, "Cannot copyWithFlip between formats");
  }
  convertRows(*this, source);
}

void VortoBitmap::copyWithFlipAndSwizzleARGBtoRGBA(const VortoBitmap& source) {
  if (!data || !source.data) return;
  if (vorto::rowBytesOf(*this) != vorto::rowBytesOf(source)) {
    VortoUnreachable(kSource, __LINE__, "Cannot copyWithFlipAndSwizzle between bitdephs");
  }
  if (!vorto::fillsRows(*this)) return;
  const bool streamed = isStreamedTo(*this);
  forEachMirroredRow(*this, source, [&](std::uint64_t to, std::uint64_t from) {
    const std::size_t count =
        std::min(vorto::recordsWithin(*this, to, width, 4, 4), vorto::recordsWithin(source, from, width, 4, 4));
    if (count > 0) shuffleBytes(data + to, source.data + from, 4 * count, kARGBToRGBA, 4, streamed);
  });
}

void VortoBitmap::copyWithSwizzleARGBToRGBA(const VortoBitmap& source) {
  swizzle(*this, source, kARGBToRGBA);
}

void VortoBitmap::copyWithSwizzleRGBToARGB(const VortoBitmap& source) {
  swizzle(*this, source, kRGBAToARGB);
}

void VortoBitmap::copyWithCropping(const VortoBitmap& source, int x, int y, bool flip) {
  const std::uint64_t to = vorto::rowBytesOf(*this);
  const bool isYUV = source.formatCode == Format::YUV8;
  const std::uint64_t columnBytes = isYUV ? 2 : vorto::pixelBytesOf(source);
  if (to == 0 || !source.data) return;
  for (std::uint64_t row = 0; row < height && row * to < accessibleBytes(); ++row) {
    const auto line = static_cast<std::int64_t>(flip ? height - 1 - row : row);
    std::int64_t from;
    if (!offsetOf(y + line, vorto::rowBytesOf(source), x, columnBytes, from)) continue;
    if (isYUV) {
      cropYUVRow(*this, row * to, source, from, x);
    } else {
      cropRow(*this, row * to, source, from);
    }
  }
}

void VortoBitmap::copyWithUnPreMult(const VortoBitmap& source, const VortoColor& background) {
  const Background color = {background.getRed(), background.getGreen(), background.getBlue()};
  const std::uint64_t step = vorto::pixelBytesOf(source);
  vorto::forEachRowOf(source, *this, step, [&](std::uint8_t* to, const std::uint8_t* from, std::size_t count) {
    unpremultiplyTruncated(to, from, count, step, color);
  });
}

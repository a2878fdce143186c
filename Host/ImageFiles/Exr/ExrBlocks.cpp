// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrBlocks.h"

#include "Host/ImageFiles/Exr/ExrTiles.h"
#include "Host/ImageFiles/FileBytes.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <array>
#include <limits>

namespace host::exr {
namespace {

std::int32_t integerIn(FileBytes& bytes, std::uint64_t offset) {
  return static_cast<std::int32_t>(bytes.number(offset, 4));
}

// Where a block's own header starts, behind the part's number.
std::uint64_t blockOffset(const File& file, const Part& part, std::uint64_t index) {
  FileBytes bytes(file.bytes, false);
  return bytes.number(part.offsetTable + index * 8, 8);
}

std::uint64_t placeSize(const Part& part) {
  return part.isTiled ? 16 : 4;  // tiles have two coordinates and two levels
}

bool isInFile(const File& file, std::size_t number, std::uint64_t index, std::uint64_t firstBlock) {
  const Part& part = file.parts[number];
  FileBytes bytes(file.bytes, false);
  std::uint64_t at = blockOffset(file, part, index);
  if (at < firstBlock || at > bytes.size()) return false;
  if (file.hasParts) {
    if (bytes.number(at, 4) != number) return false;
    at += 4;
  }
  at += placeSize(part);
  if (part.isDeep) {
    const std::uint64_t counts = bytes.number(at, 8);
    const std::uint64_t samples = bytes.number(at + 8, 8);
    if (counts > bytes.size() || samples > bytes.size()) return false;
    bytes.range(at + 24, counts + samples);
  } else {
    bytes.range(at + 4, bytes.number(at, 4));
  }
  return bytes.isWhole();
}

// The pixels of a block, by its place in the table.
Box boxOf(const Part& part, std::uint64_t index) {
  Box box = part.data;
  if (part.isTiled) {
    box.left += static_cast<std::int64_t>(index % tilesAcross(part) * part.tileWidth);
    box.top += static_cast<std::int64_t>(index / tilesAcross(part) * part.tileHeight);
    box.right = std::min(box.right, box.left + static_cast<std::int64_t>(part.tileWidth) - 1);
    box.bottom = std::min(box.bottom, box.top + static_cast<std::int64_t>(part.tileHeight) - 1);
  } else {
    const std::uint64_t rows = rowsOfBlock(part.compression);
    box.top += static_cast<std::int64_t>(index * rows);
    box.bottom = std::min(box.bottom, box.top + static_cast<std::int64_t>(rows) - 1);
  }
  return box;
}

// Whether a block says itself that it is at the place that the table gives it.
bool isAtItsPlace(FileBytes& bytes, std::uint64_t at, const Part& part, std::uint64_t index, const Box& box) {
  if (!part.isTiled) return integerIn(bytes, at) == box.top;
  const std::uint64_t across = tilesAcross(part);
  return bytes.number(at, 4) == index % across && bytes.number(at + 4, 4) == index / across &&
         bytes.number(at + 8, 8) == 0;
}

// The bitmap of the values in use, then as many bytes of codes as their length says.
bool hasCodes(std::span<const std::uint8_t> stored) {
  FileBytes bytes(stored, false);
  const std::uint64_t first = bytes.number(0, 2);
  const std::uint64_t last = bytes.number(2, 2);
  const std::uint64_t codes = 4 + (first <= last ? last - first + 1 : 0);
  const std::uint64_t length = bytes.number(codes, 4);
  return bytes.isWhole() && length > 0 && length <= stored.size() - codes - 4;
}

// No more than this can a byte stand for.
std::uint64_t largestRatio(std::uint8_t compression) {
  switch (compression) {
    case kNone:
      return 1;
    case kRunLengths:
      return 64;
    case kDwaa:
    case kDwab:
      return 1 << 17;  // runs within what is deflated
    case kZip:
    case kZipRow:
      return 1032;
    default:
      return 1 << 11;
  }
}

bool canHold(std::span<const std::uint8_t> stored, std::uint8_t compression, std::uint64_t size) {
  if (stored.size() == size) return true;  // what does not become smaller is stored as it is
  return !stored.empty() && stored.size() < size && size <= stored.size() * largestRatio(compression) &&
         (compression != kPiz || hasCodes(stored));
}

}  // namespace

bool areBlocksWhole(const File& file, std::string* reason) {
  const Part& last = file.parts.back();
  const std::uint64_t firstBlock = last.offsetTable + last.chunkCount * 8;
  for (std::size_t number = 0; number < file.parts.size(); ++number) {
    for (std::uint64_t index = 0; index < file.parts[number].chunkCount; ++index) {
      if (!isInFile(file, number, index, firstBlock)) return NSRefuse(reason, kDamaged);
    }
  }
  return true;
}

bool checkUnseen(const Part& part, std::string* reason) {
  constexpr std::uint64_t kMostUnseen = std::uint64_t{1} << 26;  // pixels
  const Box largest = boxOf(part, 0);
  const std::uint64_t shown =
      std::min(largest.width(), part.display.width()) * std::min(largest.height(), part.display.height());
  return largest.width() * largest.height() - shown <= kMostUnseen ||
         NSRefuse(reason, "it stores far more pixels at once than it shows");
}

std::uint64_t blockCount(const Part& part) {
  return part.isTiled ? tilesAcross(part) * tilesDown(part) : part.chunkCount;
}

bool readBlock(const File& file, std::size_t number, std::uint64_t index, Block* block, std::string* reason) {
  const Part& part = file.parts[number];
  FileBytes bytes(file.bytes, false);
  const std::uint64_t at = blockOffset(file, part, index) + (file.hasParts ? 4 : 0);
  block->box = boxOf(part, index);
  if (!isAtItsPlace(bytes, at, part, index, block->box)) return NSRefuse(reason, kDamaged);
  const std::uint64_t sizeAt = at + placeSize(part);
  block->stored = bytes.range(sizeAt + 4, bytes.number(sizeAt, 4));

  std::uint64_t pixelSize = 0;
  for (const Channel& channel : part.channels) pixelSize += channel.size();
  const std::uint64_t pixels = block->box.width() * block->box.height();
  constexpr std::uint64_t kLargest =
      std::numeric_limits<std::int32_t>::max();  // more the format's library does not read
  if (!bytes.isWhole() || pixels > kLargest / pixelSize ||
      !canHold(block->stored, part.compression, pixels * pixelSize)) {
    return NSRefuse(reason, kDamaged);
  }
  block->size = static_cast<std::size_t>(pixels * pixelSize);
  return true;
}

}  // namespace host::exr

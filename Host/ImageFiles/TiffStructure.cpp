// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/TiffStructure.h"

#include "Host/ImageFiles/FileBytes.h"

#include <algorithm>
#include <limits>
#include <map>
#include <set>

namespace host {
namespace {

enum Tag : std::uint16_t {
  kImageWidth = 256,
  kImageLength = 257,
  kBitsPerSample = 258,
  kCompression = 259,
  kPhotometric = 262,
  kStripOffsets = 273,
  kSamplesPerPixel = 277,
  kStripByteCounts = 279,
  kPlanarConfiguration = 284,
  kTileWidth = 322,
  kTileLength = 323,
  kTileOffsets = 324,
  kTileByteCounts = 325,
};

// Tiles that are larger than their picture are so by no more than this; the rest would be made and thrown away.
constexpr std::uint64_t kMostPastEdge = 4096;
// What all tiles may take besides 16 times what the picture takes.
constexpr std::uint64_t kMostPastPicture = std::uint64_t{1} << 28;

enum Compression : std::uint64_t { kNone = 1, kLzw = 5, kDeflate = 8, kOldDeflate = 32946, kPackbits = 32773 };
constexpr std::uint64_t kYCbCr = 6;  // may have fewer samples of colors than pixels

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

std::uint64_t product(std::uint64_t left, std::uint64_t right) {
  return right != 0 && left > kMost / right ? kMost : left * right;
}
std::uint64_t sum(std::uint64_t left, std::uint64_t right) {
  return left > kMost - right ? kMost : left + right;
}

// No more than this can a stored byte stand for.
std::uint64_t largestRatio(std::uint64_t compression) {
  switch (compression) {
    case kNone:
      return 1;
    case kPackbits:
      return 64;
    case kDeflate:
    case kOldDeflate:
      return 1032;
    case kLzw:
      return 4096;
    default:
      return kMost;
  }
}

// The whole numbers that belong to a tag.
struct Field {
  std::uint64_t count = 0;
  std::uint64_t offset = 0;
  unsigned size = 0;  // of one number, in bytes
};

class Directories {
 public:
  Directories(std::span<const std::uint8_t> file, DeflatedTiles tiles)
      : bytes_(file, file[0] == 'M'), isBig_(bytes_.number(2, 2) == 43), tiles_(tiles) {}

  bool areWhole() {
    bool isFirst = true;
    std::set<std::uint64_t> seen;
    for (std::uint64_t at = isBig_ ? bytes_.number(8, 8) : bytes_.number(4, 4); at != 0 && isSound();) {
      if (!seen.insert(at).second) return false;  // a circle
      at = readDirectory(at);
      if (!isPictureWhole(isFirst)) return false;
      isFirst = false;
    }
    return isSound();
  }

 private:
  static unsigned sizeOfType(std::uint64_t type) {
    switch (type) {
      case 1:
      case 6:
        return 1;
      case 3:
      case 8:
        return 2;
      case 4:
      case 9:
      case 13:
        return 4;
      case 16:
      case 17:
      case 18:
        return 8;
      default:
        return 0;  // no whole numbers
    }
  }

  bool isSound() const { return bytes_.isWhole() && looks_ <= bytes_.size(); }

  // Returns where the next directory is; 0 after the last.
  std::uint64_t readDirectory(std::uint64_t at) {
    fields_.clear();
    const unsigned countSize = isBig_ ? 8 : 2;
    const unsigned entrySize = isBig_ ? 20 : 12;
    const unsigned wordSize = isBig_ ? 8 : 4;
    const std::uint64_t count = bytes_.number(at, countSize);
    const std::uint64_t first = at + countSize;
    if (bytes_.range(first, count > bytes_.size() ? bytes_.size() : count * entrySize).empty()) return 0;
    looks_ += count;
    if (!isSound()) return 0;
    for (std::uint64_t entry = first; entry < first + count * entrySize; entry += entrySize) {
      Field field;
      field.size = sizeOfType(bytes_.number(entry + 2, 2));
      field.count = bytes_.number(entry + 4, wordSize);
      field.offset = entry + 4 + wordSize;
      if (field.size == 0 || field.count > bytes_.size()) continue;
      if (field.count * field.size > wordSize) field.offset = bytes_.number(field.offset, wordSize);
      fields_.try_emplace(static_cast<std::uint16_t>(bytes_.number(entry, 2)), field);
    }
    return bytes_.number(first + count * entrySize, wordSize);
  }

  std::uint64_t value(Tag tag, std::uint64_t index, std::uint64_t otherwise) {
    const auto found = fields_.find(tag);
    if (found == fields_.end() || index >= found->second.count) return otherwise;
    return bytes_.number(found->second.offset + index * found->second.size, found->second.size);
  }

  std::uint64_t count(Tag tag) const {
    const auto found = fields_.find(tag);
    return found == fields_.end() ? 0 : found->second.count;
  }

  // The library takes the places of strips for those of tiles, too.
  bool isTiled() const { return count(kTileWidth) > 0 || count(kTileLength) > 0 || count(kTileOffsets) > 0; }
  std::uint64_t compression() { return value(kCompression, 0, kNone); }
  bool isDeflated() { return compression() == kDeflate || compression() == kOldDeflate; }

  bool isPictureWhole(bool isFirst) {
    if (isFirst && (count(kBitsPerSample) == 0 || (isTiled() && !isTileSound()))) return false;
    const Tag offsets = count(kTileOffsets) > 0 ? kTileOffsets : kStripOffsets;
    const Tag sizes = count(kTileByteCounts) > 0 ? kTileByteCounts : kStripByteCounts;
    const std::uint64_t tile = isFirst && isTiled() ? tileSize() : 0;
    const std::uint64_t pieces = std::min(count(offsets), count(sizes));
    std::uint64_t storedBytes = 0;
    for (std::uint64_t i = 0; i < pieces && isSound(); ++i) {
      ++looks_;
      const auto stored = bytes_.range(value(offsets, i, 0), value(sizes, i, 0));
      storedBytes += stored.size();
      if (tile > 0 && !canHold(stored, tile)) return false;
    }
    return isSound() && (!isFirst || isReadOnce(storedBytes, product(tile, pieces)));
  }

  bool isTileSound() {
    return tileSize() > 0 && value(kTileWidth, 0, 0) <= sum(value(kImageWidth, 0, 0), kMostPastEdge) &&
           value(kTileLength, 0, 0) <= sum(value(kImageLength, 0, 0), kMostPastEdge);
  }

  bool canHold(std::span<const std::uint8_t> stored, std::uint64_t tile) {
    const bool isSubsampled = compression() == kNone && value(kPhotometric, 0, 0) == kYCbCr;
    if (!isSubsampled && tile / largestRatio(compression()) > stored.size()) return false;
    return tiles_ == DeflatedTiles::Later || !isDeflated() || inflatedSize(stored, tile) == tile;
  }

  // Strips and tiles may share bytes, as empty ones do. What they hold is not much more than the picture, and what they
  // are made of is not much more than what they hold, but for bytes of their own.
  bool isReadOnce(std::uint64_t storedBytes, std::uint64_t tileBytes) {
    const std::uint64_t samples = value(kSamplesPerPixel, 0, 1);
    const std::uint64_t picture = product(sizeOf(value(kImageWidth, 0, 0), samples), value(kImageLength, 0, 0));
    return tileBytes <= sum(product(picture, 16), kMostPastPicture) &&
           storedBytes <= sum(bytes_.size(), product(std::max(picture, tileBytes), 2));
  }

  std::uint64_t sizeOf(std::uint64_t pixels, std::uint64_t samples) {
    return sum(product(product(pixels, samples), value(kBitsPerSample, 0, 1)), 7) / 8;
  }

  std::uint64_t tileSize() {
    const std::uint64_t samples = value(kPlanarConfiguration, 0, 1) == 2 ? 1 : value(kSamplesPerPixel, 0, 1);
    return product(sizeOf(value(kTileWidth, 0, 0), samples), value(kTileLength, 0, 0));
  }

  FileBytes bytes_;
  bool isBig_;
  DeflatedTiles tiles_;
  std::map<std::uint16_t, Field> fields_;
  // At entries of directories, strips and tiles. Each takes bytes of its own, except where they overlap so that walking
  // them would take far longer than reading the file.
  std::uint64_t looks_ = 0;
};

}  // namespace

bool isWholeTiff(std::span<const std::uint8_t> file, DeflatedTiles tiles) {
  return file.size() >= 8 && Directories(file, tiles).areWhole();
}

}  // namespace host

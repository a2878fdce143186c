// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/TiffStructure.h"

#include "Host/ImageFiles/FileBytes.h"

#include <map>
#include <set>

namespace host {
namespace {

enum Tag : std::uint16_t {
  kBitsPerSample = 258,
  kCompression = 259,
  kStripOffsets = 273,
  kSamplesPerPixel = 277,
  kStripByteCounts = 279,
  kPlanarConfiguration = 284,
  kTileWidth = 322,
  kTileLength = 323,
  kTileOffsets = 324,
  kTileByteCounts = 325,
};

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
        return 1;
      case 3:
        return 2;
      case 4:
      case 13:
        return 4;
      case 16:
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

  bool isPictureWhole(bool isFirst) {
    const bool isTiled = count(kTileOffsets) > 0;
    const Tag offsets = isTiled ? kTileOffsets : kStripOffsets;
    const Tag sizes = isTiled ? kTileByteCounts : kStripByteCounts;
    const std::uint64_t compression = value(kCompression, 0, 1);
    const bool isDeflated = compression == 8 || compression == 32946;
    if (isFirst && count(kBitsPerSample) == 0) return false;
    for (std::uint64_t i = 0; i < count(offsets) && i < count(sizes) && isSound(); ++i) {
      ++looks_;
      const auto stored = bytes_.range(value(offsets, i, 0), value(sizes, i, 0));
      if (tiles_ == DeflatedTiles::Now && isFirst && isTiled && isDeflated &&
          inflatedSize(stored, tileSize()) != tileSize())
        return false;
    }
    return isSound();
  }

  std::uint64_t tileSize() {
    const std::uint64_t samples = value(kPlanarConfiguration, 0, 1) == 2 ? 1 : value(kSamplesPerPixel, 0, 1);
    return (value(kTileWidth, 0, 0) * samples * value(kBitsPerSample, 0, 1) + 7) / 8 * value(kTileLength, 0, 0);
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

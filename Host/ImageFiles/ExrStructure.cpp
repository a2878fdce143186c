// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/ExrStructure.h"

#include "Host/ImageFiles/FileBytes.h"

#include <algorithm>
#include <string>
#include <vector>

namespace host {
namespace {

enum Compression : std::uint8_t { kNone, kRunLengths, kZipRow, kZip, kPiz, kPxr24, kB44, kB44a, kDwaa, kDwab };

struct Channel {
  std::uint64_t size = 0;  // of a sample, in bytes
  std::int64_t columns = 1;
  std::int64_t rows = 1;  // one sample for so many of them
};

struct Part {
  std::vector<Channel> channels;
  std::uint8_t compression = kNone;
  std::int64_t left = 0, top = 0, right = -1, bottom = -1;
  std::uint64_t tileWidth = 0, tileHeight = 0;  // 0 where pixels are stored by rows
  std::uint8_t tileMode = 0;
  std::uint64_t chunkCount = 0;  // 0 where it follows from the size
  bool isDeep = false;

  std::uint64_t width() const { return static_cast<std::uint64_t>(right - left + 1); }
  std::uint64_t height() const { return static_cast<std::uint64_t>(bottom - top + 1); }
};

constexpr std::uint64_t kMostParts = 1 << 16;

std::uint64_t rowsOfBlock(std::uint8_t compression) {
  switch (compression) {
    case kZip:
    case kPxr24:
      return 16;
    case kPiz:
    case kB44:
    case kB44a:
    case kDwaa:
      return 32;
    case kDwab:
      return 256;
    default:
      return 1;
  }
}

// How many positions of every `step`th lie in a range, both ends included.
std::uint64_t positions(std::int64_t first, std::int64_t last, std::int64_t step) {
  const auto below = [step](std::int64_t end) { return end >= 0 ? end / step : -((step - 1 - end) / step); };
  return last < first ? 0 : static_cast<std::uint64_t>(below(last) - below(first - 1));
}

std::uint64_t tilesOfEdge(std::uint64_t pixels, std::uint64_t tile) {
  return (pixels + tile - 1) / tile;
}

std::uint64_t levelEdge(std::uint64_t edge, unsigned level, bool roundUp) {
  const std::uint64_t whole = roundUp ? (edge + (std::uint64_t{1} << level) - 1) >> level : edge >> level;
  return std::max<std::uint64_t>(whole, 1);
}

unsigned levelCount(std::uint64_t edge, bool roundUp) {
  unsigned levels = 1;
  while (levelEdge(edge, levels - 1, roundUp) > 1) ++levels;
  return levels;
}

std::uint64_t tileCount(const Part& part) {
  const unsigned mode = part.tileMode & 0xF;
  const bool roundUp = (part.tileMode >> 4) != 0;
  const auto tiles = [&](unsigned levelX, unsigned levelY) {
    return tilesOfEdge(levelEdge(part.width(), levelX, roundUp), part.tileWidth) *
           tilesOfEdge(levelEdge(part.height(), levelY, roundUp), part.tileHeight);
  };
  if (mode == 0) return tiles(0, 0);
  std::uint64_t count = 0;
  if (mode == 1) {
    const unsigned levels = levelCount(std::max(part.width(), part.height()), roundUp);
    for (unsigned level = 0; level < levels; ++level) count += tiles(level, level);
    return count;
  }
  for (unsigned y = 0; y < levelCount(part.height(), roundUp); ++y) {
    for (unsigned x = 0; x < levelCount(part.width(), roundUp); ++x) count += tiles(x, y);
  }
  return count;
}

std::uint64_t chunkCount(const Part& part) {
  if (part.chunkCount > 0) return part.chunkCount;
  return part.tileWidth > 0 ? tileCount(part) : tilesOfEdge(part.height(), rowsOfBlock(part.compression));
}

// Runs of one value, and stretches of different ones.
std::uint64_t runLengthSize(std::span<const std::uint8_t> stored) {
  std::uint64_t size = 0;
  for (std::size_t at = 0; at < stored.size();) {
    // Up to 127 the following byte is repeated once more than that; above, 256 less it bytes follow.
    const std::size_t count = stored[at];
    const bool isRun = count < 128;
    size += isRun ? count + 1 : 256 - count;
    at += isRun ? 2 : 256 - count + 1;
    if (at > stored.size()) return 0;
  }
  return size;
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

bool isBlockWhole(std::span<const std::uint8_t> stored, std::uint8_t compression, std::uint64_t size) {
  if (stored.size() == size) return true;  // what does not become smaller is stored as it is
  if (stored.empty() || stored.size() > size) return false;
  switch (compression) {
    case kNone:
      return false;
    case kRunLengths:
      return runLengthSize(stored) == size;
    case kZipRow:
    case kZip:
      return inflatedSize(stored, size) == size;
    case kPiz:
      return hasCodes(stored);
    default:
      return true;
  }
}

class Parts {
 public:
  explicit Parts(std::span<const std::uint8_t> file) : bytes_(file, false) {
    const std::uint64_t flags = bytes_.number(4, 4);
    isTiled_ = (flags & 0x200) != 0;
    hasParts_ = (flags & 0x1000) != 0;
  }

  bool areWhole() {
    if (!readHeaders()) return false;
    for (std::size_t part = 0; part < parts_.size(); ++part) {
      if (!areBlocksWhole(parts_[part], part == 0)) return false;
    }
    return bytes_.isWhole();
  }

 private:
  bool readHeaders() {
    at_ = 8;
    do {
      if (!readHeader()) return false;
    } while (hasParts_ && bytes_.number(at_, 1) != 0 && bytes_.isWhole() && parts_.size() < kMostParts);
    if (hasParts_) ++at_;
    return bytes_.isWhole();
  }

  std::string text() {
    std::string text;
    while (bytes_.isWhole()) {
      const auto unit = static_cast<char>(bytes_.number(at_++, 1));
      if (unit == 0) break;
      text += unit;
    }
    return text;
  }

  bool readHeader() {
    Part part;
    for (std::string name = text(); !name.empty() && bytes_.isWhole(); name = text()) {
      text();  // the type of the attribute
      const std::uint64_t size = bytes_.number(at_, 4);
      const std::uint64_t value = at_ + 4;
      if (bytes_.range(value, size).size() != size) return false;
      readAttribute(name, value, size, &part);
      at_ = value + size;
    }
    const bool isSized = part.right >= part.left && part.bottom >= part.top;
    const bool isTiled = isTiled_ && !hasParts_;
    if (!isSized || part.compression > kDwab || (isTiled && (part.tileWidth == 0 || part.tileHeight == 0)))
      return false;
    parts_.push_back(std::move(part));
    return bytes_.isWhole();
  }

  std::int64_t integer(std::uint64_t offset) { return static_cast<std::int32_t>(bytes_.number(offset, 4)); }

  void readAttribute(const std::string& name, std::uint64_t at, std::uint64_t size, Part* part) {
    if (name == "channels") {
      readChannels(at, at + size, part);
    } else if (name == "compression" && size == 1) {
      part->compression = static_cast<std::uint8_t>(bytes_.number(at, 1));
    } else if (name == "dataWindow" && size == 16) {
      part->left = integer(at);
      part->top = integer(at + 4);
      part->right = integer(at + 8);
      part->bottom = integer(at + 12);
    } else if (name == "tiles" && size == 9) {
      part->tileWidth = bytes_.number(at, 4);
      part->tileHeight = bytes_.number(at + 4, 4);
      part->tileMode = static_cast<std::uint8_t>(bytes_.number(at + 8, 1));
    } else if (name == "chunkCount" && size == 4) {
      part->chunkCount = bytes_.number(at, 4);
    } else if (name == "type") {
      const auto type = bytes_.range(at, size);
      part->isDeep = size >= 4 && std::equal(type.begin(), type.begin() + 4, "deep");
    }
  }

  void readChannels(std::uint64_t at, std::uint64_t end, Part* part) {
    at_ = at;
    while (at_ < end && !text().empty() && bytes_.isWhole()) {
      Channel channel;
      channel.size = bytes_.number(at_, 4) == 1 ? 2 : 4;
      channel.columns = std::max<std::int64_t>(1, integer(at_ + 8));
      channel.rows = std::max<std::int64_t>(1, integer(at_ + 12));
      part->channels.push_back(channel);
      at_ += 16;
    }
  }

  bool areBlocksWhole(const Part& part, bool isFirst) {
    const std::uint64_t count = chunkCount(part);
    const std::uint64_t table = at_;
    if (count > bytes_.size() / 8 || bytes_.range(table, count * 8).empty()) return false;
    at_ = table + count * 8;
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::uint64_t offset = bytes_.number(table + i * 8, 8);
      if (offset < at_ || !isBlockWhole(part, offset + (hasParts_ ? 4 : 0), isFirst)) return false;
    }
    return true;
  }

  bool isBlockWhole(const Part& part, std::uint64_t offset, bool isFirst) {
    const std::uint64_t place = part.tileWidth > 0 ? 16 : 4;
    if (offset > bytes_.size()) return false;
    if (part.isDeep) {
      const std::uint64_t counts = bytes_.number(offset + place, 8);
      const std::uint64_t samples = bytes_.number(offset + place + 8, 8);
      return counts <= bytes_.size() && samples <= bytes_.size() &&
             bytes_.range(offset + place + 24, counts + samples).size() == counts + samples;
    }
    const std::uint64_t size = bytes_.number(offset + place, 4);
    const auto stored = bytes_.range(offset + place + 4, size);
    if (!bytes_.isWhole()) return false;
    const bool isRead = isFirst && (part.tileWidth == 0 || bytes_.number(offset + 8, 8) == 0);  // the largest level
    return !isRead || host::isBlockWhole(stored, part.compression, sizeOfBlock(part, offset));
  }

  // How many bytes the rows or the tile of a block take; 0, which no block has, when they are outside the picture.
  std::uint64_t sizeOfBlock(const Part& part, std::uint64_t offset) {
    std::int64_t left = part.left;
    std::int64_t right = part.right;
    std::int64_t top = integer(offset);
    std::int64_t bottom = top + static_cast<std::int64_t>(rowsOfBlock(part.compression)) - 1;
    if (part.tileWidth > 0) {
      left = part.left + integer(offset) * static_cast<std::int64_t>(part.tileWidth);
      right = left + static_cast<std::int64_t>(part.tileWidth) - 1;
      top = part.top + integer(offset + 4) * static_cast<std::int64_t>(part.tileHeight);
      bottom = top + static_cast<std::int64_t>(part.tileHeight) - 1;
    }
    if (left < part.left || top < part.top) return 0;
    right = std::min(right, part.right);
    bottom = std::min(bottom, part.bottom);
    std::uint64_t size = 0;
    for (const Channel& channel : part.channels) {
      size += channel.size * positions(left, right, channel.columns) * positions(top, bottom, channel.rows);
    }
    return size;
  }

  FileBytes bytes_;
  std::uint64_t at_ = 0;
  bool isTiled_ = false;
  bool hasParts_ = false;
  std::vector<Part> parts_;
};

}  // namespace

bool isWholeExr(std::span<const std::uint8_t> file) {
  return Parts(file).areWhole();
}

}  // namespace host

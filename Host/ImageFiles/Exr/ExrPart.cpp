// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrPart.h"

#include "Host/ImageFiles/Exr/ExrTiles.h"
#include "Host/ImageFiles/FileBytes.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace host::exr {
namespace {

constexpr std::size_t kMostParts = 1 << 16;
constexpr std::int64_t kFarthest = std::numeric_limits<std::int32_t>::max() / 2;

enum FileFlag : std::uint64_t { kTiled = 0x200, kLongNames = 0x400, kDeep = 0x800, kParts = 0x1000 };

// Bytes of a value; nothing for types whose values differ in size.
std::optional<std::uint64_t> sizeOfType(std::string_view type) {
  static constexpr std::pair<std::string_view, std::uint64_t> kSizes[] = {
      {"box2f", 16},
      {"box2i", 16},
      {"chromaticities", 32},
      {"compression", 1},
      {"deepImageState", 1},
      {"double", 8},
      {"envmap", 1},
      {"float", 4},
      {"int", 4},
      {"keycode", 28},
      {"lineOrder", 1},
      {"m33d", 72},
      {"m33f", 36},
      {"m44d", 128},
      {"m44f", 64},
      {"rational", 8},
      {"tiledesc", 9},
      {"timecode", 8},
      {"v2d", 16},
      {"v2f", 8},
      {"v2i", 8},
      {"v3d", 24},
      {"v3f", 12},
      {"v3i", 12},
  };
  const auto* const found =
      std::find_if(std::begin(kSizes), std::end(kSizes), [&](const auto& size) { return size.first == type; });
  return found == std::end(kSizes) ? std::nullopt : std::optional(found->second);
}

bool isBox(const Box& box) {
  return box.left <= box.right && box.top <= box.bottom && box.left >= -kFarthest && box.top >= -kFarthest &&
         box.right <= kFarthest && box.bottom <= kFarthest;
}

class HeaderReader {
 public:
  explicit HeaderReader(File* file) : file_(*file), bytes_(file->bytes, false), flags_(bytes_.number(4, 4)) {}

  bool readAll() {
    if ((flags_ & 0xFF) != 2 || (flags_ & ~std::uint64_t{0xFF | kTiled | kLongNames | kDeep | kParts}) != 0)
      return false;
    file_.hasParts = (flags_ & kParts) != 0;
    do {
      if (!readPart()) return false;
    } while (file_.hasParts && bytes_.number(at_, 1) != 0 && file_.parts.size() < kMostParts);
    if (file_.hasParts) ++at_;
    return placeTables();
  }

 private:
  std::string text(std::uint64_t end) {
    std::string text;
    while (at_ < end) {
      const auto unit = static_cast<char>(bytes_.number(at_++, 1));
      if (unit == 0) return text;
      text += unit;
    }
    isSound_ = false;  // it does not end
    return {};
  }

  std::int64_t integer(std::uint64_t offset) { return static_cast<std::int32_t>(bytes_.number(offset, 4)); }

  Box box(std::uint64_t at) { return {integer(at), integer(at + 4), integer(at + 8), integer(at + 12)}; }

  bool readPart() {
    Part part;
    type_.clear();
    statedChunks_.reset();
    for (std::string name = text(bytes_.size()); !name.empty(); name = text(bytes_.size())) {
      Attribute attribute{std::move(name), text(bytes_.size()), {}};
      const std::uint64_t size = bytes_.number(at_, 4);
      attribute.value = bytes_.range(at_ + 4, size);
      if (!bytes_.isWhole() || !isAttributeWhole(attribute.type, attribute.value)) return false;
      const std::uint64_t value = at_ + 4;
      readAttribute(attribute, value, &part);
      at_ = value + size;
      part.attributes.push_back(std::move(attribute));
    }
    if (!isSound_ || !bytes_.isWhole() || !isWhole(&part)) return false;
    file_.parts.push_back(std::move(part));
    return true;
  }

  void readAttribute(const Attribute& attribute, std::uint64_t at, Part* part) {
    const std::string_view name = attribute.name;
    const std::string_view type = attribute.type;
    const std::string text(attribute.value.begin(), attribute.value.end());
    if (name == "channels" && type == "chlist") {
      readChannels(at, at + attribute.value.size(), part);
    } else if (name == "compression" && type == "compression") {
      part->compression = attribute.value[0];
    } else if (name == "lineOrder" && type == "lineOrder") {
      isSound_ = isSound_ && attribute.value[0] <= 2;
    } else if (name == "dataWindow" && type == "box2i") {
      part->data = box(at);
    } else if (name == "displayWindow" && type == "box2i") {
      part->display = box(at);
    } else if (name == "tiles" && type == "tiledesc") {
      part->tileWidth = bytes_.number(at, 4);
      part->tileHeight = bytes_.number(at + 4, 4);
      part->tileMode = attribute.value[8];
    } else if (name == "chunkCount" && type == "int") {
      statedChunks_ = bytes_.number(at, 4);
    } else if (name == "type" && type == "string") {
      type_ = text;
    } else if (name == "name" && type == "string") {
      part->name = text;
    }
  }

  void readChannels(std::uint64_t at, std::uint64_t end, Part* part) {
    part->channels.clear();
    at_ = at;
    for (std::string name = text(end); !name.empty(); name = text(end)) {
      const std::uint64_t kind = bytes_.number(at_, 4);
      Channel channel{std::move(name), SampleKind{static_cast<std::uint32_t>(kind)}, bytes_.number(at_ + 4, 1) != 0,
                      static_cast<std::int32_t>(integer(at_ + 8)), static_cast<std::int32_t>(integer(at_ + 12))};
      isSound_ = isSound_ && kind <= 2 && channel.columns > 0 && channel.rows > 0;
      part->channels.push_back(std::move(channel));
      at_ += 16;
    }
    auto& channels = part->channels;
    std::sort(channels.begin(), channels.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    const auto same = std::adjacent_find(channels.begin(), channels.end(),
                                         [](const auto& a, const auto& b) { return a.name == b.name; });
    isSound_ = isSound_ && same == channels.end();
  }

  bool isWhole(Part* part) {
    part->isTiled = type_ == "deeptile" || (file_.hasParts ? type_ == "tiledimage" : (flags_ & kTiled) != 0);
    part->isDeep = type_ == "deepscanline" || type_ == "deeptile" || (!file_.hasParts && (flags_ & kDeep) != 0);
    if (!isBox(part->data) || !isBox(part->display) || part->channels.empty() || part->compression > kDwab ||
        (part->isTiled && !hasTiles(*part))) {
      return false;
    }
    part->chunkCount = chunkCount(*part, bytes_.size());
    return part->chunkCount == statedChunks_.value_or(part->chunkCount);
  }

  // The tables of all parts follow their headers.
  bool placeTables() {
    for (Part& part : file_.parts) {
      if (part.chunkCount > bytes_.size() / 8) return false;
      part.offsetTable = at_;
      if (bytes_.range(at_, part.chunkCount * 8).empty()) return false;
      at_ += part.chunkCount * 8;
    }
    return bytes_.isWhole();
  }

  File& file_;
  FileBytes bytes_;
  std::uint64_t flags_;
  std::uint64_t at_ = 8;
  bool isSound_ = true;
  std::string type_;
  std::optional<std::uint64_t> statedChunks_;
};

}  // namespace

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

bool isAttributeWhole(std::string_view type, std::span<const std::uint8_t> value) {
  return value.size() == sizeOfType(type).value_or(value.size());
}

bool readHeaders(std::span<const std::uint8_t> bytes, File* file, std::string* reason) {
  file->bytes = bytes;
  return HeaderReader(file).readAll() || NSRefuse(reason, kDamaged);
}

}  // namespace host::exr

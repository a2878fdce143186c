// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrValues.h"

#include "Host/ImageFiles/FileBytes.h"

#include <limits>

namespace host::exr {
namespace {

constexpr std::uint64_t kLongestName = 255;
constexpr std::uint64_t kLargestInteger = std::numeric_limits<std::int32_t>::max();

bool areTexts(FileBytes value) {
  std::uint64_t at = 0;
  while (at < value.size()) at += 4 + value.number(at, 4);
  return at == value.size() && value.isWhole();
}

// Four bytes of colors for each pixel.
bool isSmallPicture(FileBytes value) {
  const std::uint64_t pixels = value.number(0, 4) * value.number(4, 4);
  return value.isWhole() && (value.size() - 8) % 4 == 0 && pixels == (value.size() - 8) / 4;
}

// Each has a name and its end, then its type, a flag, and for how many columns and rows a sample is.
bool areChannels(FileBytes value) {
  std::uint64_t at = 0;
  while (value.isWhole() && value.number(at, 1) != 0) {
    std::uint64_t length = 1;
    while (length <= kLongestName && value.number(at + length, 1) != 0) ++length;
    at += length + 1;
    const auto isCount = [&](std::uint64_t count) { return count > 0 && count <= kLargestInteger; };
    if (length > kLongestName || value.number(at, 4) > 2 || !isCount(value.number(at + 8, 4)) ||
        !isCount(value.number(at + 12, 4))) {
      return false;
    }
    at += 16;
  }
  return value.isWhole() && at + 1 == value.size();
}

}  // namespace

bool isValueSound(std::string_view type, std::span<const std::uint8_t> value) {
  const FileBytes bytes(value, false);
  if (type == "stringvector") return areTexts(bytes);
  if (type == "floatvector") return value.size() % 4 == 0;
  if (type == "preview") return isSmallPicture(bytes);
  return type != "chlist" || areChannels(bytes);
}

}  // namespace host::exr

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Header.h"

namespace host {
namespace {

constexpr std::uint32_t kLargestSize = 0x7FFFFFFF;
constexpr std::uint64_t kLargestPicture = std::uint64_t{1} << 48;  // stored bytes; products of sizes may be 2^65

bool isAllowed(unsigned color, unsigned depth) {
  switch (color) {
    case 0:
      return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16;
    case 3:
      return depth == 1 || depth == 2 || depth == 4 || depth == 8;
    case 2:
    case 4:
    case 6:
      return depth == 8 || depth == 16;
    default:
      return false;
  }
}

}  // namespace

unsigned PngHeader::bitsPerPixel() const {
  switch (color) {
    case PngColor::Gray:
    case PngColor::Palette:
      return bitDepth;
    case PngColor::GrayAlpha:
      return 2 * bitDepth;
    case PngColor::RGB:
      return 3 * bitDepth;
    case PngColor::RGBA:
      break;
  }
  return 4 * bitDepth;
}

std::optional<PngHeader> readPngHeader(const PngChunk& chunk) {
  const auto data = chunk.data;
  if (chunk.type != pngType("IHDR") || data.size() != 13) return std::nullopt;
  PngHeader header;
  header.width = pngNumber(&data[0]);
  header.height = pngNumber(&data[4]);
  const bool hasSize =
      header.width >= 1 && header.width <= kLargestSize && header.height >= 1 && header.height <= kLargestSize;
  const bool areMethodsKnown = data[10] == 0 && data[11] == 0 && data[12] <= 1;
  if (!hasSize || !areMethodsKnown || !isAllowed(data[9], data[8])) return std::nullopt;
  header.bitDepth = data[8];
  header.color = static_cast<PngColor>(data[9]);
  header.isInterlaced = data[12] == 1;
  if (header.height > kLargestPicture / (1 + header.rowBytes(header.width))) return std::nullopt;
  return header;
}

void appendPngHeader(const PngHeader& header, std::vector<std::uint8_t>* file) {
  std::vector<std::uint8_t> data;
  appendPngNumber(header.width, &data);
  appendPngNumber(header.height, &data);
  data.push_back(static_cast<std::uint8_t>(header.bitDepth));
  data.push_back(static_cast<std::uint8_t>(header.color));
  data.insert(data.end(), {0, 0, static_cast<std::uint8_t>(header.isInterlaced)});
  appendPngChunk(pngType("IHDR"), data, file);
}

std::span<const PngPass> pngPasses(const PngHeader& header) {
  static constexpr std::array<PngPass, 1> kWhole{{{}}};
  static constexpr std::array<PngPass, 7> kInterlaced{
      {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4}, {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}}};
  if (header.isInterlaced) return kInterlaced;
  return kWhole;
}

}  // namespace host

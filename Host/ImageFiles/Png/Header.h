// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Png/Chunks.h"

#include <array>
#include <cstdint>
#include <optional>

namespace host {

enum class PngColor : std::uint8_t { Gray = 0, RGB = 2, Palette = 3, GrayAlpha = 4, RGBA = 6 };

struct PngHeader {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  unsigned bitDepth = 8;  // of a sample, or an index
  PngColor color = PngColor::RGBA;
  bool isInterlaced = false;

  unsigned bitsPerPixel() const;
  std::size_t pixelBytes() const { return bitsPerPixel() < 8 ? 1 : bitsPerPixel() / 8; }  // as filters count them
  // Of `pixels` in a row, without the byte that names its filter.
  std::uint64_t rowBytes(std::uint32_t pixels) const { return (std::uint64_t{pixels} * bitsPerPixel() + 7) / 8; }
};

// Nothing for a header that the format does not allow, or of a picture of more than 2^48 bytes.
std::optional<PngHeader> readPngHeader(const PngChunk& chunk);
void appendPngHeader(const PngHeader& header, std::vector<std::uint8_t>* file);

// Every n-th column of every m-th row: the part of a picture that is stored as a picture of its own.
struct PngPass {
  std::uint32_t firstColumn = 0;
  std::uint32_t firstRow = 0;
  std::uint32_t columnStep = 1;
  std::uint32_t rowStep = 1;

  std::uint32_t width(const PngHeader& header) const { return parts(header.width, firstColumn, columnStep); }
  std::uint32_t height(const PngHeader& header) const { return parts(header.height, firstRow, rowStep); }
  // With the filters' bytes.
  std::uint64_t storedBytes(const PngHeader& header) const {
    const std::uint32_t pixels = width(header);
    return pixels == 0 ? 0 : height(header) * (1 + header.rowBytes(pixels));
  }

 private:
  static std::uint32_t parts(std::uint32_t whole, std::uint32_t first, std::uint32_t step) {
    return whole <= first ? 0 : (whole - first - 1) / step + 1;
  }
};

// One, or the seven of interlaced pictures.
std::span<const PngPass> pngPasses(const PngHeader& header);

}  // namespace host

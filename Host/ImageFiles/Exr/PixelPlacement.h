// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrCodec.h"
#include "Host/ImageFiles/Exr/ExrLayers.h"

#include <cstddef>
#include <cstdint>

namespace host::exr {

// Sorts the samples of blocks into rows of red, green, blue and alpha, inside the window that the file shows.
class PixelPlacement {
 public:
  PixelPlacement(const Part& part, const Selection& selection, std::byte* pixels, std::size_t rowBytes);

  // What no block stores: empty, or black where the file has no alpha.
  void fillOutside();
  void place(const Box& box, const Words& words);

 private:
  float* pixelAt(std::int64_t x, std::int64_t y) const;
  void placeRow(const Words& words, std::size_t rowStart, std::size_t rowWidth, std::size_t skipped, std::size_t count,
                float* to) const;
  void readSamples(const Words& words, std::size_t rowStart, std::size_t rowWidth, std::size_t component,
                   std::size_t first, std::size_t count, float* samples) const;

  const Part& part_;
  const Selection& selection_;
  std::byte* pixels_;
  std::size_t rowBytes_;
  std::size_t wordsOfPixel_ = 0;
  std::size_t wordsBefore_[4]{};  // of the channels before a component's, of one pixel
};

}  // namespace host::exr

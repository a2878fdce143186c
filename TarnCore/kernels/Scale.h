#pragma once

#include <cstddef>
#include <cstdint>

// Nearest-neighbour scaling of whole pixels, whatever is in them.
namespace vorto::kernels {

// A rectangle of consecutive pixels without padding, and how many of them may be touched.
struct ScaleSource {
  const std::uint8_t* pixels;
  std::uint32_t width;
  std::uint32_t height;
  std::size_t accessible;  // pixels
};

struct ScaleDestination {
  std::uint8_t* pixels;
  std::uint32_t width;
  std::uint32_t height;
  std::size_t accessible;
};

// The row or column that the destination's row or column `index` is taken from: floor(index x ratio + 1e-7) in double
// precision, clamped to 32 bits. `ratio` is the source's extent divided by the destination's.
std::uint32_t scaledIndex(std::uint32_t index, double ratio);

// For every destination pixel in turn, the source pixel at (scaled row x source width + scaled column). A pixel that
// lies beyond what may be touched, on either side, is skipped; one that is its own source stays.
void scaleNearest(const ScaleDestination& destination, const ScaleSource& source, std::size_t pixelBytes);
void scaleNearestScalar(const ScaleDestination& destination, const ScaleSource& source, std::size_t pixelBytes);

// Whether neither side is empty, every pixel that the rule names may be touched, and the images share no memory: the
// case for which the fast forms are made.
bool isOrdinaryScale(const ScaleDestination& destination, std::size_t destinationPixelBytes, const ScaleSource& source,
                     std::size_t sourcePixelBytes);

// Takes `count` pixels of `pixelBytes` from `row` at `columns`, which ascend. `rowPixels` pixels may be read there.
void gatherPixels(std::uint8_t* out, const std::uint8_t* row, std::size_t rowPixels, const std::uint32_t* columns,
                  std::size_t count, std::size_t pixelBytes);

}  // namespace vorto::kernels

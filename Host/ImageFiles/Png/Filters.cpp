// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Filters.h"

#include "Host/ImageFiles/Png/ByteLanes.h"

#include <algorithm>
#include <limits>

namespace host {
namespace {

// Each pixel needs the one before it, whose bytes are computed side by side. expectation(left, above, aboveLeft).
template <std::size_t pixelBytes, class Expectation>
void unfilterPixels(const std::uint8_t* filtered, const std::uint8_t* above, std::size_t size, std::uint8_t* row,
                    Expectation expectation) {
  ByteLanes left;
  ByteLanes aboveLeft;
  for (std::size_t i = 0; i + pixelBytes <= size; i += pixelBytes) {
    const ByteLanes aboveThis = loadPixel<pixelBytes>(above + i);
    left = loadPixel<pixelBytes>(filtered + i) + expectation(left, aboveThis, aboveLeft);
    aboveLeft = aboveThis;
    storePixel<pixelBytes>(left, row + i);
  }
}

template <std::size_t pixelBytes>
void unfilterFromLeft(PngFilter filter, const std::uint8_t* filtered, const std::uint8_t* above, std::size_t size,
                      std::uint8_t* row) {
  switch (filter) {
    case PngFilter::Sub:
      unfilterPixels<pixelBytes>(filtered, above, size, row, [](ByteLanes a, ByteLanes, ByteLanes) { return a; });
      break;
    case PngFilter::Average:
      unfilterPixels<pixelBytes>(filtered, above, size, row,
                                 [](ByteLanes a, ByteLanes b, ByteLanes) { return averageOf(a, b); });
      break;
    default:
      unfilterPixels<pixelBytes>(filtered, above, size, row,
                                 [](ByteLanes a, ByteLanes b, ByteLanes c) { return paethOf(a, b, c); });
      break;
  }
}

void unfilterUp(const std::uint8_t* filtered, const std::uint8_t* above, std::size_t size, std::uint8_t* row) {
  std::size_t i = 0;
  for (; i + 16 <= size; i += 16) storeLanes(loadLanes(filtered + i) + loadLanes(above + i), row + i);
  for (; i < size; ++i) row[i] = static_cast<std::uint8_t>(filtered[i] + above[i]);
}

// Writes the filtered bytes and returns the sum of their magnitudes. The bytes left of row and above are there.
template <class Expectation>
std::uint64_t filterBytes(const std::uint8_t* row, const std::uint8_t* above, std::size_t size, std::size_t pixelBytes,
                          std::uint8_t* filtered, Expectation expectation) {
  std::uint64_t sum = 0;
  for (std::size_t i = 0; i < size; i += 16) {  // all rows have room for whole lanes
    const ByteLanes rest = loadLanes(row + i) - expectation(loadLanes(row + i - pixelBytes), loadLanes(above + i),
                                                            loadLanes(above + i - pixelBytes));
    sum += sumOfMagnitudes(rest);
    storeLanes(rest, filtered + i);
  }
  return sum;
}

std::uint64_t filterWith(PngFilter filter, const std::uint8_t* row, const std::uint8_t* above, std::size_t size,
                         std::size_t pixelBytes, std::uint8_t* filtered) {
  const auto filterBy = [&](auto expectation) {
    return filterBytes(row, above, size, pixelBytes, filtered, expectation);
  };
  switch (filter) {
    case PngFilter::None:
      return filterBy([](ByteLanes, ByteLanes, ByteLanes) { return ByteLanes{}; });
    case PngFilter::Sub:
      return filterBy([](ByteLanes a, ByteLanes, ByteLanes) { return a; });
    case PngFilter::Up:
      return filterBy([](ByteLanes, ByteLanes b, ByteLanes) { return b; });
    case PngFilter::Average:
      return filterBy([](ByteLanes a, ByteLanes b, ByteLanes) { return averageOf(a, b); });
    case PngFilter::Paeth:
      break;
  }
  return filterBy([](ByteLanes a, ByteLanes b, ByteLanes c) { return paethOf(a, b, c); });
}

constexpr std::size_t kBefore = 16;  // zeros that stand for the pixel left of a row
constexpr std::size_t kBehind = 16;  // zeros: lanes reach behind a row, and what they make there is in its sum

}  // namespace

bool unfilterPngRow(std::uint8_t filter, const std::uint8_t* filtered, const std::uint8_t* above, std::size_t size,
                    std::size_t pixelBytes, std::uint8_t* row) {
  if (filter >= kPngFilterCount) return false;
  const auto kind = static_cast<PngFilter>(filter);
  if (kind == PngFilter::None) {
    std::memmove(row, filtered, size);
    return true;
  }
  if (kind == PngFilter::Up) {
    unfilterUp(filtered, above, size, row);
    return true;
  }
  switch (pixelBytes) {
    case 1:
      unfilterFromLeft<1>(kind, filtered, above, size, row);
      break;
    case 2:
      unfilterFromLeft<2>(kind, filtered, above, size, row);
      break;
    case 3:
      unfilterFromLeft<3>(kind, filtered, above, size, row);
      break;
    case 4:
      unfilterFromLeft<4>(kind, filtered, above, size, row);
      break;
    case 6:
      unfilterFromLeft<6>(kind, filtered, above, size, row);
      break;
    default:
      unfilterFromLeft<8>(kind, filtered, above, size, row);
      break;
  }
  return true;
}

PngRowFilter::PngRowFilter(std::size_t rowSize, std::size_t pixelBytes) : size_(rowSize), pixelBytes_(pixelBytes) {
  for (auto& row : rows_) row.resize(kBefore + rowSize + kBehind);
  for (auto& candidate : candidates_) candidate.resize(rowSize + kBehind);
}

void PngRowFilter::filter(const std::uint8_t* row, std::uint8_t* filtered) {
  std::swap(rows_[0], rows_[1]);
  std::uint8_t* const current = rows_[0].data() + kBefore;
  const std::uint8_t* const above = rows_[1].data() + kBefore;
  std::memcpy(current, row, size_);
  PngFilter best = PngFilter::None;
  std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
  for (const PngFilter filter :
       {PngFilter::None, PngFilter::Sub, PngFilter::Up, PngFilter::Average, PngFilter::Paeth}) {
    const std::uint64_t sum = filterWith(filter, current, above, size_, pixelBytes_, candidates_[1].data());
    if (sum >= least) continue;
    least = sum;
    best = filter;
    std::swap(candidates_[0], candidates_[1]);
  }
  filtered[0] = static_cast<std::uint8_t>(best);
  std::memcpy(filtered + 1, candidates_[0].data(), size_);
}

}  // namespace host

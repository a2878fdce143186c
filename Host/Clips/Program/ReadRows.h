// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// One component of a picture in memory: how its samples are found, and what they become.
struct SampleSource {
  const std::uint8_t* data = nullptr;  // of the first row; null: every sample is full
  std::ptrdiff_t rowBytes = 0;
  int step = 1;            // bytes from one sample to the next
  int bytes = 1;           // that hold a sample: 1, 2 or 4
  bool isSwapped = false;  // in the other byte order
  int shift = 0;
  std::vector<std::uint16_t> values;  // of every sample below the size, which is a power of two; empty: as it is
};

// For each sample of so many bits (1 to 16) the value that is the same part of the full one, rounded.
std::vector<std::uint16_t> widenedValues(int bits, int wantedBits);

// Rows of four components become pixels of four samples.
template <class Sample>  // std::uint8_t or std::uint16_t
class RowReader {
 public:
  RowReader(const SampleSource (&sources)[4], std::size_t width);
  void read(std::size_t y, Sample* pixels);

 private:
  const Sample* rowOf(std::size_t component, std::size_t y);

  const SampleSource (&sources_)[4];
  std::size_t width_;
  std::vector<Sample> scratch_[4];
};

}  // namespace host

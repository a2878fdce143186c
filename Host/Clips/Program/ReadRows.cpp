// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadRows.h"

#include <cstring>
#include <limits>

namespace host {
namespace {

template <class Stored>
unsigned loaded(const std::uint8_t* at, bool isSwapped) {
  Stored value;
  std::memcpy(&value, at, sizeof value);
  if (!isSwapped) return value;
  if (sizeof value == 4) return __builtin_bswap32(value);
  return sizeof value == 2 ? __builtin_bswap16(static_cast<std::uint16_t>(value)) : value;
}

template <class Stored, class Sample>
void gather(const SampleSource& source, const std::uint8_t* row, std::size_t width, Sample* samples) {
  const bool isSwapped = source.isSwapped;
  const std::size_t mask = source.values.empty() ? ~std::size_t{0} : source.values.size() - 1;
  for (std::size_t x = 0; x < width; ++x) {
    const unsigned value = loaded<Stored>(row + x * source.step, isSwapped) >> source.shift;
    samples[x] = static_cast<Sample>(source.values.empty() ? value : source.values[value & mask]);
  }
}

template <class Sample>
void interleave(const Sample* red, const Sample* green, const Sample* blue, const Sample* alpha, std::size_t width,
                Sample* __restrict pixels) {
  for (std::size_t x = 0; x < width; ++x) {
    pixels[4 * x] = red[x];
    pixels[4 * x + 1] = green[x];
    pixels[4 * x + 2] = blue[x];
    pixels[4 * x + 3] = alpha[x];
  }
}

}  // namespace

std::vector<std::uint16_t> widenedValues(int bits, int wantedBits) {
  if (bits == wantedBits) return {};
  const std::uint64_t full = (std::uint64_t{1} << bits) - 1;
  const std::uint64_t wanted = (std::uint64_t{1} << wantedBits) - 1;
  std::vector<std::uint16_t> values(full + 1);
  for (std::uint64_t i = 0; i <= full; ++i) values[i] = static_cast<std::uint16_t>((i * wanted + full / 2) / full);
  return values;
}

template <class Sample>
RowReader<Sample>::RowReader(const SampleSource (&sources)[4], std::size_t width) : sources_(sources), width_(width) {
  for (auto& row : scratch_) row.assign(width, std::numeric_limits<Sample>::max());
}

template <class Sample>
const Sample* RowReader<Sample>::rowOf(std::size_t component, std::size_t y) {
  const SampleSource& source = sources_[component];
  if (!source.data) return scratch_[component].data();
  const std::uint8_t* row = source.data + static_cast<std::ptrdiff_t>(y) * source.rowBytes;
  const bool isAsItIs = source.values.empty() && source.shift == 0 && !source.isSwapped &&
                        source.step == int{sizeof(Sample)} && source.bytes == int{sizeof(Sample)};
  if (isAsItIs) return reinterpret_cast<const Sample*>(row);
  Sample* samples = scratch_[component].data();
  if (source.bytes == 4) {
    gather<std::uint32_t>(source, row, width_, samples);
  } else if (source.bytes == 2) {
    gather<std::uint16_t>(source, row, width_, samples);
  } else {
    gather<std::uint8_t>(source, row, width_, samples);
  }
  return samples;
}

template <class Sample>
void RowReader<Sample>::read(std::size_t y, Sample* pixels) {
  interleave(rowOf(0, y), rowOf(1, y), rowOf(2, y), rowOf(3, y), width_, pixels);
}

template class RowReader<std::uint8_t>;
template class RowReader<std::uint16_t>;

}  // namespace host

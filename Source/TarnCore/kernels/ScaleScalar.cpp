// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Scale.h"

#include <cmath>
#include <cstring>

namespace vorto::kernels {

std::uint32_t scaledIndex(std::uint32_t index, double ratio) {
  constexpr double bias = 1e-7;  // an exact ratio hits its pixel although the product is rounded
  const double place = std::floor(index * ratio + bias);
  if (!(place > 0)) return 0;
  return place >= 4294967295.0 ? 4294967295U : static_cast<std::uint32_t>(place);
}

void scaleNearestScalar(const ScaleDestination& destination, const ScaleSource& source, std::size_t pixelBytes) {
  if (destination.width == 0) return;
  const double columnRatio = static_cast<double>(source.width) / destination.width;
  const double rowRatio = static_cast<double>(source.height) / destination.height;
  std::uint64_t to = 0;
  for (std::uint32_t j = 0; j < destination.height; ++j) {
    const std::uint64_t row = scaledIndex(j, rowRatio);
    for (std::uint32_t i = 0; i < destination.width; ++i, ++to) {
      if (to >= destination.accessible) return;
      const std::uint64_t from = row * source.width + scaledIndex(i, columnRatio);
      if (from >= source.accessible) continue;
      std::uint8_t* out = destination.pixels + to * pixelBytes;
      const std::uint8_t* in = source.pixels + from * pixelBytes;
      if (out != in) std::memmove(out, in, pixelBytes);
    }
  }
}

}  // namespace vorto::kernels

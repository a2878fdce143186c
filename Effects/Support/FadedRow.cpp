// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/FadedRow.h"

#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Mix.h"

namespace vorto::effects {

FadedRow::FadedRow(std::uint32_t formatCode, std::size_t count, double opacity)
    : formatCode_(formatCode), count_(count), opacity_(opacity) {
  if (opacity_ >= 1) return;
  const std::size_t bytes = TCPixelLayoutOf(formatCode).bytesPerPixel() * count;
  nothing_.resize(bytes);
  faded_.resize(bytes);
}

const void* FadedRow::of(const void* row) {
  if (opacity_ >= 1) return row;
  withLayout(formatCode_, [&](auto layout) {
    using Channel = typename decltype(layout)::Channel;
    mixRow(reinterpret_cast<const Channel*>(nothing_.data()), static_cast<const Channel*>(row),
           reinterpret_cast<Channel*>(faded_.data()), count_, mixWeight<Channel>(opacity_));
  });
  return faded_.data();
}

}  // namespace vorto::effects

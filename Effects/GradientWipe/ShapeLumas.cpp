// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientWipe/ShapeLumas.h"

#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Between.h"
#include "Effects/kernels/Luma.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vorto::effects {

ShapeLumas::Places::Places(std::size_t pixels, std::size_t stretched) : before(stretched), weights(stretched) {
  const double step = static_cast<double>(pixels) / static_cast<double>(stretched);
  for (std::size_t i = 0; i < stretched; ++i) {
    const double place = std::clamp((static_cast<double>(i) + 0.5) * step - 0.5, 0.0, static_cast<double>(pixels - 1));
    const double whole = std::floor(place);
    before[i] = static_cast<std::int32_t>(whole);
    weights[i] = static_cast<float>(place - whole);
  }
}

// Rows hold one luma more than they have pixels, so that the last one has a neighbor.
ShapeLumas::ShapeLumas(const VortoBitmap& shape, std::size_t width, std::size_t height)
    : shape_(shape),
      columns_(shape.width, width),
      rows_(shape.height, height),
      between_(std::size_t{shape.width} + 1),
      values_(width) {
  for (KeptRow& kept : kept_) kept = {std::numeric_limits<std::size_t>::max(), std::vector<float>(between_.size())};
}

const std::vector<float>& ShapeLumas::row(std::size_t y) {
  const auto before = static_cast<std::size_t>(rows_.before[y]);
  const std::vector<float>& upper = lumasOf(before);
  const std::vector<float>& lower = lumasOf(std::min<std::size_t>(before + 1, shape_.height - 1));
  betweenRows(upper.data(), lower.data(), rows_.weights[y], between_.data(), between_.size());
  std::fill(values_.begin(), values_.end(), 0.0F);
  addBetweenRow(between_.data(), columns_.before.data(), columns_.weights.data(), 1, values_.data(), values_.size());
  return values_;
}

// Two rows that follow each other are kept at a time.
const std::vector<float>& ShapeLumas::lumasOf(std::size_t shapeRow) {
  KeptRow& kept = kept_[shapeRow % kept_.size()];
  if (kept.row != shapeRow) {
    withLayout(shape_.formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      lumaRow<Layout>(rowOf<typename Layout::Channel>(shape_, shapeRow), kept.lumas.data(), shape_.width);
    });
    kept.lumas.back() = kept.lumas[shape_.width - 1];
    kept.row = shapeRow;
  }
  return kept.lumas;
}

}  // namespace vorto::effects

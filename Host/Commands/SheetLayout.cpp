// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/SheetLayout.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr std::size_t kMargin = 40;
constexpr std::size_t kGap = 32;
constexpr std::size_t kCaptionHeight = 40;
constexpr std::size_t kBaselineBelowPicture = 28;
constexpr std::size_t kCellWidth = SheetLayout::PictureWidth;
constexpr std::size_t kCellHeight = SheetLayout::PictureHeight + kCaptionHeight;

}  // namespace

SheetLayout::SheetLayout(std::size_t pictures, std::size_t columns) {
  const auto square = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(pictures))));
  columns_ = std::clamp<std::size_t>(columns == 0 ? square : columns, 1, std::max<std::size_t>(pictures, 1));
  rows_ = (pictures + columns_ - 1) / columns_;
}

std::uint64_t SheetLayout::width() const {
  return 2 * kMargin + columns_ * (kCellWidth + kGap) - kGap;
}

std::uint64_t SheetLayout::height() const {
  return 2 * kMargin + rows_ * (kCellHeight + kGap) - kGap;
}

SheetLayout::Cell SheetLayout::cell(std::size_t index) const {
  const std::size_t x = kMargin + index % columns_ * (kCellWidth + kGap);
  const std::size_t y = kMargin + index / columns_ * (kCellHeight + kGap);
  return {x, y, x + kCellWidth / 2, y + PictureHeight + kBaselineBelowPicture};
}

std::pair<std::uint32_t, std::uint32_t> SheetLayout::fitted(std::uint32_t width, std::uint32_t height) {
  const double scale = std::min({1.0, double{PictureWidth} / width, double{PictureHeight} / height});
  const auto scaled = [scale](std::uint32_t edge) {
    return std::max<std::uint32_t>(1, static_cast<std::uint32_t>(std::lround(edge * scale)));
  };
  return {scaled(width), scaled(height)};
}

}  // namespace host

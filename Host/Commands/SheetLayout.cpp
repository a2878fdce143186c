// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/SheetLayout.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr std::size_t Margin = 40;
constexpr std::size_t Gap = 32;
constexpr std::size_t CaptionHeight = 40;
constexpr std::size_t BaselineBelowPicture = 28;
constexpr std::size_t CellWidth = SheetLayout::PictureWidth;
constexpr std::size_t CellHeight = SheetLayout::PictureHeight + CaptionHeight;

}  // namespace

SheetLayout::SheetLayout(std::size_t pictures, std::size_t columns) {
  const auto square = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(pictures))));
  columns_ = std::clamp<std::size_t>(columns == 0 ? square : columns, 1, std::max<std::size_t>(pictures, 1));
  rows_ = (pictures + columns_ - 1) / columns_;
}

std::uint64_t SheetLayout::width() const {
  return 2 * Margin + columns_ * (CellWidth + Gap) - Gap;
}

std::uint64_t SheetLayout::height() const {
  return 2 * Margin + rows_ * (CellHeight + Gap) - Gap;
}

SheetLayout::Cell SheetLayout::cell(std::size_t index) const {
  const std::size_t x = Margin + index % columns_ * (CellWidth + Gap);
  const std::size_t y = Margin + index / columns_ * (CellHeight + Gap);
  return {x, y, x + CellWidth / 2, y + PictureHeight + BaselineBelowPicture};
}

std::pair<std::uint32_t, std::uint32_t> SheetLayout::fitted(std::uint32_t width, std::uint32_t height) {
  const double scale = std::min({1.0, double{PictureWidth} / width, double{PictureHeight} / height});
  const auto scaled = [scale](std::uint32_t edge) {
    return std::max<std::uint32_t>(1, static_cast<std::uint32_t>(std::lround(edge * scale)));
  };
  return {scaled(width), scaled(height)};
}

}  // namespace host

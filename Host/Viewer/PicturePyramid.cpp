// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/PicturePyramid.h"

#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <array>
#include <type_traits>

namespace host {
namespace {

// How many of the picture's columns (or rows) entry `at` of a level stands for; 0 behind its end.
std::uint32_t covered(std::uint32_t full, unsigned level, std::uint32_t at) {
  const std::uint64_t begin = std::uint64_t{at} << level;
  return begin >= full ? 0 : static_cast<std::uint32_t>(std::min<std::uint64_t>(full - begin, 1u << level));
}

// What two neighbours weigh in their mean.
std::array<float, 2> weightsOf(std::uint32_t full, unsigned level, std::uint32_t at) {
  const auto first = static_cast<float>(covered(full, level, at));
  const auto second = static_cast<float>(covered(full, level, at + 1));
  return {first / (first + second), second / (first + second)};
}

template <class To>
To rounded(float value) {
  if constexpr (std::is_same_v<To, float>) {
    return value;
  } else {
    return static_cast<To>(static_cast<int>(value + 0.5f));
  }
}

// `scale` takes the samples to the next level's.
template <class From, class To>
void halve(const VortoBitmap& from, VortoBitmap& to, PictureSize full, unsigned level, std::array<int, 4> order,
           const std::atomic<bool>* ends) {
  constexpr float scale = std::is_same_v<From, std::uint8_t> ? 257.0f : 1.0f;
  const auto* source = reinterpret_cast<const From*>(from.data);
  auto* target = reinterpret_cast<To*>(to.data);
  const std::size_t row = std::size_t{4} * from.width;
  const std::uint32_t whole =
      from.width / 2 - (from.width % 2 == 0 && from.width > 1 ? 1 : 0);  // pairs before the last
  for (std::uint32_t y = 0; y < to.height; ++y) {
    checkNotEnded(ends);
    const From* const upper = source + std::size_t{2} * y * row;
    const From* const lower = 2 * y + 1 < from.height ? upper + row : upper;
    const auto [top, bottom] = weightsOf(full.height, level, 2 * y);
    const float half[] = {0.5f * scale * top, 0.5f * scale * bottom};
    for (std::uint32_t x = 0; x < whole; ++x, target += 4) {
      const From* const a = upper + std::size_t{8} * x;
      const From* const b = lower + std::size_t{8} * x;
      for (std::size_t c = 0; c < 4; ++c) {
        const auto s = static_cast<std::size_t>(order[c]);
        target[c] = rounded<To>(half[0] * (static_cast<float>(a[s]) + static_cast<float>(a[s + 4])) +
                                half[1] * (static_cast<float>(b[s]) + static_cast<float>(b[s + 4])));
      }
    }
    for (std::uint32_t x = whole; x < to.width; ++x, target += 4) {
      const auto [left, right] = weightsOf(full.width, level, 2 * x);
      const From* const a = upper + std::size_t{8} * x;
      const From* const b = lower + std::size_t{8} * x;
      const std::size_t next = 2 * x + 1 < from.width ? 4 : 0;
      for (std::size_t c = 0; c < 4; ++c) {
        const auto s = static_cast<std::size_t>(order[c]);
        const float above = left * static_cast<float>(a[s]) + right * static_cast<float>(a[s + next]);
        const float below = left * static_cast<float>(b[s]) + right * static_cast<float>(b[s + next]);
        target[c] = rounded<To>(scale * (top * above + bottom * below));
      }
    }
  }
}

// `level` is the one that is halved, `full` the size of level 0.
BitmapRef halved(const VortoBitmap& from, PictureSize full, unsigned level, const std::atomic<bool>* ends) {
  const bool isFloat = from.formatCode == VortoPixelFormat::RGBAFloat;
  const auto to = newUnsetBitmap((from.width + 1) / 2, (from.height + 1) / 2,
                                 isFloat ? VortoPixelFormat::RGBAFloat : VortoPixelFormat::RGBA16, "the preview");
  const VortoPixelLayout& layout = TCPixelLayoutOf(from.formatCode);
  const std::array<int, 4> order{layout.red, layout.green, layout.blue, layout.alpha};
  if (isFloat) {
    halve<float, float>(from, *to, full, level, order, ends);
  } else if (layout.number == VortoPixelLayout::Number::Word) {
    halve<std::uint16_t, std::uint16_t>(from, *to, full, level, order, ends);
  } else {
    halve<std::uint8_t, std::uint16_t>(from, *to, full, level, order, ends);
  }
  return to;
}

}  // namespace

const VortoBitmap& PicturePyramid::level(unsigned level) {
  const PictureSize full{levels_[0]->width, levels_[0]->height};
  while (levels_.size() <= level && (levels_.back()->width > 1 || levels_.back()->height > 1)) {
    levels_.push_back(halved(*levels_.back(), full, static_cast<unsigned>(levels_.size() - 1), ends_));
  }
  return *levels_[std::min<std::size_t>(level, levels_.size() - 1)];
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/PixelPlacement.h"

#include "Host/ImageFiles/HalfFloat.h"
#include "Host/ImageFiles/Interleaving.h"

#include <algorithm>
#include <cstring>

namespace host::exr {
namespace {

constexpr std::size_t kPiece = 256;  // pixels at a time, whose samples stay in the processor's nearest cache

}  // namespace

PixelPlacement::PixelPlacement(const Part& part, const Selection& selection, std::byte* pixels, std::size_t rowBytes)
    : part_(part), selection_(selection), pixels_(pixels), rowBytes_(rowBytes) {
  for (std::size_t i = 0; i < part.channels.size(); ++i) {
    for (std::size_t component = 0; component < 4; ++component) {
      if (selection.channels[component] == static_cast<int>(i)) wordsBefore_[component] = wordsOfPixel_;
    }
    wordsOfPixel_ += part.channels[i].size() / 2;
  }
}

float* PixelPlacement::pixelAt(std::int64_t x, std::int64_t y) const {
  std::byte* const row = pixels_ + static_cast<std::size_t>(y - part_.display.top) * rowBytes_;
  return reinterpret_cast<float*>(row) + static_cast<std::size_t>(x - part_.display.left) * 4;
}

void PixelPlacement::fillOutside() {
  const Box& data = part_.data;
  const Box& display = part_.display;
  const float alpha = selection_.channels[3] < 0 ? 1.0f : 0.0f;
  const auto fill = [&](std::int64_t y, std::int64_t left, std::int64_t right) {
    if (left > right) return;
    float* to = pixelAt(left, y);
    for (std::int64_t x = left; x <= right; ++x, to += 4) {
      to[0] = to[1] = to[2] = 0;
      to[3] = alpha;
    }
  };
  for (std::int64_t y = display.top; y <= display.bottom; ++y) {
    if (y < data.top || y > data.bottom) {
      fill(y, display.left, display.right);
    } else {
      fill(y, display.left, std::min(display.right, data.left - 1));
      fill(y, std::max(display.left, data.right + 1), display.right);
    }
  }
}

void PixelPlacement::place(const Box& box, const Words& words) {
  const Box& display = part_.display;
  const std::int64_t left = std::max(box.left, display.left);
  const std::int64_t right = std::min(box.right, display.right);
  if (left > right) return;
  const auto rowWidth = static_cast<std::size_t>(box.width());
  for (std::int64_t y = std::max(box.top, display.top); y <= std::min(box.bottom, display.bottom); ++y) {
    const std::size_t rowStart = static_cast<std::size_t>(y - box.top) * rowWidth * wordsOfPixel_;
    placeRow(words, rowStart, rowWidth, static_cast<std::size_t>(left - box.left),
             static_cast<std::size_t>(right - left + 1), pixelAt(left, y));
  }
}

void PixelPlacement::placeRow(const Words& words, std::size_t rowStart, std::size_t rowWidth, std::size_t skipped,
                              std::size_t count, float* to) const {
  const bool isGray = selection_.channels[0] == selection_.channels[1];
  float samples[4][kPiece];
  std::fill_n(samples[3], kPiece, 1.0f);
  for (std::size_t done = 0; done < count; done += kPiece) {
    const std::size_t piece = std::min(kPiece, count - done);
    for (const std::size_t component : {0, 1, 2, 3}) {
      const bool isCopy = isGray && (component == 1 || component == 2);
      if (selection_.channels[component] < 0 || isCopy) continue;
      readSamples(words, rowStart, rowWidth, component, skipped + done, piece, samples[component]);
    }
    interleave({samples[0], isGray ? samples[0] : samples[1], isGray ? samples[0] : samples[2], samples[3]}, piece,
               to + done * 4);
  }
}

void PixelPlacement::readSamples(const Words& words, std::size_t rowStart, std::size_t rowWidth, std::size_t component,
                                 std::size_t first, std::size_t count, float* samples) const {
  const auto channel = static_cast<std::size_t>(selection_.channels[component]);
  const std::size_t size = part_.channels[channel].size() / 2;
  std::uint16_t stored[2 * kPiece];
  words.copy(rowStart + rowWidth * wordsBefore_[component] + first * size, count * size, stored);
  if (size == 1) {
    halvesToFloats(stored, count, samples);
  } else {
    std::memcpy(samples, stored, count * sizeof(float));
  }
}

}  // namespace host::exr

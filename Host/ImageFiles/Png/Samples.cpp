// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Samples.h"

#include <cstring>

namespace host {
namespace {

std::uint16_t number16(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

// Where the samples lie in a stored pixel; alpha is its last.
template <std::size_t size, std::size_t red, std::size_t green, std::size_t blue, bool isAlphaStored>
void expandWords(const std::uint8_t* stored, std::size_t pixels, std::byte* to) {
  for (std::size_t i = 0; i < pixels; ++i, stored += size, to += 8) {
    const std::array<std::uint16_t, 4> pixel{number16(stored + red), number16(stored + green), number16(stored + blue),
                                             isAlphaStored ? number16(stored + size - 2) : std::uint16_t{0xFFFF}};
    std::memcpy(to, pixel.data(), sizeof pixel);
  }
}

}  // namespace

PngExpander::PngExpander(const PngHeader& header, std::span<const std::uint8_t> palette,
                         std::span<const std::uint8_t> transparency)
    : header_(header) {
  const bool isColor = header.color == PngColor::RGB && transparency.size() == 6;
  const bool isGray = header.color == PngColor::Gray && transparency.size() == 2;
  if (isColor || isGray) {
    const std::size_t step = isColor ? 2 : 0;
    auto& color = transparentColor_.emplace();
    for (std::size_t i = 0; i < 3; ++i) {
      // Of shorter samples the low bits count.
      color[i] = static_cast<std::uint16_t>(number16(&transparency[i * step]) & ((1u << header.bitDepth) - 1));
    }
  }
  const bool hasTransparentEntries = header.color == PngColor::Palette && !transparency.empty();
  hasAlpha_ = header.color == PngColor::GrayAlpha || header.color == PngColor::RGBA || transparentColor_ ||
              hasTransparentEntries;
  makeTable(palette, transparency);
}

void PngExpander::makeTable(std::span<const std::uint8_t> palette, std::span<const std::uint8_t> transparency) {
  const std::size_t count = std::size_t{1} << std::min(header_.bitDepth, 8u);
  for (std::size_t i = 0; i < count; ++i) {
    auto& pixel = table_[i];
    pixel = {0, 0, 0, 0xFF};
    if (header_.color == PngColor::Gray) {
      pixel[0] = pixel[1] = pixel[2] = static_cast<std::uint8_t>(i * 255 / (count - 1));
      if (transparentColor_ && (*transparentColor_)[0] == i) pixel[3] = 0;
    } else {
      if (3 * i + 3 <= palette.size()) std::memcpy(pixel.data(), &palette[3 * i], 3);
      if (i < transparency.size()) pixel[3] = transparency[i];
    }
  }
}

void PngExpander::expand(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const {
  if (header_.bitDepth == 16) {
    expand16(stored, pixels, to);
  } else if (header_.color == PngColor::Gray || header_.color == PngColor::Palette) {
    expandIndexes(stored, pixels, to);
  } else {
    expand8(stored, pixels, to);
  }
}

void PngExpander::expandIndexes(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const {
  const unsigned depth = header_.bitDepth;
  const unsigned mask = (1u << depth) - 1;
  for (std::size_t i = 0; i < pixels; ++i, to += 4) {
    const std::size_t bit = i * depth;
    const unsigned index = (stored[bit / 8] >> (8 - depth - bit % 8)) & mask;
    std::memcpy(to, table_[index].data(), 4);
  }
}

void PngExpander::expand8(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const {
  auto* out = reinterpret_cast<std::uint8_t*>(to);
  switch (header_.color) {
    case PngColor::RGBA:
      std::memcpy(out, stored, 4 * pixels);
      return;
    case PngColor::GrayAlpha:
      for (std::size_t i = 0; i < pixels; ++i, stored += 2, out += 4) {
        out[0] = out[1] = out[2] = stored[0];
        out[3] = stored[1];
      }
      return;
    default:
      break;
  }
  for (std::size_t i = 0; i < pixels; ++i, stored += 3, out += 4) {
    out[0] = stored[0];
    out[1] = stored[1];
    out[2] = stored[2];
    out[3] = 0xFF;
  }
  if (!transparentColor_) return;
  const auto& key = *transparentColor_;
  for (out -= 4 * pixels; pixels > 0; --pixels, out += 4) {
    if (out[0] == key[0] && out[1] == key[1] && out[2] == key[2]) out[3] = 0;
  }
}

void PngExpander::expand16(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const {
  switch (header_.color) {
    case PngColor::Gray:
      expandWords<2, 0, 0, 0, false>(stored, pixels, to);
      break;
    case PngColor::GrayAlpha:
      expandWords<4, 0, 0, 0, true>(stored, pixels, to);
      break;
    case PngColor::RGB:
      expandWords<6, 0, 2, 4, false>(stored, pixels, to);
      break;
    default:
      expandWords<8, 0, 2, 4, true>(stored, pixels, to);
      break;
  }
  if (!transparentColor_) return;
  for (; pixels > 0; --pixels, to += 8) {
    constexpr std::uint16_t kTransparent = 0;
    if (std::memcmp(to, transparentColor_->data(), 6) == 0) std::memcpy(to + 6, &kTransparent, sizeof kTransparent);
  }
}

}  // namespace host

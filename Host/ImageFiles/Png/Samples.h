// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Png/Header.h"

#include <array>
#include <optional>
#include <span>

namespace host {

// How stored pixels become red, green, blue and alpha.
class PngExpander {
 public:
  // `palette` holds three bytes for each color, `transparency` what tRNS says; either may be empty. An index beyond the
  // palette is opaque black. A transparency that does not fit the header is as none.
  PngExpander(const PngHeader& header, std::span<const std::uint8_t> palette,
              std::span<const std::uint8_t> transparency);

  bool hasAlpha() const { return hasAlpha_; }
  // Four samples of 8 bits; with a depth of 16, of 16 bits in the machine's byte order.
  void expand(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const;

 private:
  void makeTable(std::span<const std::uint8_t> palette, std::span<const std::uint8_t> transparency);
  void expandIndexes(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const;
  void expand8(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const;
  void expand16(const std::uint8_t* stored, std::size_t pixels, std::byte* to) const;

  PngHeader header_;
  bool hasAlpha_ = false;
  std::array<std::array<std::uint8_t, 4>, 256> table_{};  // the pixel of an index, or of a gray value of up to 8 bits
  std::optional<std::array<std::uint16_t, 3>> transparentColor_;
};

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/TextReader.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

using Rgb = std::array<double, 3>;

// A color as a text has it: red, green and blue of 0 to 1 (color() may leave that), and its alpha when it states one.
struct TextColor {
  Rgb rgb{};
  std::optional<double> alpha;
};

// Reads one color, as CSS writes them:
//   #rgb #rgba #rrggbb #rrggbbaa, the names of CSS, transparent
//   rgb(255 136 0), rgb(100%, 50%, 0%, 0.5), rgba(), hsl(30 100% 50%), hsl(0.5turn, 100%, 50%, 0.5), hsla(); 0 to 255,
//   0 to 100%; alpha 0 to 1 or in percent, behind a comma or a slash
//   color(srgb 1 0.53 0), with any finite numbers
// Throws TextFault for anything else; `otherwise` is what could stand there as well.
TextColor readColor(TextReader& reader, const std::string& otherwise = "");

// The color of a name in lower case, as 0xRRGGBB.
std::optional<unsigned> namedColor(std::string_view name);
std::vector<std::string> colorNames();
// "; did you mean "orange"?" for what is close to one of these names, otherwise nothing.
std::string closeColorsHint(const std::string& name);

// "#rrggbb" where that is the same color to the bit, otherwise color(srgb ...).
std::string colorText(const Rgb& color);
// "#rrggbb", when it is the same to the bit.
std::optional<std::string> colorCode(const Rgb& color);

}  // namespace host

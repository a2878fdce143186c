// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/GradientStops.h"
#include "Host/Texts/ParameterNotes.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Whether a text is to be read as CSS: a function whose name ends in "-gradient", alone or behind "background:".
bool looksLikeCss(std::string_view text);

// linear-gradient(), alone or as a declaration ("background: linear-gradient(...);"). Positions are percentages;
// missing ones, two for one color, and color hints are as CSS has them. Colors are blended premultiplied there: where
// alphas differ, and at hints other than in the middle, stops are added. The direction has no place in a gradient;
// where it is not "to right", a note says so. Throws TextFault.
GradientStops gradientOfCss(std::string_view text, Notes& notes);

// "linear-gradient(to right, ...)"; nothing, with the reason, when there is no telling (rampsOfStops).
std::optional<std::string> cssOfGradient(const GradientStops& stops, Notes& notes, std::string* reason);

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/GradientStops.h"
#include "Host/Texts/ParameterNotes.h"

#include <string>
#include <string_view>

namespace host {

// A gradient as people write it, in one line or many:
//
//   #102040 0%, #ff8800 smooth 50%, white 100%, opacity 75% 0%, opacity 1 100%
//
// Stops stand apart by commas. A stop begins with a color (ColorText.h), or with "opacity" and a number; behind that,
// in any order, each at most once: its position; "constant", "linear" (where nothing is said) or "smooth", which is how
// the gradient goes on from there; "middle" and the point of a smooth segment that is its middle, as a part of it (50%
// where nothing is said). Positions, opacities and middles are percentages, or numbers of 0 to 1; percentages may leave
// that. Colors and opacities are two rows of stops; in each, stops without positions are spread evenly. Colors with an
// alpha make stops of both, and then there are no others for the opacity. Without any it is 1. "none" and "opacity
// none" stand for rows without stops, "interpolation(N)" for other kinds than the three.
GradientStops gradientOfText(std::string_view text, Notes& notes);  // throws TextFault

// The same the other way: read again, it is the same gradient to the last bit. `separator` stands between the stops.
std::string textOfGradient(const GradientStops& stops, const std::string& separator = ", ");

}  // namespace host

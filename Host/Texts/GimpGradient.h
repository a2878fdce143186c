// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/GradientStops.h"
#include "Host/Texts/ParameterNotes.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

bool looksLikeGimp(std::string_view text);  // begins with "GIMP Gradient"

// A .ggr file. Linear segments and steps stay what they are (a middle that is not in the middle is a stop); the curves,
// and hues that go around the circle, are met by added stops. Where two segments meet, the position is the left one's.
// The colors of the palette of its program are taken as black in front and white behind, and a note says so. Throws
// TextFault.
GradientStops gradientOfGimp(std::string_view text, Notes& notes);

// Linear segments of such a file; nothing, with the reason, when there is no telling (rampsOfStops).
std::optional<std::string> gimpOfGradient(const GradientStops& stops, Notes& notes, std::string* reason);

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/GradientStops.h"
#include "Host/Texts/ParameterNotes.h"

#include <string_view>

namespace host {

// Whether a text is to be read as a .cpt file: its first line that is neither empty nor begins with # has two fields at
// least, the first of them a number, or B, F or N.
bool looksLikePalette(std::string_view text);

// A color palette table: slices "z0 color z1 color", each color as "r g b", "r/g/b", a gray, a name or #rrggbb, of 0 to
// 255; under "# COLOR_MODEL = HSV" as "h s v" or "h-s-v", and then blended in these. The range becomes 0 to 1; the
// value at which one slice ends is the next one's. The lines B, F and N are passed over. Throws TextFault.
GradientStops gradientOfPalette(std::string_view text, Notes& notes);

}  // namespace host

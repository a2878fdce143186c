// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/GradientStops.h"
#include "Host/Texts/ParameterNotes.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Whether a text is an XML document whose first element is <svg>, <linearGradient> or <radialGradient>.
bool looksLikeSvg(std::string_view text);

// The stops of the first linearGradient or radialGradient of a document, its own or those that its href leads to:
// offset, and stop-color and stop-opacity as attributes or in style. Its geometry has no place in a gradient. Entities
// of the document's own are refused. Throws TextFault; inside an attribute the place is its element's.
GradientStops gradientOfSvg(std::string_view text, Notes& notes);

// A document of one linearGradient and a rectangle that shows it; nothing, with the reason, when there is no telling
// (rampsOfStops).
std::optional<std::string> svgOfGradient(const GradientStops& stops, Notes& notes, std::string* reason);

}  // namespace host

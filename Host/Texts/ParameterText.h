// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/ParameterNotes.h"
#include "Host/Texts/StateKind.h"
#include "Host/Texts/TextReader.h"
#include "Platform/Foundation/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// A gradient or levels that stood in a text.
struct ParameterText {
  StateKind kind = StateKind::Gradient;
  const char* format = "text";  // "text", "CSS", "SVG", "GIMP", "CPT"
  PropertyList state;
  Notes notes;
};

std::string_view withoutByteOrderMark(std::string_view text);

// Whether bytes are to be read as such a text: they are UTF-8, and neither a property list nor JSON.
bool isParameterText(std::string_view bytes);

// Whatever format it has: text (GradientText.h, LevelsText.h), CSS, SVG, .ggr or .cpt. Where it could be a gradient or
// levels, it is of the wanted kind. The text has no byte order mark. Throws TextFault.
ParameterText parameterOfText(std::string_view text, std::optional<StateKind> wanted);

enum class TextFormat { Text, Css, Svg, Gimp };

// A state in one of the formats, with a newline at its end; nothing, with the reason, when it cannot be said there.
std::optional<std::string> textOfParameter(StateKind kind, const PropertyList& state, TextFormat format, Notes& notes,
                                           std::string* reason);

}  // namespace host

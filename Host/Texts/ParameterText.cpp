// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/ParameterText.h"

#include "Host/Texts/ColorPalette.h"
#include "Host/Texts/CssGradient.h"
#include "Host/Texts/GimpGradient.h"
#include "Host/Texts/GradientText.h"
#include "Host/Texts/LevelsText.h"
#include "Host/Texts/SvgGradient.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/NSUnicode.h"

namespace host {
namespace {

struct GradientFormat {
  const char* name;
  bool (*looksLikeIt)(std::string_view text);
  GradientStops (*read)(std::string_view text, Notes& notes);
};

bool anyText(std::string_view /*text*/) {
  return true;
}

// The first that a text looks like is what it is.
constexpr GradientFormat kGradientFormats[] = {
    {"SVG", looksLikeSvg, gradientOfSvg}, {"GIMP", looksLikeGimp, gradientOfGimp},
    {"CSS", looksLikeCss, gradientOfCss}, {"CPT", looksLikePalette, gradientOfPalette},
    {"text", anyText, gradientOfText},
};

}  // namespace

std::string_view withoutByteOrderMark(std::string_view text) {
  return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
}

bool isParameterText(std::string_view bytes) {
  if (bytes.starts_with("bplist") || NSValidUTF8Length(bytes) != bytes.size()) return false;
  const std::string_view text = withoutByteOrderMark(bytes);
  const std::size_t first = text.find_first_not_of(" \t\r\n\f");
  if (first == std::string_view::npos || text.find('\0') != std::string_view::npos) return false;
  if (text[first] == '<') return looksLikeSvg(text);
  return text[first] != '{';
}

ParameterText parameterOfText(std::string_view text, std::optional<StateKind> wanted) {
  ParameterText parameter;
  for (const GradientFormat& format : kGradientFormats) {
    if (!format.looksLikeIt(text)) continue;
    parameter.format = format.name;
    const bool isPlain = format.looksLikeIt == anyText;
    if (isPlain && (wanted == StateKind::Levels || (!wanted && looksLikeLevels(text)))) {
      parameter.kind = StateKind::Levels;
      parameter.state = levelsOfText(text);
    } else {
      parameter.state = stateOfStops(format.read(text, parameter.notes));
    }
    break;
  }
  return parameter;
}

std::optional<std::string> textOfParameter(StateKind kind, const PropertyList& state, TextFormat format, Notes& notes,
                                           std::string* reason) {
  if (kind == StateKind::Levels && format == TextFormat::Text) {
    auto text = textOfLevels(state, reason);
    if (text) *text += "\n";
    return text;
  }
  if (kind != StateKind::Gradient) {
    NSRefuse(reason, format == TextFormat::Text ? "opaque data has no such text" : "only gradients can be written so");
    return std::nullopt;
  }
  const GradientStops stops = stopsOfState(state);
  switch (format) {
    case TextFormat::Text:
      if (stops.colors.size() + stops.opacities.size() > kMaximumStops) {
        NSRefuse(reason, "it has more than " + std::to_string(kMaximumStops) + " stops");
        return std::nullopt;
      }
      return textOfGradient(stops, ",\n") + "\n";
    case TextFormat::Css:
      return cssOfGradient(stops, notes, reason);
    case TextFormat::Svg:
      return svgOfGradient(stops, notes, reason);
    case TextFormat::Gimp:
      break;
  }
  return gimpOfGradient(stops, notes, reason);
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/SvgGradient.h"

#include "Host/Messages/Json.h"
#include "Host/Texts/ColorText.h"
#include "Host/Texts/GradientRamps.h"
#include "Host/Texts/SvgDocument.h"

#include <algorithm>
#include <set>
#include <unordered_map>

namespace host {
namespace {

// The name of the first element, behind declarations, comments and a document type; empty when there is none.
std::string_view firstElement(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  for (;;) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos || text[begin] != '<') return {};
    text.remove_prefix(begin);
    const std::string_view close = text.starts_with("<!--") ? "-->" : text.starts_with("<?") ? "?>" : ">";
    if (!text.starts_with("<!") && !text.starts_with("<?")) break;
    const std::size_t end = text.find(close);
    if (end == std::string_view::npos) return {};
    text.remove_prefix(end + close.size());
  }
  const std::string_view name = text.substr(1, text.find_first_of(" \t\r\n/>", 1) - 1);
  return name.substr(name.find(':') + 1);
}

// Runs `read` over an attribute; faults in it get the place of the element.
template <class Read>
auto readValue(const SvgStop& stop, const std::string& name, const std::string& value, Read read) {
  try {
    TextReader reader(value);
    auto result = read(reader);
    if (!reader.atEnd()) reader.expected("the end of the value");
    return result;
  } catch (const TextFault& fault) {
    throw TextFault(stop.at, name + ": " + fault.what());
  }
}

double fractionOf(TextReader& reader) {
  const Quantity quantity = reader.quantity("a number of 0 to 1 or a percentage");
  if (!quantity.unit.empty() && !quantity.isPercent()) {
    TextReader::fail(quantity.at, "expected a number of 0 to 1 or a percentage");
  }
  return std::min(std::max(quantity.number, 0.0), 1.0);
}

double fractionOf(const SvgStop& stop, const std::string& name, double otherwise) {
  const auto value = stop.values.find(name);
  if (value == stop.values.end()) return otherwise;
  return readValue(stop, name, value->second, [](TextReader& reader) { return fractionOf(reader); });
}

Rgba colorOf(const SvgStop& stop) {
  const auto value = stop.values.find("stop-color");
  if (value == stop.values.end() && stop.values.contains("class")) {
    throw TextFault(stop.at, "a stop whose color a style sheet gives, which is not read");
  }
  TextColor color;  // black
  if (value != stop.values.end()) {
    color = readValue(stop, "stop-color", value->second, [](TextReader& reader) { return readColor(reader); });
  }
  const double opacity = color.alpha.value_or(1) * fractionOf(stop, "stop-opacity", 1);
  return {color.rgb[0], color.rgb[1], color.rgb[2], opacity};
}

// The first gradient, or the one that its href leads to, in the end.
const SvgGradient& gradientWithStops(const std::vector<SvgGradient>& gradients, std::size_t textSize) {
  if (gradients.empty()) throw TextFault(textSize, "there is no linearGradient or radialGradient");
  std::unordered_map<std::string_view, const SvgGradient*> byId;
  for (const SvgGradient& gradient : gradients) byId.emplace(gradient.id, &gradient);
  const SvgGradient* gradient = gradients.data();
  std::set<const SvgGradient*> passed;
  while (gradient->stops.empty()) {
    if (gradient->href.empty()) throw TextFault(gradient->at, "a gradient without stops");
    const auto target = byId.find(gradient->href);
    if (target == byId.end()) {
      throw TextFault(gradient->at,
                      "its href leads to " + quotedText("#" + gradient->href) + ", which is no gradient here");
    }
    if (!passed.insert(gradient).second) throw TextFault(gradient->at, "its href leads in a circle");
    gradient = target->second;
  }
  return *gradient;
}

void noteWhatIsLeft(const std::vector<SvgGradient>& gradients, Notes& notes) {
  const SvgGradient& first = gradients.front();
  if (gradients.size() > 1) {
    notes.push_back("the first of its " + std::to_string(gradients.size()) + " gradients was read" +
                    (first.id.empty() ? "" : ", " + quotedText(first.id)));
  }
  if (!first.spreadMethod.empty() && first.spreadMethod != "pad") {
    notes.push_back("its spreadMethod " + quotedText(first.spreadMethod) +
                    " has no place in a gradient and is left out");
  }
}

Ramps rampsOf(const std::vector<SvgStop>& stops) {
  Ramps ramps;
  Ramp ramp;
  ramp.last = colorOf(stops.front());  // holds before the first stop
  for (const SvgStop& stop : stops) {
    ramp.begin = ramp.end;
    ramp.end = std::max(fractionOf(stop, "offset", 0), ramp.begin);
    ramp.first = ramp.last;
    ramp.last = colorOf(stop);
    appendRamp(ramps, ramp);
  }
  appendRamp(ramps, {ramp.end, 1, ramp.last, ramp.last});
  if (ramps.list.empty() || ramp.end == 0) ramps.list = {{0, 1, ramp.last, ramp.last}};
  return ramps;
}

void appendSvgStop(std::string& text, double offset, const Rgba& color) {
  const Rgb rgb{color[0], color[1], color[2]};
  std::string code = colorCode(rgb).value_or("");
  if (code.empty()) {
    code = "rgb(" + percentText(rgb[0]) + ", " + percentText(rgb[1]) + ", " + percentText(rgb[2]) + ")";
  }
  text += "      <stop offset=\"" + percentText(offset) + "\" stop-color=\"" + code + "\"";
  if (color[3] != 1) text += " stop-opacity=\"" + numberText(color[3]) + "\"";
  text += "/>\n";
}

}  // namespace

bool looksLikeSvg(std::string_view text) {
  const std::string_view name = firstElement(text);
  return name == "svg" || name == "linearGradient" || name == "radialGradient";
}

GradientStops gradientOfSvg(std::string_view text, Notes& notes) {
  const std::vector<SvgGradient> gradients = svgGradients(text);
  const SvgGradient& gradient = gradientWithStops(gradients, text.size());
  if (gradients.front().colorInterpolation == "linearRGB") {
    throw TextFault(gradients.front().at, "it blends in linearRGB, where only sRGB is read");
  }
  noteWhatIsLeft(gradients, notes);
  GradientStops stops = stopsOfRamps(rampsOf(gradient.stops).list, JumpColor::Behind);
  return stops;
}

std::optional<std::string> svgOfGradient(const GradientStops& stops, Notes& notes, std::string* reason) {
  const auto ramps = rampsOfStops(stops, straightBlend, reason);
  if (!ramps) return std::nullopt;
  std::string text =
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 256 64\">\n  <defs>\n    <linearGradient "
      "id=\"gradient\">\n";
  const Ramp* before = nullptr;
  for (const Ramp& ramp : ramps->list) {
    if (!before || before->last != ramp.first) appendSvgStop(text, ramp.begin, ramp.first);
    appendSvgStop(text, ramp.end, ramp.last);
    before = &ramp;
  }
  text += "    </linearGradient>\n  </defs>\n  <rect width=\"256\" height=\"64\" fill=\"url(#gradient)\"/>\n</svg>\n";
  noteAddedStops(notes, ramps->added, "the gradient");
  return text;
}

}  // namespace host

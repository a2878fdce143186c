// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/CssGradient.h"

#include "Host/Texts/ColorText.h"
#include "Host/Texts/GradientRamps.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

// A color at a position, or a hint, which has none.
struct CssStop {
  std::optional<Rgba> color;
  std::optional<double> position;
};

double readPosition(TextReader& reader) {
  const Quantity quantity = reader.quantity("a position in percent");
  if (quantity.isPercent() || (quantity.unit.empty() && quantity.number == 0)) return quantity.number;
  TextReader::fail(quantity.at, "expected a position in percent" +
                                    (quantity.unit.empty() ? std::string() : ", not in " + quotedText(quantity.unit)));
}

// The stops of a CSS gradient, from behind "linear-gradient" on.
class CssReader {
 public:
  explicit CssReader(TextReader& reader) : reader_(reader) {}

  std::vector<CssStop> read(Notes& notes) {
    reader_.expect('(');
    if (readDirection(notes)) reader_.expect(',');
    do readStop();
    while (reader_.takes(','));
    reader_.expect(')');
    checkHints();
    return std::move(stops_);
  }

 private:
  bool readDirection(Notes& notes) {
    bool any = false;
    std::string direction;
    if (reader_.nextIsNumber()) {
      const Quantity angle = reader_.quantity("an angle");
      const std::string unit = lowered(angle.unit);
      if (unit != "deg" && unit != "grad" && unit != "rad" && unit != "turn" && !(unit.empty() && angle.number == 0)) {
        TextReader::fail(angle.at, "expected an angle in deg, grad, rad or turn, a side, or a color");
      }
      any = true;
      if (unit != "deg" || angle.number != 90) direction = "its angle";
    } else if (lowered(reader_.peekedWord()) == "to") {
      reader_.word();
      any = true;
      direction = "its direction";
      readSides(direction);
    }
    if (lowered(reader_.peekedWord()) == "in") {
      reader_.word();
      const std::size_t at = reader_.place();
      if (lowered(reader_.word()) != "srgb") TextReader::fail(at, "expected \"srgb\": no other blending is read");
      any = true;
    }
    if (!direction.empty()) notes.push_back(direction + " has no place in a gradient and is left out");
    return any;
  }

  void readSides(std::string& direction) {
    std::string sides;
    for (int i = 0; i < 2 && reader_.nextIsWord() && lowered(reader_.peekedWord()) != "in"; ++i) {
      const std::string side = lowered(reader_.peekedWord());
      if (side != "left" && side != "right" && side != "top" && side != "bottom") break;
      reader_.word();
      sides += side;
    }
    if (sides.empty()) reader_.expected("\"left\", \"right\", \"top\" or \"bottom\"");
    if (sides == "right") direction.clear();
  }

  void readStop() {
    if (reader_.nextIsNumber()) {
      hints_.push_back({stops_.size(), reader_.place()});
      stops_.push_back({std::nullopt, readPosition(reader_)});
    } else {
      const TextColor color = readColor(reader_, " or a position in percent");
      CssStop stop{Rgba{color.rgb[0], color.rgb[1], color.rgb[2], color.alpha.value_or(1)}, std::nullopt};
      if (reader_.nextIsNumber()) stop.position = readPosition(reader_);
      stops_.push_back(stop);
      if (reader_.nextIsNumber()) {
        stop.position = readPosition(reader_);
        stops_.push_back(stop);
      }
    }
    if (reader_.next() != ',' && reader_.next() != ')') reader_.expected("a position in percent, \",\" or \")\"");
    if (stops_.size() > kMaximumStops) {
      TextReader::fail(reader_.place(), "more than " + std::to_string(kMaximumStops) + " stops");
    }
  }

  void checkHints() {
    for (const auto& [index, at] : hints_) {
      const bool between = index > 0 && index + 1 < stops_.size() && stops_[index - 1].color && stops_[index + 1].color;
      if (!between) TextReader::fail(at, "a position without a color, which only stands between two colors");
    }
    if (stops_.size() < 2) reader_.expected("a second color");
  }

  struct Hint {
    std::size_t index;
    std::size_t at;
  };
  TextReader& reader_;
  std::vector<CssStop> stops_;
  std::vector<Hint> hints_;
};

// No position lies before one on its left.
void placeStops(std::vector<CssStop>& stops) {
  if (!stops.front().position) stops.front().position = 0;
  if (!stops.back().position) stops.back().position = 1;
  double most = *stops.front().position;
  std::vector<std::optional<double>> positions;
  for (const CssStop& stop : stops) {
    if (stop.position) most = std::max(most, *stop.position);
    positions.push_back(stop.position ? std::optional(most) : std::nullopt);
  }
  const std::vector<double> filled = filledPositions(std::move(positions));
  for (std::size_t i = 0; i < stops.size(); ++i) stops[i].position = filled[i];
}

bool appendStretch(Ramps& ramps, const CssStop& left, const CssStop& right, std::optional<double> hint) {
  const double begin = *left.position;
  const double end = *right.position;
  const Rgba& first = *left.color;
  const Rgba& last = *right.color;
  const double middle = hint && end > begin ? (*hint - begin) / (end - begin) : 0.5;
  if (middle <= 0 || middle >= 1) {
    const Rgba& color = middle <= 0 ? last : first;
    appendRamp(ramps, {begin, end, color, color});
    return true;
  }
  // Where there is no alpha, the color of the other end holds.
  const auto opaque = [](const Rgba& color, const Rgba& other) {
    return color[3] == 0 ? Rgba{other[0], other[1], other[2], 0} : color;
  };
  const Rgba from = opaque(first, last);
  const Rgba to = opaque(last, first);
  const double exponent = std::log(0.5) / std::log(middle);
  const auto curve = [&](double t) { return premultipliedBlend(from, to, middle == 0.5 ? t : std::pow(t, exponent)); };
  const bool isStraight = from[3] == to[3] || std::equal(from.begin(), from.begin() + 3, to.begin());
  if (middle == 0.5 && isStraight) {
    appendRamp(ramps, {begin, end, from, to});
    return true;
  }
  return appendCurve(ramps, begin, end, curve);
}

// The ramps between the stops; the first and the last color reach at least as far as 0 and 1.
bool appendStops(Ramps& ramps, std::vector<CssStop>& stops) {
  CssStop first = stops.front();
  CssStop last = stops.back();
  first.position = std::min(0.0, *first.position);
  last.position = std::max(1.0, *last.position);
  stops.insert(stops.begin(), first);
  stops.push_back(last);
  for (std::size_t i = 0; i + 1 < stops.size();) {
    const bool hasHint = !stops[i + 1].color;
    const std::size_t next = i + (hasHint ? 2 : 1);
    if (!appendStretch(ramps, stops[i], stops[next], hasHint ? stops[i + 1].position : std::nullopt)) return false;
    i = next;
  }
  return true;
}

std::string readFunctionName(TextReader& reader) {
  std::string name = lowered(reader.peekedWord());
  if (!name.empty() && !name.ends_with("gradient")) {
    reader.word();
    reader.expect(':');
    name = lowered(reader.peekedWord());
  }
  if (name != "linear-gradient") reader.expected("linear-gradient(...), the one gradient of CSS that is read");
  reader.word();
  return name;
}

std::string cssColor(const Rgba& color) {
  const Rgb rgb{color[0], color[1], color[2]};
  const auto code = colorCode(rgb);
  if (code && color[3] == 1) return *code;
  std::string text = "rgb(";
  for (std::size_t i = 0; i < 3; ++i) text += (i > 0 ? " " : "") + percentText(color[i]);
  return text + (color[3] == 1 ? "" : " / " + percentText(color[3])) + ")";
}

}  // namespace

bool looksLikeCss(std::string_view text) {
  TextReader reader(text);
  std::string word = lowered(reader.peekedWord());
  if (word.starts_with("background")) {
    reader.word();
    if (!reader.takes(':')) return false;
    return true;
  }
  if (reader.next() == '-') {  // of one vendor
    const std::size_t end = text.find('(');
    return end != std::string_view::npos && lowered(text.substr(0, end)).ends_with("-gradient");
  }
  return word.ends_with("-gradient");
}

GradientStops gradientOfCss(std::string_view text, Notes& notes) {
  TextReader reader(text);
  readFunctionName(reader);
  std::vector<CssStop> stops = CssReader(reader).read(notes);
  reader.takes(';');
  if (!reader.atEnd()) reader.expected("the end of the text");
  placeStops(stops);
  Ramps ramps;
  GradientStops gradient;
  if (appendStops(ramps, stops)) gradient = stopsOfRamps(ramps.list, JumpColor::Behind);
  if (gradient.colors.empty() || gradient.colors.size() + gradient.opacities.size() > kMaximumStops) {
    TextReader::fail(0, "it takes more than " + std::to_string(kMaximumStops) + " stops");
  }
  noteAddedStops(notes, ramps.added, "what CSS shows");
  return gradient;
}

std::optional<std::string> cssOfGradient(const GradientStops& stops, Notes& notes, std::string* reason) {
  const auto ramps = rampsOfStops(stops, premultipliedBlend, reason);
  if (!ramps) return std::nullopt;
  std::string text = "linear-gradient(to right";
  const Ramp* before = nullptr;
  for (const Ramp& ramp : ramps->list) {
    if (!before || before->last != ramp.first) text += ", " + cssColor(ramp.first) + " " + percentText(ramp.begin);
    text += ", " + cssColor(ramp.last) + " " + percentText(ramp.end);
    before = &ramp;
  }
  noteAddedStops(notes, ramps->added, "the gradient");
  return text + ")\n";
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/GradientText.h"

#include "Host/Texts/ColorText.h"

#include <algorithm>
#include <bit>
#include <charconv>

namespace host {
namespace {

constexpr const char* kInterpolationNames[] = {"constant", "linear", "smooth"};

// What stands behind a stop's color or opacity.
struct Manner {
  std::optional<double> position;
  std::optional<double> middle;
  std::optional<std::int32_t> interpolation;
};

template <std::size_t Components>
struct Row {
  std::vector<GradientStop<Components>> stops;
  std::vector<std::optional<double>> positions;
  std::optional<std::size_t> none;  // where the row is said to have no stops

  void append(const std::array<double, Components>& value, const Manner& manner) {
    GradientStop<Components> stop;
    stop.value = value;
    if (manner.middle) stop.middle = *manner.middle;
    if (manner.interpolation) stop.interpolation = *manner.interpolation;
    stops.push_back(stop);
    positions.push_back(manner.position);
  }

  std::vector<GradientStop<Components>> finished(const char* what) {
    if (none && !stops.empty()) {
      TextReader::fail(*none, std::string("\"none\" beside other stops of the ") + what);
    }
    const std::vector<double> filled = filledPositions(positions);
    for (std::size_t i = 0; i < stops.size(); ++i) stops[i].position = filled[i];
    return std::move(stops);
  }
};

// A number of 0 to 1, or a percentage.
double readFraction(TextReader& reader, const char* what) {
  const Quantity quantity = reader.quantity(what);
  if (quantity.isPercent()) return quantity.number;
  if (!quantity.unit.empty()) {
    TextReader::fail(quantity.at, std::string("expected ") + what + ", without the unit " + quotedText(quantity.unit));
  }
  if (!(quantity.number >= 0 && quantity.number <= 1)) {
    TextReader::fail(quantity.at, std::string("expected ") + what + "; numbers beyond 0 to 1 need a %");
  }
  return quantity.number;
}

template <class Value>
void setOnce(std::optional<Value>& target, Value value, std::size_t at, const char* what) {
  if (target) TextReader::fail(at, std::string("a second ") + what + " for one stop");
  target = value;
}

std::int32_t readInterpolationCode(TextReader& reader) {
  reader.expect('(');
  const Quantity code = reader.quantity("a whole number");
  const bool isWhole = code.unit.empty() && code.number >= INT32_MIN && code.number <= INT32_MAX &&
                       code.number == static_cast<std::int32_t>(code.number);
  if (!isWhole) TextReader::fail(code.at, "expected a whole number of 32 bits");
  reader.expect(')');
  return static_cast<std::int32_t>(code.number);
}

Manner readManner(TextReader& reader) {
  Manner manner;
  while (!reader.atEnd() && reader.next() != ',') {
    const std::size_t at = reader.place();
    if (reader.nextIsNumber()) {
      setOnce(manner.position, readFraction(reader, "a position"), at, "position");
      continue;
    }
    const std::string word = lowered(reader.peekedWord());
    const auto* const named = std::ranges::find(kInterpolationNames, word);
    if (word != "middle" && word != "interpolation" && named == std::end(kInterpolationNames)) {
      reader.expected("a position, \"constant\", \"linear\", \"smooth\", \"middle\" or \",\"");
    }
    reader.word();
    if (word == "middle") {
      setOnce(manner.middle, readFraction(reader, "a middle point"), at, "middle point");
    } else {
      const auto code = word == "interpolation" ? readInterpolationCode(reader)
                                                : static_cast<std::int32_t>(named - std::begin(kInterpolationNames));
      setOnce(manner.interpolation, code, at, "interpolation");
    }
  }
  return manner;
}

class GradientReader {
 public:
  explicit GradientReader(std::string_view text) : reader_(text) {}

  GradientStops read() {
    do {
      readItem();
      if (colors_.stops.size() + opacities_.stops.size() > kMaximumStops) {
        reader_.fail(reader_.place(), "more than " + std::to_string(kMaximumStops) + " stops");
      }
    } while (reader_.takes(','));
    if (!reader_.atEnd()) reader_.expected("\",\"");
    return finished();
  }

 private:
  void readItem() {
    const std::size_t at = reader_.place();
    const std::string word = lowered(reader_.peekedWord());
    if (word == "none") {
      reader_.word();
      colors_.none = at;
    } else if (word == "opacity") {
      reader_.word();
      readOpacity(at);
    } else {
      const TextColor color = readColor(reader_, ", \"opacity\" or \"none\"");
      if (color.alpha && !alphaAt_) alphaAt_ = at;
      const Manner manner = readManner(reader_);
      colors_.append(color.rgb, manner);
      alphas_.append({color.alpha.value_or(1)}, manner);
    }
  }

  void readOpacity(std::size_t at) {
    opacityAt_ = opacityAt_.value_or(at);
    if (lowered(reader_.peekedWord()) == "none") {
      reader_.word();
      opacities_.none = at;
    } else {
      const double opacity = readFraction(reader_, "an opacity or \"none\"");
      opacities_.append({opacity}, readManner(reader_));
    }
  }

  GradientStops finished() {
    if (alphaAt_ && opacityAt_) {
      reader_.fail(std::max(*alphaAt_, *opacityAt_),
                   "colors with an alpha beside stops of the opacity: give one of both");
    }
    if (colors_.stops.empty() && !colors_.none) {
      reader_.fail(reader_.text().size(), "there is no color; a gradient without any begins with \"none\"");
    }
    GradientStops stops{colors_.finished("colors"),
                        alphaAt_ ? alphas_.finished("opacity") : opacities_.finished("opacity")};
    if (!alphaAt_ && !opacityAt_) stops.opacities = {kOpaque};
    return stops;
  }

  TextReader reader_;
  Row<3> colors_;
  Row<1> alphas_;  // of the colors, one each
  Row<1> opacities_;
  std::optional<std::size_t> alphaAt_;  // the first color with an alpha
  std::optional<std::size_t> opacityAt_;
};

template <std::size_t Components>
void noteCovered(const std::vector<GradientStop<Components>>& stops, const char* what, Notes& notes) {
  std::vector<double> positions;
  positions.reserve(stops.size());
  for (const auto& stop : stops) positions.push_back(stop.position);
  std::ranges::sort(positions);
  const auto twice = std::ranges::adjacent_find(positions);
  if (twice == positions.end()) return;
  notes.push_back(std::string("of the ") + what + " at " + percentText(*twice) +
                  " only the last counts; \"constant\" before it makes a hard edge");
}

bool isSame(const OpacityStop& a, const OpacityStop& b) {
  const auto same = [](double x, double y) {
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
  };
  return same(a.position, b.position) && same(a.middle, b.middle) && a.interpolation == b.interpolation &&
         same(a.value[0], b.value[0]);
}

template <std::size_t Components>
std::string mannerText(const GradientStop<Components>& stop) {
  std::string text;
  if (stop.interpolation == VRTGradientConstant || stop.interpolation == VRTGradientSmooth) {
    text = std::string(" ") + kInterpolationNames[stop.interpolation];
  } else if (stop.interpolation != VRTGradientLinear) {
    text = " interpolation(" + std::to_string(stop.interpolation) + ")";
  }
  text += " " + percentText(stop.position);
  if (stop.middle != 0.5) text += " middle " + percentText(stop.middle);
  return text;
}

}  // namespace

GradientStops gradientOfText(std::string_view text, Notes& notes) {
  GradientStops stops = GradientReader(text).read();
  noteCovered(stops.colors, "colors", notes);
  noteCovered(stops.opacities, "opacities", notes);
  return stops;
}

std::string textOfGradient(const GradientStops& stops, const std::string& separator) {
  std::string text = stops.colors.empty() ? "none" : "";
  for (const ColorStop& stop : stops.colors) {
    text += (text.empty() ? "" : separator) + colorText(stop.value) + mannerText(stop);
  }
  if (stops.opacities.size() == 1 && isSame(stops.opacities[0], kOpaque)) return text;
  if (stops.opacities.empty()) text += separator + "opacity none";
  for (const OpacityStop& stop : stops.opacities) {
    text += separator + "opacity " + percentText(stop.value[0]) + mannerText(stop);
  }
  return text;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/ColorPalette.h"

#include "Host/Texts/ColorText.h"
#include "Host/Texts/GradientRamps.h"
#include "Host/Texts/Hsv.h"
#include "Host/Texts/LineReader.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace host {
namespace {

using Components = std::array<double, 3>;  // 0 to 1, or hue in degrees, saturation and value

struct Slice {
  double begin = 0;
  double end = 0;
  Components first{};
  Components last{};
};

bool isOutside(std::string_view field) {
  return field == "B" || field == "F" || field == "N";
}

// The model of a comment "# COLOR_MODEL = RGB", in lower case; empty for other comments.
std::string modelOf(std::string_view comment) {
  TextReader reader(comment.substr(1));
  if (lowered(reader.peekedWord()) != "color_model") return "";
  reader.word();
  if (!reader.takes('=')) return "";
  reader.takes('+');
  return lowered(reader.word());
}

class PaletteReader {
 public:
  explicit PaletteReader(std::string_view text) : reader_(text) {}

  std::vector<Slice> read() {
    while (reader_.nextLine()) {
      if (reader_.atLineEnd() || isOutside(reader_.peekedField())) continue;
      if (reader_.line().starts_with('#')) {
        readComment();
      } else {
        readSlice();
      }
    }
    if (slices_.empty()) reader_.expected("a slice \"z0 color z1 color\"");
    return std::move(slices_);
  }

  bool isHsv() const { return isHsv_; }

 private:
  void readComment() {
    const std::string model = modelOf(reader_.line());
    if (model.empty() || model == "rgb") return;
    if (model != "hsv")
      reader_.fail(reader_.place(), "the color model " + quotedText(model) + ": RGB and HSV are read");
    if (!slices_.empty()) reader_.fail(reader_.place(), "a color model behind slices");
    isHsv_ = true;
  }

  void readSlice() {
    const std::size_t at = reader_.place();
    const bool isWide = fieldsOfSlice() == 8;
    Slice slice;
    slice.begin = reader_.number("the value at which a slice begins");
    slice.first = readColor(isWide);
    reader_.atLineEnd();
    const std::size_t endAt = reader_.place();
    slice.end = reader_.number("the value at which the slice ends");
    slice.last = readColor(isWide);
    if (!(slice.end > slice.begin)) LineReader::fail(endAt, "the slice does not end above where it begins");
    if (!slices_.empty() && slice.begin != slices_.back().end) {
      LineReader::fail(at, "the slice does not begin where the one before it ends");
    }
    if (slices_.size() == kMaximumStops) LineReader::fail(at, "more than " + std::to_string(kMaximumStops) + " slices");
    slices_.push_back(slice);
  }

  // Without the letter that says where values are written, and without a label behind ";".
  std::size_t fieldsOfSlice() {
    LineReader ahead = reader_;
    std::size_t count = 0;
    std::string_view last;
    while (!ahead.atLineEnd() && !ahead.peekedField().starts_with(';')) {
      last = ahead.field();
      ++count;
    }
    if (last == "L" || last == "U" || last == "B") --count;
    if (count == 4 || count == 8) return count;
    LineReader::fail(reader_.place(),
                     "expected a slice of 4 or 8 fields, \"z0 color z1 color\", not of " + std::to_string(count));
  }

  double readComponent(std::size_t index) {
    reader_.atLineEnd();
    const std::size_t at = reader_.place();
    return checked(reader_.number("a component of a color"), index, at);
  }

  // Hues in degrees; all others as 0 to 1.
  double checked(double number, std::size_t index, std::size_t at) const {
    const double most = !isHsv_ ? 255 : index == 0 ? 360 : 1;
    if (!(number >= 0 && number <= most)) {
      LineReader::fail(at, "expected a component of 0 to " + std::to_string(static_cast<int>(most)));
    }
    return isHsv_ ? number : number / 255;
  }

  Components readColor(bool isWide) {
    if (isWide) {
      const double first = readComponent(0);
      const double second = readComponent(1);
      return {first, second, readComponent(2)};
    }
    TextReader text = reader_.fieldReader();
    return text.nextIsNumber() ? numbersOf(text) : namedOf(text);
  }

  // "r/g/b", "h-s-v", or one number for a gray.
  Components numbersOf(TextReader& text) const {
    const auto component = [&] {
      const Quantity quantity = text.quantity("a component of a color");
      if (!quantity.unit.empty()) TextReader::fail(quantity.at, "expected a number without a unit");
      return quantity;
    };
    const Quantity first = component();
    if (text.atEnd()) return grayOf(first);
    Components color{checked(first.number, 0, first.at), 0, 0};
    for (std::size_t i = 1; i < 3; ++i) {
      text.expect(isHsv_ ? '-' : '/');
      const Quantity next = component();
      color[i] = checked(next.number, i, next.at);
    }
    if (!text.atEnd()) text.expected("the end of the color");
    return color;
  }

  Components grayOf(const Quantity& quantity) const {
    if (!(quantity.number >= 0 && quantity.number <= 255)) TextReader::fail(quantity.at, "expected a gray of 0 to 255");
    const double gray = quantity.number / 255;
    return isHsv_ ? Components{0, 0, gray} : Components{gray, gray, gray};
  }

  Components namedOf(TextReader& text) const {
    const TextColor color = opaqueColor(text);
    if (!isHsv_) return color.rgb;
    const Hsv hsv = hsvOfRgb(color.rgb);
    return {360 * hsv.hue, hsv.saturation, hsv.value};
  }

  static TextColor opaqueColor(TextReader& text) {
    const std::size_t at = text.place();
    TextColor color = host::readColor(text);
    if (color.alpha) TextReader::fail(at, "a color with an alpha, where none is known");
    if (!text.atEnd()) text.expected("the end of the color");
    return color;
  }

  LineReader reader_;
  std::vector<Slice> slices_;
  bool isHsv_ = false;
};

Rgba colorOf(const Components& components, bool isHsv) {
  const auto rgb = isHsv ? rgbOfHsv({components[0] / 360, components[1], components[2]}) : components;
  return {rgb[0], rgb[1], rgb[2], 1};
}

bool appendSlice(Ramps& ramps, const Slice& slice, double begin, double end, bool isHsv) {
  if (!isHsv || slice.first == slice.last) {
    appendRamp(ramps, {begin, end, colorOf(slice.first, isHsv), colorOf(slice.last, isHsv)});
    return true;
  }
  const auto curve = [&](double t) {
    Components between;
    for (std::size_t i = 0; i < 3; ++i) between[i] = slice.first[i] + t * (slice.last[i] - slice.first[i]);
    return colorOf(between, true);
  };
  return appendCurve(ramps, begin, end, curve);
}

bool appendSlices(Ramps& ramps, const std::vector<Slice>& slices, bool isHsv) {
  const double least = slices.front().begin;
  const double range = slices.back().end - least;
  const auto position = [&](double value) { return value == slices.back().end ? 1.0 : (value - least) / range; };
  for (const Slice& slice : slices) {
    if (!appendSlice(ramps, slice, position(slice.begin), position(slice.end), isHsv)) return false;
  }
  return std::isfinite(range);
}

}  // namespace

bool looksLikePalette(std::string_view text) {
  LineReader reader(text);
  while (reader.nextLine()) {
    if (reader.atLineEnd() || reader.line().starts_with('#')) continue;
    const std::string_view first = reader.field();
    if (reader.atLineEnd()) return false;
    if (isOutside(first)) return true;
    TextReader number(first);
    try {  // "/*" begins a comment, of other texts
      return number.nextIsNumber() && number.quantity("a number").unit.empty() && number.atEnd();
    } catch (const TextFault&) {
      return false;
    }
  }
  return false;
}

GradientStops gradientOfPalette(std::string_view text, Notes& notes) {
  PaletteReader reader(text);
  const std::vector<Slice> slices = reader.read();
  Ramps ramps;
  if (!appendSlices(ramps, slices, reader.isHsv())) ramps.list.clear();
  GradientStops stops;
  if (!ramps.list.empty()) stops = stopsOfRamps(ramps.list, JumpColor::Behind);
  if (stops.colors.empty() || stops.colors.size() > kMaximumStops) {
    throw TextFault(0,
                    "it takes more than " + std::to_string(kMaximumStops) + " stops, or its range is none of numbers");
  }
  noteAddedStops(notes, ramps.added, "the file's palette");
  return stops;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/GimpGradient.h"

#include "Host/Messages/Json.h"
#include "Host/Texts/GimpSegment.h"
#include "Host/Texts/LineReader.h"

#include <cmath>

namespace host {
namespace {

constexpr std::string_view kHeader = "GIMP Gradient";
constexpr double kPositionSlack = 1e-5;  // ten of the last of the six digits that positions are written with

std::size_t wholeNumber(LineReader& reader, double most, const char* what) {
  reader.atLineEnd();
  const std::size_t at = reader.place();
  const double number = reader.number(what);
  if (!(number >= 0 && number <= most && number == std::floor(number))) {
    LineReader::fail(at, std::string("expected ") + what + ", not " + quotedText(numberText(number)));
  }
  return static_cast<std::size_t>(number);
}

class GimpReader {
 public:
  GimpReader(std::string_view text, Notes& notes) : reader_(text), notes_(notes) {}

  std::vector<GimpSegment> read() {
    reader_.nextLine();
    if (reader_.line() != kHeader) reader_.expected("\"GIMP Gradient\" alone on the first line");
    needLine("the number of segments");
    if (reader_.line().starts_with("Name:")) needLine("the number of segments");
    const std::size_t count = wholeNumber(reader_, kMaximumStops, "the number of segments, 1 to 65536");
    if (count == 0 || !reader_.atLineEnd()) reader_.expected("the number of segments, 1 to 65536, alone on its line");
    std::vector<GimpSegment> segments;
    while (segments.size() < count) {
      needLine("another segment");
      const std::size_t at = reader_.place();
      segments.push_back(readSegment());
      join(segments, at, segments.size() == count);
    }
    while (reader_.nextLine()) {
      if (!reader_.atLineEnd()) reader_.expected("nothing behind the last segment");
    }
    if (hasPalette_) notes_.push_back("the colors of its program's palette were taken as black in front, white behind");
    return segments;
  }

 private:
  void needLine(const char* what) {
    if (!reader_.nextLine()) reader_.expected(what);
  }

  Rgba readColor() {
    Rgba color;
    for (double& component : color) {
      reader_.atLineEnd();
      const std::size_t at = reader_.place();
      component = reader_.number("a component of 0 to 1");
      if (!(component >= 0 && component <= 1)) LineReader::fail(at, "expected a component of 0 to 1");
    }
    return color;
  }

  // 0 the color itself, 1 and 2 the palette's in front, 3 and 4 the one behind; 2 and 4 without alpha.
  void readColorType(Rgba& color) {
    if (reader_.atLineEnd()) return;
    const std::size_t type = wholeNumber(reader_, 4, "a color type of 0 to 4");
    if (type == 0) return;
    hasPalette_ = true;
    const double gray = type >= 3 ? 1 : 0;
    color = {gray, gray, gray, type % 2 == 0 ? 0.0 : 1.0};
  }

  GimpSegment readSegment() {
    GimpSegment segment;
    reader_.atLineEnd();
    const std::size_t at = reader_.place();
    segment.left = reader_.number("the left end of a segment");
    segment.middle = reader_.number("the middle of the segment");
    segment.right = reader_.number("the right end of the segment");
    if (!(segment.left <= segment.middle && segment.middle <= segment.right)) {
      LineReader::fail(at, "left end, middle and right end are not in this order");
    }
    segment.leftColor = readColor();
    segment.rightColor = readColor();
    segment.blending =
        static_cast<GimpSegment::Blending>(wholeNumber(reader_, GimpSegment::Step, "a blending of 0 to 5"));
    segment.coloring = static_cast<GimpSegment::Coloring>(
        wholeNumber(reader_, GimpSegment::HsvClockwise, "a coloring of 0 (RGB), 1 or 2 (HSV)"));
    readColorType(segment.leftColor);
    readColorType(segment.rightColor);
    if (!reader_.atLineEnd()) reader_.expected("the end of the line");
    return segment;
  }

  // Brings the ends of neighbors together.
  static void join(std::vector<GimpSegment>& segments, std::size_t at, bool isLast) {
    GimpSegment& segment = segments.back();
    const double before = segments.size() == 1 ? 0 : segments[segments.size() - 2].right;
    if (!(std::abs(segment.left - before) <= kPositionSlack)) {
      LineReader::fail(at, "the segment does not begin where the one before it ends, at " + numberText(before));
    }
    segment.left = before;
    if (isLast && !(std::abs(segment.right - 1) <= kPositionSlack)) {
      LineReader::fail(at, "the last segment does not end at 1");
    }
    if (isLast) segment.right = 1;
    if (segment.right < segment.left) segment.right = segment.left;
    segment.middle = std::min(std::max(segment.middle, segment.left), segment.right);
  }

  LineReader reader_;
  Notes& notes_;
  bool hasPalette_ = false;
};

}  // namespace

bool looksLikeGimp(std::string_view text) {
  return text.starts_with(kHeader);
}

GradientStops gradientOfGimp(std::string_view text, Notes& notes) {
  const std::vector<GimpSegment> segments = GimpReader(text, notes).read();
  Ramps ramps;
  for (const GimpSegment& segment : segments) {
    if (!appendSegment(ramps, segment)) ramps.list.clear();
    if (ramps.list.empty() && segment.right > segment.left) break;
  }
  GradientStops stops;
  if (!ramps.list.empty()) stops = stopsOfRamps(ramps.list, JumpColor::Before);
  if (stops.colors.empty() || stops.colors.size() + stops.opacities.size() > kMaximumStops) {
    throw TextFault(0, "it takes more than " + std::to_string(kMaximumStops) + " stops");
  }
  noteAddedStops(notes, ramps.added, "the file's gradient");
  return stops;
}

std::optional<std::string> gimpOfGradient(const GradientStops& stops, Notes& notes, std::string* reason) {
  const auto ramps = rampsOfStops(stops, straightBlend, reason);
  if (!ramps) return std::nullopt;
  std::string text = std::string(kHeader) + "\nName: Vorto\n" + std::to_string(ramps->list.size()) + "\n";
  for (const Ramp& ramp : ramps->list) {
    text += numberText(ramp.begin) + " " + numberText(ramp.begin + (ramp.end - ramp.begin) / 2) + " " +
            numberText(ramp.end);
    for (const Rgba& color : {ramp.first, ramp.last}) {
      for (const double component : color) text += " " + numberText(component);
    }
    text += " 0 0 0 0\n";
  }
  noteAddedStops(notes, ramps->added, "the gradient");
  return text;
}

}  // namespace host

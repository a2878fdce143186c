// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Framing.h"

#include "TarnCore/TCBitmap.h"

#include <charconv>
#include <cmath>

namespace host {
namespace {

struct Anchor {
  const char* name;
  double left;
  double top;
};

constexpr Anchor kAnchors[] = {
    {"center", 0.5, 0.5}, {"top-left", 0, 0},    {"top", 0.5, 0},    {"top-right", 1, 0},    {"left", 0, 0.5},
    {"right", 1, 0.5},    {"bottom-left", 0, 1}, {"bottom", 0.5, 1}, {"bottom-right", 1, 1},
};

std::optional<std::int64_t> parsedOffset(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  std::int32_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return number;
}

BitmapRef placed(const BitmapRef& bitmap, const PictureSize& canvas, const Place& place, ScalingFilter filter) {
  if (place.fit) return scaledBitmap(bitmap, canvas, {filter, *place.fit});
  if (place.offset) return placedBitmap(bitmap, canvas, *place.offset);
  const auto share = [](std::uint32_t whole, std::uint32_t part, double at) {
    return static_cast<std::int64_t>(std::floor((static_cast<double>(whole) - part) * at));
  };
  return placedBitmap(
      bitmap, canvas,
      {share(canvas.width, bitmap->width, place.left), share(canvas.height, bitmap->height, place.top)});
}

}  // namespace

std::optional<Place> placeNamed(const std::string& name) {
  for (const Anchor& anchor : kAnchors) {
    if (name == anchor.name) return Place{anchor.left, anchor.top, {}, {}};
  }
  Place place;
  place.fit = scalingFitNamed(name);
  if (place.fit) return place;
  const std::size_t comma = name.find(',');
  if (comma == std::string::npos) return std::nullopt;
  const auto x = parsedOffset(std::string_view(name).substr(0, comma));
  const auto y = parsedOffset(std::string_view(name).substr(comma + 1));
  if (!x || !y) return std::nullopt;
  place.offset = Placement{*x, *y};
  return place;
}

std::vector<BitmapRef> onOneCanvas(std::vector<BitmapRef> inputs, const Framing& framing) {
  if (inputs.size() < 2) return inputs;
  if (framing.size) inputs[0] = scaledBitmap(inputs[0], *framing.size, framing.scaling);
  const PictureSize canvas{inputs[0]->width, inputs[0]->height};
  for (std::size_t i = 1; i < inputs.size(); ++i) {
    const bool isScaled = framing.size && !framing.place;
    inputs[i] = isScaled ? scaledBitmap(inputs[i], canvas, framing.scaling)
                         : placed(inputs[i], canvas, framing.place.value_or(Place()), framing.scaling.filter);
  }
  return inputs;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/GradientRamps.h"

#include <cmath>
#include <limits>

namespace host {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A ramp of the color alone, or of the opacity alone.
template <std::size_t Components>
struct Part {
  double begin = 0;
  double end = 0;
  std::array<double, Components> first{};
  std::array<double, Components> last{};
  bool isFlat() const { return first == last; }
};

template <std::size_t Components>
std::vector<Part<Components>> partsOf(const std::vector<Ramp>& ramps, std::size_t component) {
  std::vector<Part<Components>> parts;
  for (const Ramp& ramp : ramps) {
    Part<Components> part{ramp.begin, ramp.end};
    for (std::size_t i = 0; i < Components; ++i) {
      part.first[i] = ramp.first[component + i];
      part.last[i] = ramp.last[component + i];
    }
    // Flat parts of one value are one part.
    if (!parts.empty() && part.isFlat() && parts.back().isFlat() && parts.back().last == part.first) {
      parts.back().end = part.end;
    } else {
      parts.push_back(part);
    }
  }
  return parts;
}

// What holds before the first stop and behind the last one needs no other.
template <std::size_t Components>
void trimEnds(std::vector<GradientStop<Components>>& stops) {
  while (stops.size() > 1 && stops[stops.size() - 2].value == stops.back().value) stops.pop_back();
  std::size_t same = 0;
  while (same + 1 < stops.size() && stops[same + 1].value == stops[0].value) ++same;
  stops.erase(stops.begin(), stops.begin() + static_cast<std::ptrdiff_t>(same));
}

template <std::size_t Components>
std::vector<GradientStop<Components>> stopsOf(const std::vector<Part<Components>>& parts, JumpColor jumps) {
  std::vector<GradientStop<Components>> stops;
  const auto append = [&](double position, const std::array<double, Components>& value, std::int32_t kind) {
    stops.push_back({position, 0.5, kind, value});
  };
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const auto& part = parts[i];
    const bool begins = i > 0 && parts[i - 1].last != part.first;
    const bool ends = i + 1 < parts.size() && part.last != parts[i + 1].first;
    const std::int32_t kind = part.isFlat() && ends ? VRTGradientConstant : VRTGradientLinear;
    double position = part.begin;
    if (begins) {
      // The last position of the color before the jump. A constant part needs no stop there: what is at a stop belongs
      // to the segment on its left.
      const double before = jumps == JumpColor::Before ? part.begin : std::nextafter(part.begin, -kInfinity);
      position = before;
      if (!parts[i - 1].isFlat()) {
        append(before, parts[i - 1].last, VRTGradientLinear);
        position = std::nextafter(before, kInfinity);
      }
    }
    append(position, part.first, kind);
    if (i + 1 == parts.size() && !part.isFlat()) append(part.end, part.last, VRTGradientLinear);
  }
  trimEnds(stops);
  return stops;
}

}  // namespace

GradientStops stopsOfRamps(const std::vector<Ramp>& ramps, JumpColor jumps) {
  GradientStops stops{stopsOf(partsOf<3>(ramps, 0), jumps), stopsOf(partsOf<1>(ramps, 3), jumps)};
  if (stops.opacities.size() == 1) {
    const double opacity = stops.opacities[0].value[0];
    stops.opacities[0] = kOpaque;
    stops.opacities[0].value[0] = opacity;
  }
  return stops;
}

}  // namespace host

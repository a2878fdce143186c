// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/GradientStops.h"

#include "Ports/VRTStateKeys.h"

namespace host {
namespace {

template <std::size_t Components>
PropertyList samplesOf(const std::vector<GradientStop<Components>>& stops) {
  PropertyList::Array numbers;
  numbers.reserve(stops.size() * (3 + Components));
  for (const auto& stop : stops) {
    numbers.push_back(PropertyList::real(stop.position));
    numbers.push_back(PropertyList::real(stop.middle));
    numbers.push_back(PropertyList::integer(stop.interpolation));
    for (const double component : stop.value) numbers.push_back(PropertyList::real(component));
  }
  return PropertyList::array(std::move(numbers));
}

template <std::size_t Components>
std::vector<GradientStop<Components>> stopsOf(const PropertyList* samples) {
  std::vector<GradientStop<Components>> stops;
  constexpr std::size_t each = 3 + Components;
  const std::size_t count = samples ? samples->items().size() : 0;
  for (std::size_t first = 0; first + each <= count; first += each) {
    const PropertyList* numbers = &samples->items()[first];
    GradientStop<Components> stop;
    stop.position = numbers[VRTStateKeys::kPosition].doubleValue();
    stop.middle = numbers[VRTStateKeys::kMiddle].doubleValue();
    stop.interpolation = numbers[VRTStateKeys::kInterpolation].intValue();
    for (std::size_t i = 0; i < Components; ++i) stop.value[i] = numbers[VRTStateKeys::kRed + i].doubleValue();
    stops.push_back(stop);
  }
  return stops;
}

}  // namespace

PropertyList stateOfStops(const GradientStops& stops) {
  PropertyList state;
  state.set(VRTStateKeys::kRGBSamples.key, samplesOf(stops.colors));
  state.set(VRTStateKeys::kAlphaSamples.key, samplesOf(stops.opacities));
  return state;
}

GradientStops stopsOfState(const PropertyList& state) {
  return {stopsOf<3>(state.find(VRTStateKeys::kRGBSamples.key)),
          stopsOf<1>(state.find(VRTStateKeys::kAlphaSamples.key))};
}

std::vector<double> filledPositions(std::vector<std::optional<double>> positions) {
  if (positions.empty()) return {};
  if (!positions.front()) positions.front() = 0;
  if (!positions.back()) positions.back() = 1;
  std::vector<double> filled;
  for (std::size_t i = 0; i < positions.size();) {
    const double left = *positions[i];
    filled.push_back(left);
    std::size_t next = i + 1;
    while (next < positions.size() && !positions[next]) ++next;
    for (std::size_t k = i + 1; k < next; ++k) {
      filled.push_back(left + (*positions[next] - left) * static_cast<double>(k - i) / static_cast<double>(next - i));
    }
    i = next;
  }
  return filled;
}

}  // namespace host

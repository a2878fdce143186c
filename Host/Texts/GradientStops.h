// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelGradientSample.h"
#include "Platform/Foundation/PropertyList.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace host {

// One sample of a gradient: what VRTChannelGradientSample holds, with the components of its color or its opacity.
template <std::size_t Components>
struct GradientStop {
  double position = 0;
  double middle = 0.5;
  std::int32_t interpolation = VRTGradientLinear;
  std::array<double, Components> value{};
};
using ColorStop = GradientStop<3>;
using OpacityStop = GradientStop<1>;

// A gradient as plain numbers: all that its state holds, in that order.
struct GradientStops {
  std::vector<ColorStop> colors;
  std::vector<OpacityStop> opacities;
};

// What every new gradient has for its opacity: 1 from 0 on.
inline constexpr OpacityStop kOpaque{0, 0.5, VRTGradientSmooth, {1}};

// The most stops that a text may come to, those included that a conversion adds.
inline constexpr std::size_t kMaximumStops = 65536;

PropertyList stateOfStops(const GradientStops& stops);
GradientStops stopsOfState(const PropertyList& state);  // of a state that a gradient gave

// Positions for those that have none: 0 for the first, 1 for the last, evenly spaced in between.
std::vector<double> filledPositions(std::vector<std::optional<double>> positions);

}  // namespace host

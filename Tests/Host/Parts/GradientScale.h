// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelGradient.h"
#include "Host/Texts/GradientStops.h"
#include "Ports/VRTObjects.h"
#include "TarnCore/TCColor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

using Straight = std::array<double, 4>;  // red, green, blue, alpha

// What a gradient of these stops is at a position, by the framework's own evaluation.
class Scale {
 public:
  explicit Scale(const host::GradientStops& stops) {
    EXPECT_TRUE(gradient_.initWithStateValue(host::stateOfStops(stops)));
    gradient_.kxChannelGradient()->rgbFolder.getLookup(0, colors_);
    gradient_.kxChannelGradient()->alphaFolder.getLookup(0, opacities_);
  }

  Straight at(double position) const {
    Straight color{};
    gradient_.kxChannelGradient()->rgbFolder.getRGBAFromLookup(position, color.data(), colors_);
    gradient_.kxChannelGradient()->alphaFolder.getRGBAFromLookup(position, color.data(), opacities_);
    return color;
  }

 private:
  VRTGradient gradient_;
  VRTGradientLookup colors_;
  VRTGradientLookup opacities_;
};

// 0 to 1 in small steps, each given position, and the numbers on both sides of it.
inline std::vector<double> positionsAround(const std::vector<double>& places) {
  std::vector<double> positions;
  for (int i = 0; i <= 10007; ++i) positions.push_back(i / 10007.0);
  for (const double place : places) {
    for (double reach = 1e-3; reach > 1e-16; reach /= 7) {
      positions.push_back(place - reach);
      positions.push_back(place + reach);
    }
    positions.insert(positions.end(), {place, std::nextafter(place, 2.0), std::nextafter(place, -1.0)});
  }
  std::erase_if(positions, [](double position) { return !(position >= 0 && position <= 1); });
  return positions;
}

// The largest difference of a component; colors without alpha are all the same.
template <class First, class Second>
double largestDifference(First first, Second second, const std::vector<double>& positions) {
  double largest = 0;
  for (const double position : positions) {
    const Straight a = first(position);
    const Straight b = second(position);
    for (std::size_t i = a[3] == 0 || b[3] == 0 ? 3 : 0; i < 4; ++i) {
      const double difference = std::abs(a[i] - b[i]);
      if (!(difference <= 1 / 255.0))
        ADD_FAILURE() << "component " << i << " at " << position << ": " << a[i] << ", " << b[i];
      largest = std::max(largest, difference);
    }
    if (testing::Test::HasFailure()) break;
  }
  return largest;
}

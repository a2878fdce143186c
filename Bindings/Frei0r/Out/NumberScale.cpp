// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/NumberScale.h"

#include "Host/Messages/Json.h"

#include <algorithm>
#include <cmath>

namespace frei0r {
namespace {

using host::numberText;

constexpr double kMost = 1e9;
constexpr double kDigits = 1e12;

double openValue(double share) {
  return share < 1 ? std::min(share / (1 - share), kMost) : kMost;
}

double openShare(double value) {
  return value > 0 ? value / (1 + value) : 0;
}

// To twelve digits of a power of ten that is not below the size.
double rounded(double value, double size) {
  if (!(size > 0) || !std::isfinite(size)) return value;
  const double step = kDigits / std::pow(10, std::ceil(std::log10(size)));
  const double steps = std::round(value * step) / step;
  return std::isfinite(steps) ? steps : value;
}

}  // namespace

double NumberScale::value(double share) const {
  share = std::clamp(share, 0.0, 1.0);
  const auto [minimum, maximum] = range_;
  if (minimum && maximum) {
    if (share == 0 || !(*maximum > *minimum)) return *minimum;
    if (share == 1) return *maximum;
    const double size = std::max(std::abs(*minimum), std::abs(*maximum));
    // Halves apart, as the difference of two ends may be too large.
    const double value = rounded(*minimum * (1 - share) + *maximum * share, size);
    return std::clamp(value, *minimum, *maximum);
  }
  if (minimum || maximum) {
    const double distance = rounded(openValue(share), openValue(share));
    return minimum ? *minimum + distance : *maximum - distance;
  }
  const double size = openValue(std::abs(2 * share - 1));
  return std::copysign(rounded(size, size), share - 0.5);
}

double NumberScale::share(double value) const {
  const auto [minimum, maximum] = range_;
  if (std::isnan(value)) return 0;
  if (minimum && maximum) {
    if (!(*maximum > *minimum)) return 0;
    const double half = *maximum / 2 - *minimum / 2;
    return std::clamp((value / 2 - *minimum / 2) / half, 0.0, 1.0);
  }
  if (minimum) return openShare(value - *minimum);
  if (maximum) return openShare(*maximum - value);
  return 0.5 + std::copysign(openShare(std::abs(value)) / 2, value);
}

std::string NumberScale::explanation() const {
  const auto [minimum, maximum] = range_;
  if (minimum && maximum) {
    if (*minimum == 0 && *maximum == 1) return "0 to 1";
    return "0 to 1 stand for " + numberText(*minimum) + " to " + numberText(*maximum);
  }
  if (minimum) return "p stands for " + numberText(*minimum) + " + p / (1 - p)";
  if (maximum) return "p stands for " + numberText(*maximum) + " - p / (1 - p)";
  return "0.5 stands for 0; v of 0 and more is 0.5 + v / (2 + 2 v), negative ones the same below 0.5";
}

}  // namespace frei0r

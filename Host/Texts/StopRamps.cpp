// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/GradientRamps.h"

#include "Channels/VRTChannelGradient.h"
#include "Host/Messages/Json.h"
#include "Host/Texts/TextReader.h"
#include "Platform/Foundation/NSReason.h"
#include "Ports/VRTObjects.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

template <std::size_t Components>
std::string faultOf(const std::vector<GradientStop<Components>>& stops, const char* what) {
  if (stops.empty()) return std::string("it has no ") + what;
  for (const auto& stop : stops) {
    const std::string where = std::string("the sample of its ") + what + " at " + percentText(stop.position);
    if (stop.interpolation < VRTGradientConstant || stop.interpolation > VRTGradientSmooth) {
      return where + " has the unknown interpolation " + std::to_string(stop.interpolation);
    }
    for (const double value : stop.value) {
      if (!(value >= 0 && value <= 1)) return where + " has the value " + numberText(value) + ", beyond 0 to 1";
    }
  }
  return "";
}

// One half of a gradient between two positions, neither of which has a sample in between. Evaluation counts a position
// at a sample to the segment on its left; here the first position belongs to the segment on its right.
template <class Folder>
class Half {
 public:
  explicit Half(const Folder& folder) : folder_(folder) { folder.getLookup(0, lookup_); }

  void addPositions(std::vector<double>& positions) const {
    for (const auto& entry : lookup_) positions.push_back(entry.position);
  }

  // Writes its components of red, green, blue and alpha.
  void evaluate(double position, bool isFirst, double* rgba) const {
    const auto* entry = std::lower_bound(lookup_.begin(), lookup_.end(), position,
                                         [](const auto& each, double value) { return each.position < value; });
    const bool isSample = entry != lookup_.end() && entry->position == position;
    // The end of a segment that leads to a sample is that sample, without rounding.
    const bool isReached =
        isSample && entry != lookup_.begin() && (entry - 1)->sample.interpolation != VRTGradientConstant;
    if (!isSample || !(isFirst || isReached)) {
      folder_.getRGBAFromLookup(position, rgba, lookup_);
    } else if constexpr (std::is_same_v<Folder, VRTChannelGradientRGBFolder>) {
      rgba[0] = entry->sample.red;
      rgba[1] = entry->sample.green;
      rgba[2] = entry->sample.blue;
    } else {
      rgba[3] = entry->sample.alpha;
    }
  }

 private:
  const Folder& folder_;
  VRTGradientLookup lookup_;
};

// Where samples are: one position, or several so near to one another that the gradient jumps there.
struct Break {
  double low = 0;
  double high = 0;
};

constexpr double kJumpWidth = 1e-12;

// From 0 to 1, these included.
std::vector<Break> breaksOf(const Half<VRTChannelGradientRGBFolder>& colors,
                            const Half<VRTChannelGradientAlphaFolder>& opacities) {
  std::vector<double> positions{0, 1};
  colors.addPositions(positions);
  opacities.addPositions(positions);
  std::erase_if(positions, [](double position) { return !(position >= 0 && position <= 1); });
  std::ranges::sort(positions);
  std::vector<Break> breaks;
  for (const double position : positions) {
    if (!breaks.empty() && position - breaks.back().high <= kJumpWidth) {
      breaks.back().high = position;
    } else {
      breaks.push_back({position, position});
    }
  }
  return breaks;
}

}  // namespace

std::optional<Ramps> rampsOfStops(const GradientStops& stops, Blend blend, std::string* reason) {
  std::string fault = faultOf(stops.colors, "colors");
  if (fault.empty()) fault = faultOf(stops.opacities, "opacities");
  VRTGradient gradient;
  if (!fault.empty() || !gradient.initWithStateValue(stateOfStops(stops), &fault)) {
    NSRefuse(reason, fault);
    return std::nullopt;
  }
  const Half colors(gradient.kxChannelGradient()->rgbFolder);
  const Half opacities(gradient.kxChannelGradient()->alphaFolder);
  const std::vector<Break> breaks = breaksOf(colors, opacities);
  Ramps ramps;
  for (std::size_t i = 0; i + 1 < breaks.size(); ++i) {
    const double begin = breaks[i].high;
    const double end = breaks[i + 1].low;
    const Curve curve = [&](double t) {
      const double position = t >= 1 ? end : begin + t * (end - begin);
      Rgba color{};
      colors.evaluate(position, t == 0, color.data());
      opacities.evaluate(position, t == 0, color.data());
      for (double& component : color) component = std::clamp(component, 0.0, 1.0);  // beyond only by rounding
      return color;
    };
    if (!appendCurve(ramps, begin, end, curve, blend)) {
      NSRefuse(reason, "it takes more than " + std::to_string(kMaximumStops) + " stops");
      return std::nullopt;
    }
    ramps.list.back().end = breaks[i + 1].high;
  }
  ramps.list.front().begin = 0;
  return ramps;
}

}  // namespace host

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
    if (!isFirst || entry == lookup_.end() || entry->position != position) {
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

std::vector<double> breaksOf(const Half<VRTChannelGradientRGBFolder>& colors,
                             const Half<VRTChannelGradientAlphaFolder>& opacities) {
  std::vector<double> breaks{0, 1};
  colors.addPositions(breaks);
  opacities.addPositions(breaks);
  std::erase_if(breaks, [](double position) { return !(position >= 0 && position <= 1); });
  std::ranges::sort(breaks);
  breaks.erase(std::unique(breaks.begin(), breaks.end()), breaks.end());
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
  const std::vector<double> breaks = breaksOf(colors, opacities);
  Ramps ramps;
  for (std::size_t i = 0; i + 1 < breaks.size(); ++i) {
    const Curve curve = [&](double t) {
      const double position = t >= 1 ? breaks[i + 1] : breaks[i] + t * (breaks[i + 1] - breaks[i]);
      Rgba color{};
      colors.evaluate(position, t == 0, color.data());
      opacities.evaluate(position, t == 0, color.data());
      return color;
    };
    if (appendCurve(ramps, breaks[i], breaks[i + 1], curve, blend)) continue;
    NSRefuse(reason, "it takes more than " + std::to_string(kMaximumStops) + " stops");
    return std::nullopt;
  }
  return ramps;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientSuccession.h"

#include "Channels/VRTChannelGradientFolder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <vector>

namespace {

using Samples = std::vector<VRTChannelGradientSample*>;
using Bits = std::array<std::uint64_t, 3>;

Samples samplesOf(const VRTChannelGradientFolder& folder) {
  Samples samples;
  for (VRTChannelBase* child : folder.getDescendants()) {
    if (auto* sample = dynamic_cast<VRTChannelGradientSample*>(child)) samples.push_back(sample);
  }
  return samples;
}

Bits bitsOf(double a, double b, double c) {
  return {std::bit_cast<std::uint64_t>(a), std::bit_cast<std::uint64_t>(b), std::bit_cast<std::uint64_t>(c)};
}

Bits colorOf(const VRTChannelGradientSample& sample) {
  if (const auto* color = dynamic_cast<const VRTChannelGradientSampleRGB*>(&sample)) {
    return bitsOf(color->red, color->green, color->blue);
  }
  const auto* opacity = dynamic_cast<const VRTChannelGradientSampleAlpha*>(&sample);
  return bitsOf(opacity ? opacity->alpha : 0, 0, 0);
}

// Everything about a sample but its name and id.
std::array<Bits, 2> lookOf(const VRTChannelGradientSample& sample) {
  return {colorOf(sample), bitsOf(sample.position, sample.middle, sample.interpolation)};
}

template <class Fits>
VRTChannelGradientSample* nearest(const Samples& samples, std::ptrdiff_t place, const Fits& fits) {
  VRTChannelGradientSample* found = nullptr;
  std::ptrdiff_t distance = 0;
  for (std::ptrdiff_t i = 0; i < std::ssize(samples); ++i) {
    VRTChannelGradientSample* sample = samples[static_cast<std::size_t>(i)];
    if ((found && std::abs(i - place) >= distance) || !fits(*sample)) continue;
    found = sample;
    distance = std::abs(i - place);
  }
  return found;
}

}  // namespace

VRTChannelGradientSample* VRTSuccessorOfSample(const VRTChannelGradientSample& sample,
                                               const VRTChannelGradientFolder& before,
                                               const VRTChannelGradientFolder& after) {
  const Samples old = samplesOf(before), fresh = samplesOf(after);
  const auto place = std::find(old.begin(), old.end(), &sample) - old.begin();
  if (place == std::ssize(old)) return nullptr;
  const auto isEqual = [look = lookOf(sample)](const auto& other) { return lookOf(other) == look; };
  if (VRTChannelGradientSample* equal = nearest(fresh, place, isEqual)) return equal;
  if (old.size() != fresh.size()) return nullptr;
  std::set<std::array<Bits, 2>> known;
  for (const VRTChannelGradientSample* each : old) known.insert(lookOf(*each));
  const auto hasChanged = [&](const auto& other) { return !known.contains(lookOf(other)); };
  const auto hasMoved = [&](const auto& other) { return colorOf(other) == colorOf(sample) && hasChanged(other); };
  VRTChannelGradientSample* moved = nearest(fresh, place, hasMoved);
  return moved ? moved : nearest(fresh, place, hasChanged);
}

bool VRTHoldEqualSamples(const VRTChannelGradientFolder& one, const VRTChannelGradientFolder& other) {
  const Samples first = samplesOf(one), second = samplesOf(other);
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [](const auto* a, const auto* b) { return lookOf(*a) == lookOf(*b); });
}

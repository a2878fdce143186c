// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradientFolder.h"

#include "Channels/kernels/GradientDefinition.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <typeinfo>
#include <utility>

namespace {

using vorto::kernels::evaluateGradient;
using vorto::kernels::GradientEntries;
using vorto::kernels::gradientFloat;
using vorto::kernels::kColorComponents;
using vorto::kernels::kOpacityComponents;
using Lookup = VRTChannelGradientFolder::Lookup;
using Children = std::vector<VRTChannelBase*>;
// Of samples at the same position the last child.
using SampleMap = std::map<double, VRTChannelGradientSample*, VRTGradientPositionLess>;

// Null for null and for channels of another class. The exact class is by far the usual case and is told apart faster
// than by dynamic_cast.
template <class SampleClass>
const SampleClass* asSample(const VRTChannelBase* channel) {
  if (channel && typeid(*channel) == typeid(SampleClass)) return static_cast<const SampleClass*>(channel);
  return dynamic_cast<const SampleClass*>(channel);
}

SampleMap mapSamples(const Children& children) {
  SampleMap map;
  for (VRTChannelBase* child : children) {
    if (auto* sample = dynamic_cast<VRTChannelGradientSample*>(child)) map[sample->position] = sample;
  }
  return map;
}

bool sameText(const VortoString& left, const VortoString& right) {
  const std::uint32_t size = left.size();
  if (size != right.size()) return false;
  return size == 0 || std::memcmp(left.u_str(), right.u_str(), size * sizeof(unsigned short)) == 0;
}

GradientEntries entriesOf(const Lookup& lookup) {
  return {lookup.begin(), lookup.size()};
}

// What a new sample at a position takes over from the gradient.
struct Found {
  double rgba[4] = {0.0, 0.0, 0.0, 0.0};
  std::int32_t interpolation = VRTGradientSmooth;
};

Found evaluateAt(const VRTChannelGradientFolder& folder, double time, double position) {
  Lookup lookup;
  folder.getLookup(time, lookup);
  Found found;
  const Lookup::Entry* entry = folder.getRGBAFromLookup(position, found.rgba, lookup);
  if (entry) found.interpolation = entry->sample.interpolation;
  return found;
}

}  // namespace

// Copies nothing, as the header says.
// NOLINTNEXTLINE(bugprone-copy-constructor-init)
VRTChannelGradientFolder::VRTChannelGradientFolder(const VRTChannelGradientFolder&) : VRTChannelFolder() {}

void VRTChannelGradientFolder::appendSample(std::unique_ptr<VRTChannelGradientSample> sample) {
  sample->setID(0);
  push_back(sample.get());
  static_cast<void>(sample.release());
}

VRTChannelGradientSample* VRTChannelGradientFolder::cloneSample(std::uint32_t sampleID) {
  auto* source = dynamic_cast<VRTChannelGradientSample*>(getDescendant(static_cast<std::int32_t>(sampleID)));
  if (!source) return nullptr;
  willBeModified();
  auto* copy = static_cast<VRTChannelGradientSample*>(source->clone().release());
  appendSample(std::unique_ptr<VRTChannelGradientSample>(copy));
  return copy;
}

void VRTChannelGradientFolder::deleteSample(std::uint32_t sampleID) {
  VRTChannelBase* const sample = getDescendant(static_cast<std::int32_t>(sampleID));
  if (!sample) return;
  removeDescendant(sample);
  delete sample;
}

void VRTChannelGradientFolder::sortAndRename() {
  const VortoString& baseName = getSampleBaseName();
  Children others;
  SampleMap map;
  for (VRTChannelBase* child : std::exchange(getDescendants(), {})) {
    auto* sample = dynamic_cast<VRTChannelGradientSample*>(child);
    if (!sample) {
      others.push_back(child);
      continue;
    }
    VRTChannelGradientSample*& place = map[sample->position];
    if (place != sample) delete std::exchange(place, sample);
  }

  int number = 1;
  for (const auto& [position, sample] : map) {
    char digits[16];
    std::snprintf(digits, sizeof(digits), "%d", number++);
    VortoString sampleName(baseName);
    sampleName.append(digits);
    push_back(sample);
    if (sameText(sample->getName(), sampleName)) continue;
    sample->willBeModified();
    sample->setName(sampleName);
  }
  getDescendants().insert(getDescendants().end(), others.begin(), others.end());
}

void VRTChannelGradientFolder::flop(double) {
  const SampleMap map = mapSamples(getDescendants());
  for (auto current = map.rbegin(); current != map.rend(); ++current) {
    VRTChannelGradientSample& sample = *current->second;
    sample.position = 1.0 - current->first;
    const auto lower = std::next(current);
    if (lower == map.rend()) break;
    sample.middle = 1.0 - lower->second->middle;
    sample.interpolation = lower->second->interpolation;
  }
}

void VRTChannelGradientFolder::spread(double) {
  const SampleMap map = mapSamples(getDescendants());
  const double step = map.size() > 1 ? 1.0 / static_cast<double>(map.size() - 1) : 1.0;
  double i = 0.0;
  for (const auto& [position, sample] : map) {
    sample->position = i * step;
    sample->middle = 0.5;
    i += 1.0;
  }
}

std::unique_ptr<VRTChannelBase> VRTChannelGradientRGBFolder::clone() const {
  return std::make_unique<VRTChannelGradientRGBFolder>(*this);
}

const VortoString& VRTChannelGradientRGBFolder::getSampleBaseName() const {
  static const VortoString* const baseName = new VortoString("RGB");  // kept until the process ends
  return *baseName;
}

VRTChannelGradientSampleRGB* VRTChannelGradientRGBFolder::insertSample(double time, double position) {
  willBeModified();
  const Found found = evaluateAt(*this, time, position);
  auto sample = std::make_unique<VRTChannelGradientSampleRGB>(getSampleBaseName(), found.rgba[0], found.rgba[1],
                                                              found.rgba[2], position, 0.5, found.interpolation);
  auto* const inserted = sample.get();
  appendSample(std::move(sample));
  return inserted;
}

void VRTChannelGradientRGBFolder::getLookup(double, Lookup& lookup) const {
  for (const VRTChannelBase* child : getDescendants()) {
    const auto* s = asSample<VRTChannelGradientSampleRGB>(child);
    if (s) lookup.collect(s->position, {s->red, s->green, s->blue, 0.0, s->middle, s->interpolation});
  }
  lookup.arrange();
}

void VRTChannelGradientRGBFolder::getARGBFromLookup(double position, float* argb, const Lookup& lookup) const {
  double rgb[3];
  if (!evaluateGradient(entriesOf(lookup), kColorComponents, position, rgb).written) return;
  for (int i = 0; i < 3; ++i) argb[i + 1] = gradientFloat(rgb[i]);
}

const Lookup::Entry* VRTChannelGradientRGBFolder::getRGBAFromLookup(double position, double* rgba,
                                                                    const Lookup& lookup) const {
  return evaluateGradient(entriesOf(lookup), kColorComponents, position, rgba).entry;
}

void VRTChannelGradientRGBFolder::addSample(double red, double green, double blue, double position, double middle,
                                            std::int32_t interpolation) {
  appendSample(std::make_unique<VRTChannelGradientSampleRGB>(getSampleBaseName(), red, green, blue, position, middle,
                                                             interpolation));
}

std::unique_ptr<VRTChannelBase> VRTChannelGradientAlphaFolder::clone() const {
  return std::make_unique<VRTChannelGradientAlphaFolder>(*this);
}

const VortoString& VRTChannelGradientAlphaFolder::getSampleBaseName() const {
  static const VortoString* const baseName = new VortoString("Alpha");  // kept until the process ends
  return *baseName;
}

VRTChannelGradientSampleAlpha* VRTChannelGradientAlphaFolder::insertSample(double time, double position) {
  willBeModified();
  const Found found = evaluateAt(*this, time, position);
  auto sample = std::make_unique<VRTChannelGradientSampleAlpha>(getSampleBaseName(), found.rgba[3], position, 0.5,
                                                                found.interpolation);
  auto* const inserted = sample.get();
  appendSample(std::move(sample));
  return inserted;
}

void VRTChannelGradientAlphaFolder::getLookup(double, Lookup& lookup) const {
  for (const VRTChannelBase* child : getDescendants()) {
    const auto* s = asSample<VRTChannelGradientSampleAlpha>(child);
    if (s) lookup.collect(s->position, {0.0, 0.0, 0.0, s->alpha, s->middle, s->interpolation});
  }
  lookup.arrange();
}

void VRTChannelGradientAlphaFolder::getARGBFromLookup(double position, float* argb, const Lookup& lookup) const {
  double alpha;
  if (evaluateGradient(entriesOf(lookup), kOpacityComponents, position, &alpha).written) argb[0] = gradientFloat(alpha);
}

const Lookup::Entry* VRTChannelGradientAlphaFolder::getRGBAFromLookup(double position, double* rgba,
                                                                      const Lookup& lookup) const {
  return evaluateGradient(entriesOf(lookup), kOpacityComponents, position, rgba + 3).entry;
}

void VRTChannelGradientAlphaFolder::addSample(double alpha, double position, double middle,
                                              std::int32_t interpolation) {
  appendSample(
      std::make_unique<VRTChannelGradientSampleAlpha>(getSampleBaseName(), alpha, position, middle, interpolation));
}

// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTObjects.h"

#include "Channels/VRTChannelGradient.h"
#include "Channels/VRTChannelHistogram.h"
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTStateKeys.h"

#include <array>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

constexpr const char* kNoDictionary = "it is no dictionary";

void deleteSamples(VRTChannelFolder& folder) {
  auto& samples = folder.getDescendants();
  while (!samples.empty()) {
    delete samples.back();
    samples.pop_back();
  }
}

// Calls add(entry) for every sample, where entry(kPosition) and so on are its numbers. An array that ends within a
// sample throws std::out_of_range.
template <class Add>
void readSamples(const PropertyList::Array& numbers, const VRTStateKeys::Samples& samples, VRTChannelFolder& folder,
                 Add add) {
  if (numbers.size() % samples.entries.size() != 0) {
    throw std::out_of_range('"' + std::string(samples.key) + "\" holds " + std::to_string(numbers.size()) +
                            " numbers, which is no multiple of " + std::to_string(samples.entries.size()));
  }
  deleteSamples(folder);
  for (std::size_t first = 0; first < numbers.size(); first += samples.entries.size()) {
    add([&](VRTStateKeys::SampleEntry entry) -> const PropertyList& { return numbers.at(first + entry); });
  }
}

void readRGBSamples(const PropertyList::Array& numbers, VRTChannelGradientRGBFolder& folder) {
  using namespace VRTStateKeys;
  readSamples(numbers, kRGBSamples, folder, [&](const auto& entry) {
    const int interpolation = entry(kInterpolation).intValue();
    folder.addSample(entry(kRed).doubleValue(), entry(kGreen).doubleValue(), entry(kBlue).doubleValue(),
                     entry(kPosition).doubleValue(), entry(kMiddle).doubleValue(), interpolation);
  });
}

void readAlphaSamples(const PropertyList::Array& numbers, VRTChannelGradientAlphaFolder& folder) {
  using namespace VRTStateKeys;
  readSamples(numbers, kAlphaSamples, folder, [&](const auto& entry) {
    const int interpolation = entry(kInterpolation).intValue();
    folder.addSample(entry(kAlpha).doubleValue(), entry(kPosition).doubleValue(), entry(kMiddle).doubleValue(),
                     interpolation);
  });
}

void appendSample(PropertyList& array, const VRTChannelGradientSample& sample, std::initializer_list<double> values) {
  array.append(PropertyList::real(sample.position));
  array.append(PropertyList::real(sample.middle));
  array.append(PropertyList::integer(sample.interpolation));
  for (const double value : values) array.append(PropertyList::real(value));
}

std::unique_ptr<VRTChannelGradient> makeDefaultGradient() {
  auto channel = std::make_unique<VRTChannelGradient>();
  channel->defaultKind = 2;  // white to black; reset() merges these samples over the constructor's red and blue ones
  channel->reset();
  return channel;
}

struct LevelsAccess {
  double (VRTHistogram::*get)(int) const;
  void (VRTHistogram::*set)(double, int);
};

// In the order of VRTStateKeys::kLevelsValues.
constexpr std::array<LevelsAccess, VRTStateKeys::kLevelsValues.size()> kLevelsAccess{{
    {&VRTHistogram::blackInForChannel, &VRTHistogram::setBlackIn},
    {&VRTHistogram::blackOutForChannel, &VRTHistogram::setBlackOut},
    {&VRTHistogram::whiteInForChannel, &VRTHistogram::setWhiteIn},
    {&VRTHistogram::whiteOutForChannel, &VRTHistogram::setWhiteOut},
    {&VRTHistogram::gammaForChannel, &VRTHistogram::setGamma},
}};

// Calls visit(access, channel, key) for every value of levels, in the order in which they are written.
template <class Visit>
void visitLevels(Visit visit) {
  using namespace VRTStateKeys;
  for (std::size_t channel = 0; channel < kLevelsChannels.size(); ++channel) {
    for (std::size_t value = 0; value < kLevelsValues.size(); ++value) {
      visit(kLevelsAccess[value], static_cast<int>(channel), levelsKey(static_cast<LevelsValue>(value), channel));
    }
  }
}

const NSClassRegistration kObjectClass("VRTObject", "QCObject", {});
const NSClassRegistration kGradientClass("VRTGradient", "VRTObject", [] { return std::make_shared<VRTGradient>(); });
const NSClassRegistration kHistogramClass("VRTHistogram", "VRTObject", [] { return std::make_shared<VRTHistogram>(); });
const NSClassRegistration kOpaqueDataClass("VRTOpaqueData", "VRTObject",
                                           [] { return std::make_shared<VRTOpaqueData>(); });

}  // namespace

NSObjectRef VRTObject::copyWithZone() const {
  const auto state = stateValue();
  const NSClass* entry = NSClassFromString(className());
  if (!state || !entry || !entry->factory) return nullptr;
  const auto copy = std::dynamic_pointer_cast<VRTObject>(entry->factory());
  try {
    return copy && copy->initWithStateValue(*state) ? copy : nullptr;
  } catch (const std::out_of_range&) {
    return nullptr;
  }
}

void VRTObject::encodeWithCoder(NSCoder& coder) const {
  const auto state = stateValue();
  if (!state) coder.fail(className() + " has no state that can be written");
  const NSObjectRef object = state ? NSObjectFromPropertyList(*state) : nullptr;
  if (coder.allowsKeyedCoding()) {
    coder.encodeObject(object, "state");
  } else {
    coder.encodeObject(object);
  }
}

bool VRTObject::initWithCoder(NSCoder& coder) {
  const NSObjectRef object = coder.allowsKeyedCoding() ? coder.decodeObjectForKey("state") : coder.decodeObject();
  std::string reason = object ? "" : "it has no state";
  const auto* dictionary = stateKeys().empty() ? nullptr : dynamic_cast<const NSDictionary*>(object.get());
  const auto state = dictionary ? NSPropertyListFromEntries(*dictionary, stateKeys(), &reason)
                     : object   ? NSPropertyListFromObject(object.get(), &reason)
                                : std::nullopt;
  try {
    if (state && initWithStateValue(*state, &reason)) return true;
  } catch (const std::out_of_range& error) {
    reason = error.what();
  }
  const std::string prefix = className() + ": ";  // once, however deep archives lie in archives
  if (!reason.empty()) coder.fail(reason.starts_with(prefix) ? reason : prefix + reason);
  return false;
}

std::span<const std::string> VRTObject::stateKeys() const {
  return {};
}

VRTGradient::VRTGradient() : _kxChannelGradient(makeDefaultGradient()) {}

VRTGradient::~VRTGradient() = default;

std::shared_ptr<VRTGradient> VRTGradient::gradient() {
  return std::make_shared<VRTGradient>();
}

void VRTGradient::getGradient8(std::uint8_t* out, std::uint32_t samples) const {
  _kxChannelGradient->getGradient(0, out, samples);
}

void VRTGradient::getGradient16(std::uint16_t* out, std::uint32_t samples) const {
  _kxChannelGradient->getGradient(0, out, samples);
}

void VRTGradient::getGradientFloat(float* out, std::uint32_t samples) const {
  _kxChannelGradient->getGradient(0, out, samples);
}

std::optional<PropertyList> VRTGradient::stateValue() const {
  PropertyList rgbSamples = PropertyList::array();
  for (const VRTChannelBase* child : _kxChannelGradient->rgbFolder.getDescendants()) {
    const auto* sample = dynamic_cast<const VRTChannelGradientSampleRGB*>(child);
    if (!sample) continue;
    appendSample(rgbSamples, *sample, {sample->red, sample->green, sample->blue});
  }
  PropertyList alphaSamples = PropertyList::array();
  for (const VRTChannelBase* child : _kxChannelGradient->alphaFolder.getDescendants()) {
    const auto* sample = dynamic_cast<const VRTChannelGradientSampleAlpha*>(child);
    if (!sample) continue;
    appendSample(alphaSamples, *sample, {sample->alpha});
  }
  PropertyList state;
  state.set(VRTStateKeys::kRGBSamples.key, std::move(rgbSamples));
  state.set(VRTStateKeys::kAlphaSamples.key, std::move(alphaSamples));
  return state;
}

bool VRTGradient::initWithStateValue(const PropertyList& state, std::string* reason) {
  if (!state.isDictionary()) return NSRefuse(reason, kNoDictionary);
  for (const std::string& key : stateKeys()) {
    const PropertyList* samples = state.find(key);
    if (samples && !samples->isArray()) return NSRefuse(reason, '"' + key + "\" is no array");
  }
  const PropertyList* rgbSamples = state.find(VRTStateKeys::kRGBSamples.key);
  const PropertyList* alphaSamples = state.find(VRTStateKeys::kAlphaSamples.key);
  auto channel = makeDefaultGradient();
  if (rgbSamples) readRGBSamples(rgbSamples->items(), channel->rgbFolder);
  if (alphaSamples) readAlphaSamples(alphaSamples->items(), channel->alphaFolder);
  _kxChannelGradient = std::move(channel);
  return true;
}

std::span<const std::string> VRTGradient::stateKeys() const {
  static const auto& keys =
      *new std::array<std::string, 2>{VRTStateKeys::kRGBSamples.key, VRTStateKeys::kAlphaSamples.key};
  return keys;
}

VRTHistogram::VRTHistogram() : _kxChannelHistogram(std::make_unique<VRTChannelHistogram>()) {}

VRTHistogram::~VRTHistogram() = default;

std::shared_ptr<VRTHistogram> VRTHistogram::histogram() {
  return std::make_shared<VRTHistogram>();
}

int VRTHistogram::selectedChannel() const {
  return _kxChannelHistogram->selectedChannel;
}

void VRTHistogram::setSelectedChannel(int channel) {
  _kxChannelHistogram->selectedChannel = channel;
}

double VRTHistogram::blackInForChannel(int channel) const {
  return _kxChannelHistogram->getBlackInValue(channel, 0, 0);
}

double VRTHistogram::blackOutForChannel(int channel) const {
  return _kxChannelHistogram->getBlackOutValue(channel, 0, 0);
}

double VRTHistogram::whiteInForChannel(int channel) const {
  return _kxChannelHistogram->getWhiteInValue(channel, 0, 0);
}

double VRTHistogram::whiteOutForChannel(int channel) const {
  return _kxChannelHistogram->getWhiteOutValue(channel, 0, 0);
}

double VRTHistogram::gammaForChannel(int channel) const {
  return _kxChannelHistogram->getGammaValue(channel, 0, 0);
}

void VRTHistogram::setBlackIn(double value, int channel) {
  _kxChannelHistogram->setBlackInValue(value, channel, 0, 0);
}

void VRTHistogram::setBlackOut(double value, int channel) {
  _kxChannelHistogram->setBlackOutValue(value, channel, 0, 0);
}

void VRTHistogram::setWhiteIn(double value, int channel) {
  _kxChannelHistogram->setWhiteInValue(value, channel, 0, 0);
}

void VRTHistogram::setWhiteOut(double value, int channel) {
  _kxChannelHistogram->setWhiteOutValue(value, channel, 0, 0);
}

void VRTHistogram::setGamma(double value, int channel) {
  _kxChannelHistogram->setGammaValue(value, channel, 0, 0);
}

std::optional<PropertyList> VRTHistogram::stateValue() const {
  PropertyList state;
  state.set(VRTStateKeys::kSelectedChannel, PropertyList::integer(selectedChannel()));
  visitLevels([&](const LevelsAccess& access, int channel, const std::string& key) {
    state.set(key, PropertyList::real((this->*access.get)(channel)));
  });
  return state;
}

bool VRTHistogram::initWithStateValue(const PropertyList& state, std::string* reason) {
  if (!state.isDictionary()) return NSRefuse(reason, kNoDictionary);
  const PropertyList* selected = state.find(VRTStateKeys::kSelectedChannel);
  setSelectedChannel(selected ? selected->intValue() : 0);
  visitLevels([&](const LevelsAccess& access, int channel, const std::string& key) {
    const PropertyList* value = state.find(key);
    (this->*access.set)(value ? value->doubleValue() : 0, channel);
  });
  return true;
}

std::span<const std::string> VRTHistogram::stateKeys() const {
  return VRTStateKeys::levelsKeys();
}

VRTOpaqueData::VRTOpaqueData() = default;

VRTOpaqueData::~VRTOpaqueData() = default;

std::shared_ptr<VRTOpaqueData> VRTOpaqueData::data() {
  return std::make_shared<VRTOpaqueData>();
}

std::shared_ptr<VRTOpaqueData> VRTOpaqueData::dataWithValue(NSObjectRef value) {
  auto object = std::make_shared<VRTOpaqueData>();
  object->initWithValue(std::move(value));
  return object;
}

bool VRTOpaqueData::initWithValue(NSObjectRef value) {
  _value = std::move(value);
  return true;
}

std::optional<PropertyList> VRTOpaqueData::stateValue() const {
  NSKeyedArchiver archiver;
  archiver.encodeObject(_value);
  auto bytes = archiver.finishEncoding();
  if (!bytes) return std::nullopt;
  return PropertyList::mutableData(*std::move(bytes));
}

bool VRTOpaqueData::initWithStateValue(const PropertyList& state, std::string* reason) {
  if (!state.isData()) return NSRefuse(reason, "it is no data");
  NSKeyedUnarchiver unarchiver;
  NSObjectRef value = unarchiver.initForReadingWithData(state.bytes()) ? unarchiver.decodeObject() : nullptr;
  if (!unarchiver.error().empty()) return NSRefuse(reason, unarchiver.error());
  unarchiver.finishDecoding();
  return initWithValue(std::move(value));
}

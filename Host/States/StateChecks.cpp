// SPDX-License-Identifier: BSD-3-Clause
#include "Host/States/StateChecks.h"

#include "Ports/VRTStateKeys.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

std::string faultOfNumber(const PropertyList& value, const std::string& where) {
  if (!value.readsAsNumber()) return where + " is a " + value.typeName() + ", not a number";
  return std::isfinite(value.doubleValue()) ? "" : where + " is not a finite number";
}

std::string faultOfSamples(const PropertyList& state, const VRTStateKeys::Samples& form) {
  const PropertyList* samples = state.find(form.key);
  if (!samples) return "";
  const std::string quoted = std::string("\"") + form.key + '"';
  const std::size_t numbersPerSample = form.entries.size();
  if (!samples->isArray()) return quoted + " is a " + samples->typeName() + ", not an array";
  const auto& numbers = samples->items();
  if (numbers.size() % numbersPerSample != 0) {
    return quoted + " holds " + std::to_string(numbers.size()) + " numbers, which is no multiple of " +
           std::to_string(numbersPerSample);
  }
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    std::string fault = faultOfNumber(numbers[i], "entry " + std::to_string(i) + " of " + quoted);
    if (!fault.empty()) return fault;
  }
  return "";
}

std::string faultOfLevels(const PropertyList& state) {
  for (const std::string& key : VRTStateKeys::levelsKeys()) {
    const PropertyList* value = state.find(key);
    if (std::string fault = value ? faultOfNumber(*value, '"' + key + '"') : ""; !fault.empty()) return fault;
  }
  return "";
}

// Whether a dictionary leaves everything to the kind: {} is a gradient of the default samples, and levels of nothing
// but zeros, which may state their selected channel.
bool isBare(StateKind kind, const PropertyList& state) {
  if (!state.isDictionary() || kind == StateKind::Opaque) return false;
  const bool hasChannel = kind == StateKind::Levels && state.find(VRTStateKeys::kSelectedChannel);
  return state.entries().size() == (hasChannel ? 1 : 0);
}

}  // namespace

std::optional<StateKind> kindOfDictionary(const PropertyList& state, std::optional<StateKind> mayBeBare) {
  using namespace VRTStateKeys;
  if (state.find(kRGBSamples.key) || state.find(kAlphaSamples.key)) return StateKind::Gradient;
  if (mayBeBare && isBare(*mayBeBare, state)) return mayBeBare;
  const auto isOfLevels = [&](const std::string& key) { return key != kSelectedChannel && state.find(key); };
  if (std::any_of(levelsKeys().begin(), levelsKeys().end(), isOfLevels)) return StateKind::Levels;
  return std::nullopt;
}

std::string faultOfState(StateKind kind, const PropertyList& state) {
  switch (kind) {
    case StateKind::Gradient: {
      std::string fault = faultOfSamples(state, VRTStateKeys::kRGBSamples);
      return fault.empty() ? faultOfSamples(state, VRTStateKeys::kAlphaSamples) : fault;
    }
    case StateKind::Levels:
      return faultOfLevels(state);
    case StateKind::Opaque:
      break;
  }
  return state.isData() ? "" : "opaque data is stored as data, not as a " + std::string(state.typeName());
}

}  // namespace host

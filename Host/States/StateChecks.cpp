// SPDX-License-Identifier: BSD-3-Clause
#include "Host/States/StateChecks.h"

#include <cmath>

namespace host {
namespace {

constexpr const char* LevelsValues[] = {"blackIn", "blackOut", "whiteIn", "whiteOut", "gamma"};
constexpr const char* LevelsChannels[] = {"RGB", "Red", "Green", "Blue", "Alpha"};

std::string faultOfNumber(const PropertyList& value, const std::string& where) {
  if (!value.isNumber()) return where + " is a " + value.typeName() + ", not a number";
  return std::isfinite(value.doubleValue()) ? "" : where + " is not a finite number";
}

std::string faultOfSamples(const PropertyList& state, const char* key, std::size_t numbersPerSample) {
  const PropertyList* samples = state.find(key);
  if (!samples) return "";
  const std::string quoted = std::string("\"") + key + '"';
  if (!samples->isArray()) return quoted + " is a " + samples->typeName() + ", not an array";
  const auto& numbers = samples->items();
  if (numbers.size() % numbersPerSample != 0) {
    return quoted + " holds " + std::to_string(numbers.size()) + " numbers, which is no multiple of " +
           std::to_string(numbersPerSample);
  }
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::string fault = faultOfNumber(numbers[i], "entry " + std::to_string(i) + " of " + quoted);
    if (!fault.empty()) return fault;
  }
  return "";
}

std::string faultOfLevels(const PropertyList& state) {
  std::string fault;
  const auto check = [&](const std::string& key) {
    const PropertyList* value = state.find(key);
    if (value && fault.empty()) fault = faultOfNumber(*value, '"' + key + '"');
  };
  check("selectedChannel");
  for (const char* channel : LevelsChannels) {
    for (const char* value : LevelsValues) check(std::string(value) + channel);
  }
  return fault;
}

}  // namespace

std::optional<StateKind> kindOfDictionary(const PropertyList& state) {
  if (state.find("rgbSamples") || state.find("alphaSamples")) return StateKind::Gradient;
  for (const char* channel : LevelsChannels) {
    for (const char* value : LevelsValues) {
      if (state.find(std::string(value) + channel)) return StateKind::Levels;
    }
  }
  return std::nullopt;
}

std::string faultOfState(StateKind kind, const PropertyList& state) {
  switch (kind) {
    case StateKind::Gradient: {
      const std::string fault = faultOfSamples(state, "rgbSamples", 6);
      return fault.empty() ? faultOfSamples(state, "alphaSamples", 4) : fault;
    }
    case StateKind::Levels:
      return faultOfLevels(state);
    case StateKind::Opaque:
      break;
  }
  return state.isData() ? "" : "opaque data is stored as data, not as a " + std::string(state.typeName());
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/LevelsText.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Json.h"
#include "Host/Texts/TextReader.h"
#include "Platform/Foundation/NSReason.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTStateKeys.h"

#include <algorithm>

namespace host {
namespace {

constexpr double kMostGamma = 5;

constexpr const char* kNames =
    "blackIn, whiteIn, gamma, blackOut or whiteOut, behind red., green., blue., alpha. or rgb. for one channel; or "
    "selectedChannel";

// Without spaces and capitals, so that " Black In" is blackin.
std::string folded(std::string_view text) {
  std::string low = lowered(text);
  std::erase_if(low, [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
  return low;
}

template <class Names>
std::optional<std::size_t> indexOf(const Names& names, const std::string& name) {
  const auto found = std::ranges::find_if(names, [&](const auto& each) { return folded(each) == name; });
  if (found == std::end(names)) return std::nullopt;
  return static_cast<std::size_t>(found - std::begin(names));
}

// The key of the state that a name stands for.
std::optional<std::string> keyOfName(std::string_view text) {
  using namespace VRTStateKeys;
  const std::string name = folded(text);
  if (const auto key = indexOf(levelsKeys(), name)) return levelsKeys()[*key];
  const std::size_t dot = name.find('.');
  const auto channel = dot == std::string::npos ? 0 : indexOf(kLevelsChannels, name.substr(0, dot));
  const auto value = indexOf(kLevelsValues, dot == std::string::npos ? name : name.substr(dot + 1));
  if (!channel || !value) return std::nullopt;
  return levelsKey(static_cast<LevelsValue>(*value), *channel);
}

bool isGamma(std::string_view key) {
  return key.starts_with(VRTStateKeys::kLevelsValues[VRTStateKeys::kGamma]);
}

bool isInRange(std::string_view key, double number) {
  return number >= 0 && number <= (isGamma(key) ? kMostGamma : 1);
}

double readValue(TextReader& reader, std::string_view key) {
  const char* what = isGamma(key) ? "a gamma of 0 to 5" : "a number of 0 to 1 or a percentage of 0% to 100%";
  const Quantity quantity = reader.quantity(what);
  const bool isPlain = quantity.unit.empty() || (quantity.isPercent() && !isGamma(key));
  if (!isPlain || !isInRange(key, quantity.number)) {
    TextReader::fail(quantity.at, std::string(key) + ": expected " + what);
  }
  return quantity.number;
}

std::int64_t readChannel(TextReader& reader) {
  const std::size_t at = reader.place();
  const std::string name = lowered(reader.word());
  const auto channel = indexOf(VRTStateKeys::kLevelsChannels, name);
  if (!channel) TextReader::fail(at, "expected a channel: rgb, red, green, blue or alpha");
  return static_cast<std::int64_t>(*channel);
}

std::string keyNamed(std::string_view text, std::size_t begin, std::size_t end) {
  const std::string_view name = text.substr(begin, end - begin);
  const auto key = name.size() > 200 ? std::nullopt : keyOfName(name);
  if (!key) TextReader::fail(begin, "no value of levels is called " + quotedText(name) + "; there are " + kNames);
  return *key;
}

void setValue(PropertyList& state, const std::string& key, TextReader& reader) {
  if (key == VRTStateKeys::kSelectedChannel) {
    state.set(key, PropertyList::integer(readChannel(reader)));
  } else {
    state.set(key, PropertyList::real(readValue(reader, key)));
  }
}

}  // namespace

std::string levelsKeyOfName(std::string_view name) {
  return keyNamed(name, 0, name.size());
}

void setLevelsValue(PropertyList& state, const std::string& key, std::string_view value) {
  TextReader reader(value);
  setValue(state, key, reader);
  if (!reader.atEnd()) reader.expected("the end of the value");
}

bool looksLikeLevels(std::string_view text) {
  while (text.starts_with("/*") && text.find("*/", 2) != std::string_view::npos) {
    text.remove_prefix(text.find("*/", 2) + 2);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  }
  const std::size_t equals = text.find('=');
  if (equals == std::string_view::npos || equals == 0) return false;
  return std::ranges::all_of(text.substr(0, equals), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == ' ' || c == '\t' || c == '\n' ||
           c == '\r';
  });
}

PropertyList defaultLevels() {
  return *VRTHistogram::histogram()->stateValue();
}

PropertyList levelsOfText(std::string_view text) {
  PropertyList state = defaultLevels();
  TextReader reader(text);
  do {
    const std::size_t begin = reader.place();
    const std::size_t equals = text.find_first_of("=,", begin);
    if (equals == std::string_view::npos || text[equals] == ',') {
      reader.expected(std::string("name=value, the name one of ") + kNames);
    }
    std::size_t end = equals;
    while (end > begin && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
    const std::string key = keyNamed(text, begin, end);
    reader.skipTo(equals + 1);
    setValue(state, key, reader);
  } while (reader.takes(','));
  if (!reader.atEnd()) reader.expected("\",\"");
  return state;
}

std::optional<std::string> textOfLevels(const PropertyList& state, std::string* reason) {
  using namespace VRTStateKeys;
  const PropertyList defaults = defaultLevels();
  std::string text;
  const auto append = [&](const std::string& name, const std::string& value) {
    text += (text.empty() ? "" : ", ") + name + "=" + value;
  };
  for (std::size_t channel = 0; channel < kLevelsChannels.size(); ++channel) {
    for (std::size_t value = 0; value < kLevelsValues.size(); ++value) {
      const std::string& key = levelsKey(static_cast<LevelsValue>(value), channel);
      const PropertyList* number = state.find(key);
      if (!number || *number == *defaults.find(key)) continue;
      if (!isInRange(key, number->doubleValue())) {
        NSRefuse(reason,
                 key + " is " + numberText(number->doubleValue()) + ", beyond " + (isGamma(key) ? "0 to 5" : "0 to 1"));
        return std::nullopt;
      }
      append((channel == 0 ? "" : lowered(kLevelsChannels[channel]) + ".") + kLevelsValues[value],
             numberText(number->doubleValue()));
    }
  }
  const PropertyList* selected = state.find(kSelectedChannel);
  const std::int64_t channel = selected ? selected->integerValue() : 0;
  if (channel < 0 || channel >= static_cast<std::int64_t>(kLevelsChannels.size())) {
    NSRefuse(reason, "selectedChannel is " + std::to_string(channel) + ", which is no channel");
    return std::nullopt;
  }
  if (channel != 0 || text.empty())
    append(kSelectedChannel, lowered(kLevelsChannels[static_cast<std::size_t>(channel)]));
  return text;
}

}  // namespace host

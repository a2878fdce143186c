// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTStateKeys.h"

namespace VRTStateKeys {
namespace {

std::array<std::string, kLevelsKeyCount> makeLevelsKeys() {
  std::array<std::string, kLevelsKeyCount> keys{kSelectedChannel};
  std::size_t index = 1;
  for (const std::string channel : kLevelsChannels) {
    for (const char* value : kLevelsValues) keys[index++] = value + channel;
  }
  return keys;
}

}  // namespace

const std::array<std::string, kLevelsKeyCount>& levelsKeys() {
  // Never destroyed: states may be written while the process ends.
  static const auto& keys = *new std::array<std::string, kLevelsKeyCount>(makeLevelsKeys());
  return keys;
}

const std::string& levelsKey(LevelsValue value, std::size_t channel) {
  return levelsKeys().at(1 + kLevelsValues.size() * channel + value);
}

}  // namespace VRTStateKeys

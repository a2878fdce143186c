// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelFolder.h"

#include <algorithm>
#include <utility>

VRTChannelFolder::~VRTChannelFolder() {
  for (VRTChannelBase*& child : descendants) delete std::exchange(child, nullptr);
}

std::unique_ptr<VRTChannelBase> VRTChannelFolder::clone() const {
  return std::make_unique<VRTChannelFolder>(*this);
}

VRTChannelBase* VRTChannelFolder::getDescendant(std::int32_t channelID) const {
  const auto found = std::ranges::find_if(
      descendants, [channelID](const VRTChannelBase* child) { return child && child->getID() == channelID; });
  return found == descendants.end() ? nullptr : *found;
}

void VRTChannelFolder::removeDescendant(VRTChannelBase* channel) {
  const auto found = std::ranges::find(descendants, channel);
  if (found != descendants.end()) descendants.erase(found);
}

// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelBase.h"

std::atomic<std::int32_t> VRTChannelBase::_uniqueIDGenerator = 1;

VRTChannelBase::VRTChannelBase() : id(takeID()), name("VRTChannelBase") {}

VRTChannelBase::VRTChannelBase(const VRTChannelBase& source) : id(takeID()), name(source.name) {}

VRTChannelBase::~VRTChannelBase() {
  while (_refs) _refs->detach();
}

// Wraps around after 2^32 channels.
std::int32_t VRTChannelBase::takeID() {
  return _uniqueIDGenerator.fetch_add(1, std::memory_order_relaxed);
}

void VRTChannelBase::reset() {}

std::unique_ptr<VRTChannelBase> VRTChannelBase::clone() const {
  return std::make_unique<VRTChannelBase>(*this);
}

void VRTChannelBase::willBeModified() {}

void VRTChannelBase::setName(const VortoString& newName) {
  name.set(newName);
}

std::unique_ptr<VRTChannelRef> VRTChannelBase::getRef() {
  return std::make_unique<VRTChannelRef>(this);
}

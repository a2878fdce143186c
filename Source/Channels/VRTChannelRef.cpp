// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelRef.h"

#include "Channels/VRTChannelBase.h"

VRTChannelRef::VRTChannelRef(VRTChannelBase* target) {
  attach(target);
}

VRTChannelRef::VRTChannelRef(const VRTChannelRef& other) {
  attach(other.channel);
}

VRTChannelRef& VRTChannelRef::operator=(const VRTChannelRef& other) {
  if (this == &other || channel == other.channel) return *this;
  detach();
  attach(other.channel);
  return *this;
}

VRTChannelRef::~VRTChannelRef() {
  detach();
}

void VRTChannelRef::attach(VRTChannelBase* target) {
  channel = target;
  if (!channel) return;
  _next = channel->_refs;
  if (_next) _next->_previous = this;
  channel->_refs = this;
}

void VRTChannelRef::detach() {
  if (!channel) return;
  if (_next) _next->_previous = _previous;
  (_previous ? _previous->_next : channel->_refs) = _next;
  channel = nullptr;
  _previous = nullptr;
  _next = nullptr;
}

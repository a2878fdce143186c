// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

class VRTChannelBase;

// A handle to a channel that it does not own. The channel tells its handles when it is destroyed, so a handle gives
// either a living channel or null; handles and channels may be destroyed in any order.
class TARN_EXPORT VRTChannelRef {
 public:
  explicit VRTChannelRef(VRTChannelBase* channel);  // null is allowed
  VRTChannelRef(const VRTChannelRef& other);        // refers to the same channel
  VRTChannelRef& operator=(const VRTChannelRef& other);
  ~VRTChannelRef();  // does nothing to the channel

  // The channel while it lives, else null.
  VRTChannelBase* getChannel() const { return channel; }

  // Identity: true when both hold the same pointer, whatever the names and ids.
  bool operator==(const VRTChannelRef& other) const { return channel == other.channel; }

 private:
  friend class VRTChannelBase;
  void attach(VRTChannelBase* target);
  void detach();

  VRTChannelBase* channel = nullptr;
  // Neighbours in the channel's list of handles.
  VRTChannelRef* _previous = nullptr;
  VRTChannelRef* _next = nullptr;
};

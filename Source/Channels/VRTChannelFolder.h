// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelBase.h"

#include <cstddef>
#include <vector>

// A channel that owns its children, kept in insertion order.
//
// The copy constructor and clone() copy the child pointers, not the children: source and copy then both hold, and both
// would delete, the same channels. Whoever copies a folder that is not empty must empty one of the two before it is
// destroyed.
class TARN_EXPORT VRTChannelFolder : public VRTChannelBase {
 public:
  VRTChannelFolder() = default;
  VRTChannelFolder(const VRTChannelFolder& source) = default;
  ~VRTChannelFolder() override;  // deletes the children, first to last

  std::unique_ptr<VRTChannelBase> clone() const override;

  // Appends the channel and takes ownership; neither duplicates nor null are checked for.
  void push_back(VRTChannelBase* channel) { descendants.push_back(channel); }

  // The children themselves; whoever takes a pointer out owns what it points to.
  std::vector<VRTChannelBase*>& getDescendants() { return descendants; }
  const std::vector<VRTChannelBase*>& getDescendants() const { return descendants; }
  std::size_t getNumberOfDescendants() const { return descendants.size(); }

  // The first child with this id (an id, not a position), or null.
  VRTChannelBase* getDescendant(std::int32_t channelID) const;

  // Takes the channel out without deleting it: the caller owns it again. Ignores what is not a child.
  void removeDescendant(VRTChannelBase* channel);

 private:
  std::vector<VRTChannelBase*> descendants;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelRef.h"
#include "Platform/Visibility.h"
#include "TarnCore/TCString.h"

#include <atomic>
#include <cstdint>
#include <memory>

// Root of the parameter channels: an id and a display name.
//
// Ids come from one process-wide counter that starts at 1; every construction, copies included, takes the next one.
// They can be overwritten, so they are not unique by force. Threads may make channels at the same time, as they do with
// every copy of a gradient; one channel belongs to one thread.
class TARN_EXPORT VRTChannelBase {
 public:
  VRTChannelBase();                              // named "VRTChannelBase"
  VRTChannelBase(const VRTChannelBase& source);  // a fresh id; the name is copied, handles to the source are not
  VRTChannelBase& operator=(const VRTChannelBase&) = delete;  // use clone()
  virtual ~VRTChannelBase();

  virtual void reset();  // restores the default value; nothing here
  // A new channel of the same class, made by that class's copy constructor.
  virtual std::unique_ptr<VRTChannelBase> clone() const;
  virtual void willBeModified();  // called before a structural edit; for the host to override

  // The name and the number that the channel has in its tree; neither has to be unique.
  const VortoString& getName() const { return name; }
  void setName(const VortoString& newName);
  std::int32_t getID() const { return id; }
  void setID(std::int32_t newID) { id = newID; }

  // A new handle to this channel.
  std::unique_ptr<VRTChannelRef> getRef();

 private:
  friend class VRTChannelRef;
  static std::int32_t takeID();

  static std::atomic<std::int32_t> _uniqueIDGenerator;

  std::int32_t id;
  VortoString name;
  VRTChannelRef* _refs = nullptr;  // the living handles to this channel
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSKeyValueObserving.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Who observes one object, in the order of registration. Private to this room.
class NSObservationTable {
 public:
  void add(NSKeyValueObserver* observer, std::string_view keyPath, void* context);
  void remove(const NSKeyValueObserver* observer, std::string_view keyPath);
  // Tells every observer of the key that was registered before the call and is still registered when its turn comes.
  // The caller holds the table for the length of the call: an observer may destroy the object.
  void notify(const std::string& key, NSObject* object);
  // The object is being destroyed: nobody is told any more.
  void end() { registrations_.clear(); }

 private:
  struct Registration {
    std::uint64_t number;  // ascending, never used twice
    std::shared_ptr<NSKeyValueObserver*> observer;
    std::string keyPath;
    void* context;
  };
  const Registration* find(std::uint64_t number) const;
  void dropTheDead();

  std::vector<Registration> registrations_;
  std::uint64_t lastNumber_ = 0;
};

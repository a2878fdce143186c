// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <memory>
#include <string>

class NSObject;
class PropertyList;
class NSObservationTable;

// What a class that observes implements. Destroying the observer ends every observation that it holds, also in the
// middle of a notification.
class TARN_EXPORT NSKeyValueObserver {
 public:
  NSKeyValueObserver();
  virtual ~NSKeyValueObserver();
  NSKeyValueObserver(const NSKeyValueObserver&) = delete;
  NSKeyValueObserver& operator=(const NSKeyValueObserver&) = delete;

  // `change` is a dictionary with the integer "kind" (1, a value was set): observations are made without options.
  virtual void observeValueForKeyPath(const std::string& keyPath, NSObject* object, const PropertyList& change,
                                      void* context) = 0;

 private:
  friend class NSObservationTable;
  std::shared_ptr<NSKeyValueObserver*> liveness_;  // holds null once the observer is destroyed
};

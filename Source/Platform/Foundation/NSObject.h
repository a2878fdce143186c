// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <memory>
#include <string>
#include <string_view>

class NSCoder;
class NSKeyValueObserver;
class NSObservationTable;
class NSObject;

using NSObjectRef = std::shared_ptr<NSObject>;  // a retained object; null is nil

// Root of the objects that are archived, copied, observed and made by name.
//
// Objects are not copyable in the C++ sense: call copyWithZone(). Retained objects are std::shared_ptr, references that
// are not retained are plain pointers.
class TARN_EXPORT NSObject : public std::enable_shared_from_this<NSObject> {
 public:
  NSObject();
  virtual ~NSObject();
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;

  // The name under which the class stands in the class table and in archives.
  virtual std::string className() const;
  // True when the class, or one that it derives from by the class table, has that name.
  bool isKindOfClass(std::string_view name) const;

  // An independent object of the same class, or null when the class cannot be copied.
  virtual NSObjectRef copyWithZone() const;
  // Writes what initWithCoder() needs. The default writes nothing.
  virtual void encodeWithCoder(NSCoder& coder) const;
  // Restores a freshly made object; false leaves it unusable. The default accepts.
  virtual bool initWithCoder(NSCoder& coder);
  virtual bool isEqual(const NSObject& other) const;  // identity unless a class says otherwise

  // Key-value observing (NSKeyValueObserving.h). The observer is not retained and is dropped when it dies. Adding the
  // same observer twice for one key path notifies it twice. Options are accepted for the interface's sake.
  void addObserver(NSKeyValueObserver* observer, std::string_view keyPath, unsigned options, void* context);
  // Removes the newest registration of that observer for that key path; none is no error.
  void removeObserver(NSKeyValueObserver* observer, std::string_view keyPath);
  void willChangeValueForKey(std::string_view key);
  // Tells every observer of the key that was registered before the call and is still registered when its turn comes.
  // The object may be destroyed by an observer.
  void didChangeValueForKey(std::string_view key);

 private:
  std::shared_ptr<NSObservationTable> observations_;
};

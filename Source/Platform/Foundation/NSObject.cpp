// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSObject.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSObservationTable.h"

NSObject::NSObject() = default;

NSObject::~NSObject() {
  if (observations_) {
    observations_->end();
  }
}

std::string NSObject::className() const {
  return "NSObject";
}

bool NSObject::isKindOfClass(std::string_view name) const {
  for (const std::string& each : NSClassHierarchy(className())) {
    if (each == name) {
      return true;
    }
  }
  return false;
}

NSObjectRef NSObject::copyWithZone() const {
  return nullptr;
}

void NSObject::encodeWithCoder(NSCoder&) const {}

bool NSObject::initWithCoder(NSCoder&) {
  return true;
}

bool NSObject::isEqual(const NSObject& other) const {
  return this == &other;
}

void NSObject::addObserver(NSKeyValueObserver* observer, std::string_view keyPath, unsigned, void* context) {
  if (observer == nullptr) {
    return;
  }
  if (!observations_) {
    observations_ = std::make_shared<NSObservationTable>();
  }
  observations_->add(observer, keyPath, context);
}

void NSObject::removeObserver(NSKeyValueObserver* observer, std::string_view keyPath) {
  if (observations_) {
    observations_->remove(observer, keyPath);
  }
}

void NSObject::willChangeValueForKey(std::string_view) {}  // observations are made without the option "prior"

void NSObject::didChangeValueForKey(std::string_view key) {
  if (observations_) {
    const std::shared_ptr<NSObservationTable> kept = observations_;  // outlives the object, should an observer end it
    kept->notify(std::string(key), this);
  }
}

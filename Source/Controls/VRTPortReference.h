// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPort.h"

#include <memory>
#include <utility>

// An object that is not retained. Once an object that shared pointers own is destroyed, the reference gives null; of
// one that nobody owns so (a local variable, say) the caller sees to it that it lives longer than the reference.
template <class Object>
class VRTObjectReference {
 public:
  VRTObjectReference() = default;
  explicit VRTObjectReference(Object* object) : object_(object) {
    if (!object) return;
    owner_ = object->weak_from_this();
    owned_ = !owner_.expired();
  }

  // Keeps the object alive for as long as the result is held, where it can.
  std::shared_ptr<Object> lock() const {
    if (!owned_) return {std::shared_ptr<void>(), object_};
    const NSObjectRef owner = owner_.lock();
    return owner ? std::shared_ptr<Object>(owner, object_) : nullptr;
  }

 private:
  Object* object_ = nullptr;
  std::weak_ptr<NSObject> owner_;
  bool owned_ = false;
};

// One change of a port's value in place: willChangeValue now, didChangeValue when it ends. A null port is left alone.
class TARN_EXPORT VRTPortChange {
 public:
  explicit VRTPortChange(std::shared_ptr<QCPort> port) : port_(std::move(port)) {
    if (port_) port_->willChangeValue();
  }
  ~VRTPortChange() {
    if (port_) port_->didChangeValue();
  }
  VRTPortChange(const VRTPortChange&) = delete;
  VRTPortChange& operator=(const VRTPortChange&) = delete;

 private:
  std::shared_ptr<QCPort> port_;
};

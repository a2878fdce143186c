#include "GradientEditor/VRTGradientPortReference.h"

#include "Ports/VRTObjects.h"

#include <utility>

VRTGradientPortReference::VRTGradientPortReference(VRTGradientPort* port) : port_(port) {
  if (!port) return;
  owner_ = port->weak_from_this();
  owned_ = !owner_.expired();
}

std::shared_ptr<VRTGradientPort> VRTGradientPortReference::lock() const {
  if (!owned_) return {std::shared_ptr<void>(), port_};
  const NSObjectRef owner = owner_.lock();
  return owner ? std::shared_ptr<VRTGradientPort>(owner, port_) : nullptr;
}

VRTChannelGradient* VRTGradientChannelOfPort(const VRTGradientPort* port) {
  if (!port) return nullptr;
  const auto value = std::dynamic_pointer_cast<VRTGradient>(port->rawValue());
  return value ? value->kxChannelGradient() : nullptr;
}

VRTGradientPortChange::VRTGradientPortChange(std::shared_ptr<VRTGradientPort> port) : port_(std::move(port)) {
  if (port_) port_->willChangeValue();
}

VRTGradientPortChange::~VRTGradientPortChange() {
  if (port_) port_->didChangeValue();
}

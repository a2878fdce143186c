#pragma once

#include "Ports/VRTPorts.h"

#include <memory>

class VRTChannelGradient;

// A port that is not retained. Once a port that shared pointers own is destroyed, the reference answers null; of a port
// that nobody owns so (a local variable, say) the caller sees to it that it lives longer than the reference.
class TARN_EXPORT VRTGradientPortReference {
 public:
  VRTGradientPortReference() = default;
  explicit VRTGradientPortReference(VRTGradientPort* port);

  // Keeps the port alive for as long as the answer is held, where it can.
  std::shared_ptr<VRTGradientPort> lock() const;

 private:
  VRTGradientPort* port_ = nullptr;
  std::weak_ptr<NSObject> owner_;
  bool owned_ = false;
};

// The gradient of the port's current value; null for a null or empty port.
TARN_EXPORT VRTChannelGradient* VRTGradientChannelOfPort(const VRTGradientPort* port);

// One change of the port's value in place: willChangeValue now, didChangeValue when it ends. A null port is left alone.
class TARN_EXPORT VRTGradientPortChange {
 public:
  explicit VRTGradientPortChange(std::shared_ptr<VRTGradientPort> port);
  ~VRTGradientPortChange();
  VRTGradientPortChange(const VRTGradientPortChange&) = delete;
  VRTGradientPortChange& operator=(const VRTGradientPortChange&) = delete;

 private:
  std::shared_ptr<VRTGradientPort> port_;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Registry/VRTNodeManager.h"

// The names under which an earlier generation of the framework knew its classes. Each behaves exactly as its
// superclass; archives that name them decode, and ports of either generation take values of either.

// VRTNodeManager under its older name.
class TARN_EXPORT TarnEffectManager : public VRTNodeManager {
 public:
  // Nothing: the shared manager is made once, by VRTNodeManager, whichever of the two classes is used first.
  static void initialize();
  std::string className() const override;
};

// VRTGradientPort under its older name.
class TARN_EXPORT TarnGradientPort : public VRTGradientPort {
 public:
  using VRTGradientPort::VRTGradientPort;
  std::string className() const override;
};

// VRTHistogramPort under its older name.
class TARN_EXPORT TarnHistogramPort : public VRTHistogramPort {
 public:
  using VRTHistogramPort::VRTHistogramPort;
  std::string className() const override;
};

// VRTOpaqueDataPort under its older name.
class TARN_EXPORT TarnOpaqueDataPort : public VRTOpaqueDataPort {
 public:
  using VRTOpaqueDataPort::VRTOpaqueDataPort;
  std::string className() const override;
};

// VRTGradient under its older name.
class TARN_EXPORT TarnGradient : public VRTGradient {
 public:
  std::string className() const override;
};

// VRTHistogram under its older name.
class TARN_EXPORT TarnHistogram : public VRTHistogram {
 public:
  std::string className() const override;
};

// VRTOpaqueData under its older name.
class TARN_EXPORT TarnOpaqueData : public VRTOpaqueData {
 public:
  std::string className() const override;
};

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPort.h"

#include <functional>
#include <string>

class NSTarnView;
class VRTOpaqueDataPort;

// How an inspector gets the editor of a port's parameter.
class TARN_EXPORT ParameterView {
 public:
  virtual ~ParameterView();
  // A new editor, owned by the caller, or null when the port has none (always null until an editors library has
  // registered its factories).
  virtual NSTarnView* setupParameterView() = 0;
  virtual void resetParameterView(NSTarnView* view) = 0;  // does nothing in all three classes
};

// Registered by the library that makes editors; a null factory takes the registration back. Keyed by the port class.
using VRTParameterViewFactory = std::function<NSTarnView*(QCObjectPort& port)>;
TARN_EXPORT void VRTRegisterParameterViewFactory(const std::string& portClass, VRTParameterViewFactory factory);

// Carries a VRTGradient.
class TARN_EXPORT VRTGradientPort : public QCObjectPort, public ParameterView {
 public:
  using QCObjectPort::QCObjectPort;
  std::string className() const override { return "VRTGradientPort"; }
  std::string objectClass() const override { return "VRTGradient"; }
  NSTarnView* setupParameterView() override;
  void resetParameterView(NSTarnView* view) override;
};

// Carries a VRTHistogram: levels.
class TARN_EXPORT VRTHistogramPort : public QCObjectPort, public ParameterView {
 public:
  using QCObjectPort::QCObjectPort;
  std::string className() const override { return "VRTHistogramPort"; }
  std::string objectClass() const override { return "VRTHistogram"; }
  NSTarnView* setupParameterView() override;
  void resetParameterView(NSTarnView* view) override;
};

// Implemented by patches that bring their own editor for their opaque data.
class TARN_EXPORT VRTOpaqueDataViewing {
 public:
  virtual ~VRTOpaqueDataViewing();
  // A new editor for the port, owned by the caller, or null.
  virtual NSTarnView* viewForOpaqueDataPort(VRTOpaqueDataPort* port) = 0;
};

// Carries a VRTOpaqueData.
class TARN_EXPORT VRTOpaqueDataPort : public QCObjectPort, public ParameterView {
 public:
  using QCObjectPort::QCObjectPort;
  std::string className() const override { return "VRTOpaqueDataPort"; }
  std::string objectClass() const override { return "VRTOpaqueData"; }
  NSTarnView* setupParameterView() override;  // viewForOpaqueDataPort() of the port's node, or null
  void resetParameterView(NSTarnView* view) override;
};

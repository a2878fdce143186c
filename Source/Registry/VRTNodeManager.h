// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/GFNodeManager.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The namespace of the framework's nodes.
inline constexpr std::string_view VRTNodeNamespace = "org.vorto.framework.nodes";

// The nodes of the framework's own namespace: the effects. The first use of the class, be it manager() or the making of
// an object, makes the shared manager and loads the plug-ins of
//   /Library/Application Support/Hollin/Internal Plug-Ins/Vorto
//   /Library/Plug-Ins/Vorto
//   ~/Library/Plug-Ins/Vorto
// in this order, the home folder being $HOME or, without it, that of the user database; without either the third is
// passed over. A plug-in may call manager() while it is loaded. Further objects that are given init() load the
// folders again, for themselves; the shared one stays.
class TARN_EXPORT VRTNodeManager : public GFNodeManager {
 public:
  // The shared manager, made at its first use.
  static std::shared_ptr<VRTNodeManager> manager();
  // The once-only step on first use, run by manager() and by the constructor: makes the shared manager. Safe to call
  // from inside itself, and any number of times.
  static void initialize();

  VRTNodeManager();
  ~VRTNodeManager() override;
  std::string className() const override { return "VRTNodeManager"; }
  bool init();  // initWithNamespace() with the framework's own
  bool initWithNamespace(const std::string& nodeNamespace) override;

  // Names in the order of this manager's nodeNames(), by kind: "filter", "transition", "generator", "blendMode". Which
  // kinds a name is of, the shared manager tells.
  void addEffectsWithProtocol(std::string_view kind, std::vector<std::string>& names);
  std::vector<std::string> filterNames();
  std::vector<std::string> transitionNames();
  std::vector<std::string> generatorNames();
  std::vector<std::string> blendModeNames();

  const PropertyList* nodeAttributesWithName(std::string_view name) override;  // falls back to the built-in patches
  // Made by instantiateNodeWithName() in a subclass that is a GFNodeInstantiating; falls back to the built-in patches.
  std::shared_ptr<QCPatch> nodeInstanceWithName(std::string_view name) override;

  // Slots that the host fills and reads back. Not retained: the host keeps the object alive.
  NSObject* imageSampler() const { return _imageSampler; }
  void setImageSampler(NSObject* sampler) { _imageSampler = sampler; }
  NSObject* inputSampler() const { return _inputSampler; }
  void setInputSampler(NSObject* sampler) { _inputSampler = sampler; }

 private:
  NSObject* _imageSampler = nullptr;
  NSObject* _inputSampler = nullptr;
};

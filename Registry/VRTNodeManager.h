#pragma once

#include "Platform/QuartzComposer/GFNodeManager.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The nodes of the framework's own namespace: the effects. The first use makes the shared manager and loads the
// plug-ins of
//   /Library/Application Support/Hollin/Internal Plug-Ins/Vorto
//   /Library/Plug-Ins/Vorto
//   ~/Library/Plug-Ins/Vorto
// in this order.
class TARN_EXPORT VRTNodeManager : public GFNodeManager {
 public:
  static std::shared_ptr<VRTNodeManager> manager();

  VRTNodeManager();
  ~VRTNodeManager() override;
  std::string className() const override { return "VRTNodeManager"; }
  bool init();  // initWithNamespace() with the framework's own
  bool initWithNamespace(const std::string& nodeNamespace) override;

  // Names in the order of nodeNames(), by kind: "filter", "transition", "generator", "blendMode".
  void addEffectsWithProtocol(std::string_view kind, std::vector<std::string>& names);
  std::vector<std::string> filterNames();
  std::vector<std::string> transitionNames();
  std::vector<std::string> generatorNames();
  std::vector<std::string> blendModeNames();

  const PropertyList* nodeAttributesWithName(std::string_view name) override;  // falls back to the built-in patches
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

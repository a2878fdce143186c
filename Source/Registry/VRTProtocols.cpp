// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/VRTProtocols.h"

#include "Platform/QuartzComposer/QCPatch.h"

#include <utility>

namespace {

const PropertyList* kindEntry(const QCPatch& patch, const char* kind) {
  const PropertyList* protocols = patch.attributes().find("protocols");
  return protocols ? protocols->find(kind) : nullptr;
}

QCPort* portInRole(const QCPatch& patch, const char* kind, const char* role) {
  const PropertyList* roles = kindEntry(patch, kind);
  const PropertyList* key = roles ? roles->find(role) : nullptr;
  return key ? patch.portForKey(key->stringValue()) : nullptr;
}

VortoExecutionContextProvider& provider() {
  static VortoExecutionContextProvider registered;
  return registered;
}

}  // namespace

bool isVortoGenerator(const QCPatch& patch) {
  return kindEntry(patch, "generator") != nullptr;
}

QCPort* generatorOutputImagePort(const QCPatch& patch) {
  return portInRole(patch, "generator", "outputImagePort");
}

bool isVortoFilter(const QCPatch& patch) {
  return kindEntry(patch, "filter") != nullptr;
}

QCPort* filterInputImagePort(const QCPatch& patch) {
  return portInRole(patch, "filter", "inputImagePort");
}

QCPort* filterOutputImagePort(const QCPatch& patch) {
  return portInRole(patch, "filter", "outputImagePort");
}

bool isVortoBlendMode(const QCPatch& patch) {
  return kindEntry(patch, "blendMode") != nullptr;
}

QCPort* blendModeInputImageBackgroundPort(const QCPatch& patch) {
  return portInRole(patch, "blendMode", "inputBackgroundImagePort");
}

QCPort* blendModeInputImageForegroundPort(const QCPatch& patch) {
  return portInRole(patch, "blendMode", "inputForegroundImagePort");
}

QCPort* blendModeOutputImagePort(const QCPatch& patch) {
  return portInRole(patch, "blendMode", "outputImagePort");
}

bool isVortoTransition(const QCPatch& patch) {
  return kindEntry(patch, "transition") != nullptr;
}

QCPort* transitionInputImageAPort(const QCPatch& patch) {
  return portInRole(patch, "transition", "inputImageAPort");
}

QCPort* transitionInputImageBPort(const QCPatch& patch) {
  return portInRole(patch, "transition", "inputImageBPort");
}

QCPort* transitionInputTimePort(const QCPatch& patch) {
  return portInRole(patch, "transition", "inputTimePort");
}

QCPort* transitionOutputImagePort(const QCPatch& patch) {
  return portInRole(patch, "transition", "outputImagePort");
}

VortoExecutionContext::~VortoExecutionContext() = default;

VortoRuntime::~VortoRuntime() = default;

VortoExecutionContext* VortoRuntime::vortoExecutionContext() {
  return nullptr;
}

void VortoSetExecutionContextProvider(VortoExecutionContextProvider newProvider) {
  provider() = std::move(newProvider);
}

VortoExecutionContext* vortoExecutionContext(QCPatch& patch) {
  if (auto* runtime = dynamic_cast<VortoRuntime*>(&patch)) return runtime->vortoExecutionContext();
  const VortoExecutionContextProvider current = provider();  // it may replace itself while it runs
  return current ? current(patch) : nullptr;
}

// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/VRTNodeManager.h"

#include "Platform/Foundation/NSClassTable.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace {

const NSClassRegistration kRegisteredManager("VRTNodeManager", "GFNodeManager",
                                             [] { return std::make_shared<VRTNodeManager>(); });

// Empty unless there is one with an absolute path: a relative one would load code from wherever the process stands.
std::string homeFolder() {
  const char* home = std::getenv("HOME");
  if (!home || !*home) {
    const passwd* user = getpwuid(getuid());
    home = user ? user->pw_dir : nullptr;
  }
  return home && *home == '/' ? home : "";
}

// The folder itself unless it starts with a tilde; empty when there is no home folder to put in its place.
std::string expandingTilde(const std::string& folder) {
  if (!folder.starts_with("~/")) {
    return folder;
  }
  const std::string home = homeFolder();
  return home.empty() ? home : home + folder.substr(1);
}

}  // namespace

std::shared_ptr<VRTNodeManager> VRTNodeManager::manager() {
  initialize();
  return std::dynamic_pointer_cast<VRTNodeManager>(managerForNodeNamespace(VRTNodeNamespace));
}

void VRTNodeManager::initialize() {
  static bool begun = false;
  if (begun) {
    return;
  }
  begun = true;
  std::make_shared<VRTNodeManager>()->init();  // the table of managers keeps it
}

VRTNodeManager::VRTNodeManager() {
  initialize();
}

VRTNodeManager::~VRTNodeManager() = default;

bool VRTNodeManager::init() {
  return initWithNamespace(std::string(VRTNodeNamespace));
}

bool VRTNodeManager::initWithNamespace(const std::string& nodeNamespace) {
  if (!GFNodeManager::initWithNamespace(nodeNamespace)) {
    return false;
  }
  const std::vector<std::string> extensions{"plugin", "qtz"};
  for (const char* folder : {"/Library/Application Support/Hollin/Internal Plug-Ins/Vorto", "/Library/Plug-Ins/Vorto",
                             "~/Library/Plug-Ins/Vorto"}) {
    const std::string expanded = expandingTilde(folder);
    if (!expanded.empty()) {
      loadPlugInsInFolder(expanded, extensions);
    }
  }
  return true;
}

void VRTNodeManager::addEffectsWithProtocol(std::string_view kind, std::vector<std::string>& names) {
  for (const std::string& name : nodeNames()) {
    const std::shared_ptr<VRTNodeManager> shared = manager();
    const PropertyList* attributes = shared ? shared->nodeAttributesWithName(name) : nullptr;
    const PropertyList* protocols = attributes ? attributes->find("protocols") : nullptr;
    if (protocols && protocols->find(kind)) {
      names.push_back(name);
    }
  }
}

std::vector<std::string> VRTNodeManager::filterNames() {
  std::vector<std::string> names;
  addEffectsWithProtocol("filter", names);
  return names;
}

std::vector<std::string> VRTNodeManager::transitionNames() {
  std::vector<std::string> names;
  addEffectsWithProtocol("transition", names);
  return names;
}

std::vector<std::string> VRTNodeManager::generatorNames() {
  std::vector<std::string> names;
  addEffectsWithProtocol("generator", names);
  return names;
}

std::vector<std::string> VRTNodeManager::blendModeNames() {
  std::vector<std::string> names;
  addEffectsWithProtocol("blendMode", names);
  return names;
}

const PropertyList* VRTNodeManager::nodeAttributesWithName(std::string_view name) {
  const PropertyList* attributes = GFNodeManager::nodeAttributesWithName(name);
  return attributes ? attributes : QCPatch::patchAttributesWithName(name);
}

std::shared_ptr<QCPatch> VRTNodeManager::nodeInstanceWithName(std::string_view name) {
  auto* instantiating = dynamic_cast<GFNodeInstantiating*>(this);
  std::shared_ptr<QCPatch> node =
      instantiating ? instantiating->instantiateNodeWithName(name) : GFNodeManager::nodeInstanceWithName(name);
  return node ? node : QCPatch::patchWithName(name);
}

// SPDX-License-Identifier: BSD-3-Clause
// Looks for its manager and for nodes while it is loaded, and loads the folder that it is in.
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <filesystem>

namespace {

void registerNodes(GFNodeManager& manager) {
  const bool isFound = GFNodeManager::managerForNodeNamespace(manager.nodeNamespace()).get() == &manager;
  const std::string folder = std::filesystem::path(manager.pathOfNodeWithName("Good A")).parent_path().string();
  if (!folder.empty()) {
    manager.loadPlugInsInFolder(folder, {"plugin"});
  }
  PropertyList attributes;
  attributes.set("managerIsFound", PropertyList::boolean(isFound));
  PropertyList seen = PropertyList::array();
  for (const std::string& name : manager.nodeNames()) {
    seen.append(PropertyList::string(name));
  }
  attributes.set("seen", std::move(seen));
  manager.registerNodeWithName("Searching", attributes, [] { return std::make_shared<QCPatch>(); });
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)

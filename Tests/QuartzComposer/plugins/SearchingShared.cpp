// SPDX-License-Identifier: BSD-3-Clause
// Looks for the framework's own manager while that one is being made.
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Registry/VRTNodeManager.h"

namespace {

void registerNodes(GFNodeManager& manager) {
  PropertyList attributes;
  attributes.set("managerIsShared", PropertyList::boolean(VRTNodeManager::manager().get() == &manager));
  manager.registerNodeWithName("Searching Shared", attributes,
                               [attributes] { return std::make_shared<QCPatch>(attributes); });
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)

// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace {

void registerNodes(GFNodeManager& manager) {
  PropertyList attributes;
  attributes.set("description", PropertyList::string("from the good plug-in"));
  for (const char* name : {"Good A", "Good B"}) {
    manager.registerNodeWithName(name, attributes, [attributes] { return std::make_shared<QCPatch>(attributes); });
  }
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)

// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace {

void registerNodes(GFNodeManager& manager) {
  for (const char* name : {"Good A", "Duplicate B"}) {
    manager.registerNodeWithName(name, {}, [] { return std::make_shared<QCPatch>(); });
  }
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)

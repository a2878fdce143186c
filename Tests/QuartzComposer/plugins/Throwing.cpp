// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <stdexcept>

namespace {

// Asks in between, so that a composition which needs the node becomes complete before the node is taken back.
void registerNodes(GFNodeManager& manager) {
  manager.registerNodeWithName("Taken Back", {}, [] { return std::make_shared<QCPatch>(); });
  manager.nodeNames();
  throw std::runtime_error("no licence");
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)

// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/BlendModeOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

void registerMultiply(GFNodeManager& manager) {
  registerBlendMode<MultiplyMode>(
      manager, "Multiply",
      "Multiplies the foreground with the background, which darkens; white leaves the background as it is.");
}

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerMultiply)

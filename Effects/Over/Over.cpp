// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/BlendModeOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

void registerOver(GFNodeManager& manager) {
  registerBlendMode<OverMode>(manager, "Over", "Lays the foreground on the background.");
}

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerOver)

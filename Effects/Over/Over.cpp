// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/BlendModeOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

class OverPatch : public BlendModeOf<OverMode> {
 public:
  static PropertyList description() { return describe("Over", "Lays the foreground on the background."); }
  OverPatch() : BlendModeOf(description()) {}
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::OverPatch>)

// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/BlendModeOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

class MultiplyPatch : public BlendModeOf<MultiplyMode> {
 public:
  static PropertyList description() {
    return describe(
        "Multiply",
        "Multiplies the foreground with the background, which darkens; white leaves the background as it is.");
  }
  MultiplyPatch() : BlendModeOf(description()) {}
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::MultiplyPatch>)

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewReport.h"
#include "Host/Preview/PreviewSetup.h"
#include "Host/Rendering/RenderPlan.h"

#include <memory>
#include <vector>

namespace host {

// The frames that a preview has.
struct PreviewPlan {
  PreviewOpened::Timing timing = PreviewOpened::Timing::Still;
  std::unique_ptr<RenderPlan> frames;
  std::uint64_t start = 0;  // the one to begin with
};

// `clips`, by input: null where one is no clip; they outlive the plan. `isTimed`: the effect is one between stills that
// takes the time on a port. Throws Failure for frames that are missing or do not fit.
PreviewPlan previewPlan(const PreviewSetup& setup, EffectKind kind, bool isTimed, const Inputs& inputs,
                        const std::vector<const ClipInfo*>& clips);

}  // namespace host

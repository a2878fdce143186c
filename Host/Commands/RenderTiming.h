// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Commands/RenderCommand.h"
#include "Host/Rendering/Inputs.h"
#include "Host/Rendering/RenderPlan.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace host {

struct ClipInfo;

// "A-B", "A", or either with "xC".
struct ChunkedFrames {
  FrameRange frames;
  std::optional<std::uint32_t> chunk;  // how many frames a chunk has
};
ChunkedFrames parsedChunkedFrames(const std::string& text);  // throws Failure

// Which of a plan's frames are rendered: all, or those of a chunk.
struct PlanPart {
  std::uint64_t first = 0;
  std::uint64_t count = 0;
};

OutputKind outputKindOf(const RenderOptions& options);  // throws Failure for a format that nobody knows

// The time of a run, from the options and what the inputs are.
class RenderTiming {
 public:
  // `clips`, by input: null where one is no clip; they outlive the plan. Throws Failure for what does not fit.
  RenderTiming(const RenderOptions& options, EffectKind kind, const Inputs& inputs,
               const std::vector<const ClipInfo*>& clips);

  const RenderPlan& plan() const { return *plan_; }
  bool isSingle() const { return isSingle_; }  // one picture, without a number
  PlanPart part() const { return part_; }

  // For a clip as output: whose audio goes into it; nothing when no input has any, or none is wanted.
  std::optional<ClipAudio> audio() const { return audio_; }

 private:
  std::unique_ptr<RenderPlan> plan_;
  bool isSingle_ = false;
  PlanPart part_;
  std::optional<ClipAudio> audio_;
};

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewPlan.h"

#include "Host/Messages/Json.h"
#include "Host/Rendering/ClipPlan.h"
#include "Host/Rendering/FrameTimes.h"
#include "Host/Rendering/SequencePlan.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr std::uint64_t kSteps = 1000;
constexpr double kUsualRate = 25;

Rational fraction(double rate) {
  return parsedFrameRate(numberText(rate)).value_or(Rational{25, 1});
}

// A transition between stills, from 0 to 1.
class StepsPlan : public RenderPlan {
 public:
  StepsPlan(std::size_t inputs, const Rational& rate) : inputs_(inputs), rate_(rate) {}
  std::uint64_t count() const override { return kSteps + 1; }
  PlannedFrame frame(std::uint64_t index) const override {
    PlannedFrame result;
    result.index = index;
    result.sources.resize(inputs_);
    result.time = static_cast<double>(index) / kSteps;
    result.shown = static_cast<std::int64_t>(index);
    return result;
  }
  Rational rate() const override { return rate_; }
  Rational timeBase() const override { return unitOfRate(rate_); }
  std::int64_t end() const override { return kSteps + 1; }
  bool isEven() const override { return true; }

 private:
  std::size_t inputs_;
  Rational rate_;
};

std::unique_ptr<RenderPlan> playedPlan(const PreviewSetup& setup, EffectKind kind, const Inputs& inputs,
                                       const std::vector<const ClipInfo*>& clips) {
  ClipWishes wishes;
  wishes.kind = kind;
  wishes.time = setup.time;
  wishes.frames = setup.frames;
  if (setup.rate) wishes.sequenceRate = fraction(*setup.rate);
  std::vector<PlayedInput> played;
  for (std::size_t i = 0; i < inputs.count(); ++i) {
    PlayedInput input{inputs.path(i), clips[i], std::nullopt};
    if (inputs.kind(i) == Inputs::Kind::Sequence) input.sequence = inputs.existingFramesOf(i);
    played.push_back(std::move(input));
  }
  return std::make_unique<ClipPlan>(std::move(played), wishes);
}

std::unique_ptr<RenderPlan> numberedPlan(const PreviewSetup& setup, EffectKind kind, const Inputs& inputs) {
  const FrameRange frames = inputs.checkedFrames(setup.frames);
  std::vector<std::optional<FrameRange>> sources(inputs.count());
  for (std::size_t i = 0; i < inputs.count(); ++i) {
    if (inputs.kind(i) == Inputs::Kind::Sequence) sources[i] = frames;
  }
  const double rate = setup.rate.value_or(kUsualRate);
  return std::make_unique<SequencePlan>(frames, std::move(sources),
                                        SequencePlan::Wishes{kind, rate, fraction(rate), setup.time});
}

}  // namespace

PreviewPlan previewPlan(const PreviewSetup& setup, EffectKind kind, bool isTimed, const Inputs& inputs,
                        const std::vector<const ClipInfo*>& clips) {
  using Timing = PreviewOpened::Timing;
  if (inputs.haveClip()) return {Timing::Frames, playedPlan(setup, kind, inputs, clips)};
  if (inputs.areSequence() || setup.frames) return {Timing::Frames, numberedPlan(setup, kind, inputs)};
  if (!isTimed) return {Timing::Still, numberedPlan(setup, kind, inputs)};
  const double start = std::clamp(setup.time.value_or(0), 0.0, 1.0);
  return {Timing::Steps, std::make_unique<StepsPlan>(inputs.count(), fraction(setup.rate.value_or(kUsualRate))),
          static_cast<std::uint64_t>(start * kSteps + 0.5)};
}

}  // namespace host

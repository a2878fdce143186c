// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/Rendering/RenderPlan.h"
#include "Host/Rendering/SequencePlan.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct ClipInfo;

// An input of a run in which clips play. `clip` outlives the plan.
struct PlayedInput {
  std::string path;
  const ClipInfo* clip = nullptr;
  std::optional<FrameRange> sequence;  // files that play at the plan's rate; neither: a still
};

// What the user says of time.
struct ClipWishes {
  EffectKind kind = EffectKind::Filter;
  std::optional<double> time = std::nullopt;
  std::optional<Rational> fps = std::nullopt;  // of the result
  bool isRetimed = false;                      // with fps: the same frames at that rate, instead of the same duration
  std::optional<Rational> sequenceRate = std::nullopt;  // else the leading clip's
  std::optional<double> start = std::nullopt;           // seconds from the start of all
  std::optional<double> duration = std::nullopt;        // seconds
  std::optional<FrameRange> frames = std::nullopt;      // of the whole, counted from 0; not with start and duration
  WhenShort whenShort = WhenShort::Hold;
};

// All inputs begin at once, and the first clip leads (without one the first sequence): its frames are rendered one by
// one at their times, and on at its rate while other inputs last longer; or frames at the wished rate. The others show
// the frame that is nearest in time, the earlier of two.
class ClipPlan : public RenderPlan {
 public:
  // Throws Failure when nothing is left of start, duration and frames, and for more than 2^25 frames in all.
  ClipPlan(std::vector<PlayedInput> inputs, const ClipWishes& wishes);

  std::uint64_t count() const override { return last_ - first_ + 1; }
  PlannedFrame frame(std::uint64_t index) const override;
  Rational rate() const override { return rate_; }
  Rational timeBase() const override { return timeBase_; }
  std::int64_t end() const override { return shown(last_ + 1) - shown(first_); }
  bool isEven() const override;

  // Of the first frame and of all, in the time of the inputs.
  double startSeconds() const { return seconds(first_); }
  double durationSeconds() const { return seconds(last_ + 1) - seconds(first_); }

 private:
  std::uint64_t framesOf(const PlayedInput& input) const;
  double durationOf(const PlayedInput& input) const;
  double wholeDuration() const;
  void checkLength(double duration) const;
  void choose(std::uint64_t whole);
  double seconds(std::uint64_t frame) const;      // of a frame of the whole, in the inputs' time
  std::int64_t shown(std::uint64_t frame) const;  // the same in units of the result's
  std::uint32_t sourceOf(const PlayedInput& input, double at) const;
  bool followsLeader() const { return !wishes_.fps || wishes_.isRetimed; }
  std::uint64_t firstNotBefore(double at, std::uint64_t whole) const;

  std::vector<PlayedInput> inputs_;
  ClipWishes wishes_;
  std::size_t leader_ = 0;
  Rational leaderRate_;
  Rational rate_;
  Rational timeBase_;
  std::uint64_t first_ = 0;  // of the whole
  std::uint64_t last_ = 0;
};

}  // namespace host

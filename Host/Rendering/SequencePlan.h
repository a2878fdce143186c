// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/RenderPlan.h"

#include <optional>
#include <vector>

namespace host {

// What an input shows after its last frame while another goes on: the last frame still, or its frames again from the
// first; or all end with the shortest.
enum class WhenShort { Hold, Loop, End };
std::optional<WhenShort> whenShortNamed(const std::string& name);  // "hold", "loop", "end"

// A picture, or the frames of numbered files: the number of the output's is that of the inputs'.
class SequencePlan : public RenderPlan {
 public:
  struct Wishes {
    EffectKind kind = EffectKind::Filter;
    double framesPerSecond = 25;                // that the effect's times are counted with
    Rational rate{25, 1};                       // the same as files state it
    std::optional<double> time = std::nullopt;  // for the effect, of all frames
  };
  // `sources`, by input: the frames that there are; nothing of stills. Where the wanted one comes before them the first
  // is shown, where it comes after them what `whenShort` says.
  SequencePlan(const FrameRange& frames, std::vector<std::optional<FrameRange>> sources, const Wishes& wishes,
               WhenShort whenShort = WhenShort::Hold);

  std::uint64_t count() const override { return frames_.count(); }
  PlannedFrame frame(std::uint64_t index) const override;
  Rational rate() const override { return wishes_.rate; }
  Rational timeBase() const override;
  std::int64_t end() const override { return static_cast<std::int64_t>(count()); }
  bool isEven() const override { return true; }

 private:
  FrameRange frames_;
  std::vector<std::optional<FrameRange>> sources_;
  Wishes wishes_;
  WhenShort whenShort_;
};

}  // namespace host

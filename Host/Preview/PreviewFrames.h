// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewClips.h"
#include "Host/Preview/PreviewPlan.h"
#include "Host/Preview/PreviewReport.h"
#include "Host/Preview/PreviewSetup.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Inputs.h"

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <vector>

namespace host {

// The inputs of the frames of a preview: read when they are wanted for the first time, and kept within a budget, so
// that another rendering of a frame decodes nothing.
class PreviewFrames {
 public:
  // Opens the inputs. `bytes`: how much is kept beside the frame that was used last. Throws Failure.
  PreviewFrames(const PreviewSetup& setup, const EffectRendering& effect, std::uint64_t bytes);

  PreviewOpened opened(const EffectRendering& effect) const;

  // A frame's inputs.
  struct Frame {
    PlannedFrame planned;
    InputPictures pictures;  // on one canvas
  };
  bool has(std::uint64_t frame) const;  // nothing need be read for it
  // Stays until the next call. Throws Failure for a frame that there is not, and for a file that cannot be read.
  const Frame& at(std::uint64_t frame);

  // The same, scaled so that results fit the size.
  PreviewInputs scaled(std::uint64_t frame, const PictureSize& size);

  const ColorSpace& space() const { return space_; }

 private:
  struct Kept {
    Frame frame;
    std::optional<PreviewInputs> scaled;  // the last
    PictureSize scaledFor;
    std::uint64_t bytes = 0;
  };
  Kept& keptAt(std::uint64_t frame);
  std::list<Kept>::const_iterator find(const PlannedFrame& planned) const;
  void makeRoom();

  const PreviewSetup setup_;
  const EffectKind kind_;
  Inputs inputs_;
  PreviewClips clips_;
  PreviewPlan plan_;
  std::vector<PictureInfo> firstInfos_;
  ColorSpace space_;
  std::uint64_t mostBytes_;
  std::list<Kept> kept_;  // the one that was used last comes first
};

}  // namespace host

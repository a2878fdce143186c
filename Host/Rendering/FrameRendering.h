// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/PictureWriting.h"
#include "Host/Pixels/Layouts.h"
#include "Host/Rendering/ClipFrames.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Inputs.h"
#include "Host/Rendering/RenderPlan.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// The fewest channels that hold all of them: gray where all are, with alpha where any has it. RGBA of none.
Channels commonChannels(const std::vector<std::shared_ptr<const PictureInfo>>& infos);

// What is rendered, of a command line that has been looked through.
struct RenderSetup {
  std::string effect;
  std::vector<std::string> inputs;
  std::vector<std::string> values;  // "port=value"
  std::vector<std::string> states;  // "port=FILE"
  Framing framing;
  std::optional<Depth> depth;
  std::optional<Layout> layout;
  OutputAlpha alpha = OutputAlpha::Keep;
  std::optional<Channels> channels;
  ColorWishes colors;
};

// What results are made for.
struct OutputDescription {
  std::string name;                                 // as messages call it
  std::function<FileFormat(Depth)> format;          // that pictures of a depth are written in
  std::optional<Channels> channels = std::nullopt;  // that all pictures have, where the first one decided it
};

// Renders frames, each without regard to those before it: the first frame of the plan alone decides depth and colors,
// by what its files say, so that the same frame becomes the same bytes in every process.
class FrameRendering {
 public:
  explicit FrameRendering(const RenderSetup& setup);  // effects are loaded; throws Failure

  EffectRendering& effect() { return effect_; }
  Inputs& inputs() { return inputs_; }
  const std::vector<std::string>& states() const { return states_; }  // "port=FILE", of presets their files

  // What the plan's first frame decides, which any process can find out; without it the first frame that is rendered
  // decides. `clips` outlives this, null where no input is a clip.
  void begin(const PlannedFrame& first, ClipFrames* clips, const OutputDescription& output);

  // The result, ready to be written.
  OutputPicture render(const PlannedFrame& frame, const OutputDescription& output);

 private:
  const RenderSetup setup_;
  EffectRendering effect_;
  const std::vector<std::string> states_;
  Inputs inputs_;
  ClipFrames* clips_ = nullptr;
};

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/RenderCommand.h"

#include "Host/Commands/OptionValues.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/FrameFiles.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Files/OutputFile.h"
#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Progress.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/Inputs.h"
#include "Host/Rendering/Parameters.h"
#include "Platform/QuartzComposer/QCPatch.h"

namespace host {
namespace {

// The frames to render; one that has no number when neither input nor output is a sequence.
std::optional<FrameRange> framesToRender(const RenderOptions& options, const Inputs& inputs,
                                         const std::optional<FramePattern>& output) {
  if (!output && (inputs.areSequence() || !options.frames.empty())) {
    throw Failure(ExitCode::Usage, "the output of a sequence needs the frame's number in its name, as in out.%04d.png");
  }
  if (!output) return std::nullopt;
  if (options.frames.empty() && !inputs.areSequence()) {
    throw Failure(ExitCode::Usage, "--output " + options.output + " is a sequence: give its frames with --frames A-B");
  }
  return inputs.checkedFrames(options.frames.empty() ? std::nullopt : std::optional(parsedFrameRange(options.frames)));
}

// How a result is made into a picture to be written.
struct OutputConversion {
  std::optional<Layout> layout;
  OutputAlpha alpha = OutputAlpha::Keep;
};

Picture rendered(EffectRendering& rendering, const InputPictures& pictures, double time,
                 const OutputConversion& conversion) {
  rendering.connect(pictures);
  BitmapRef result = rendering.result(time);
  if (conversion.layout) result = throughLayout(result, *conversion.layout, "the result");
  return rendering.pictureOf(*outputConverted(result, conversion.alpha));
}

void renderSequence(const RenderOptions& options, EffectRendering& rendering, Inputs& inputs,
                    const FramePattern& output, const FrameRange& frames, const OutputConversion& conversion) {
  Progress progress(frames.count());
  for (std::uint64_t frame = frames.first; frame <= frames.last; ++frame) {
    const auto number = static_cast<std::uint32_t>(frame);
    const double time = options.time.value_or(timeOfFrame(rendering.kind(), frames, frame, options.rate));
    Picture picture = rendered(rendering, inputs.picturesAt(number), time, conversion);
    writeImageFile(output.path(number), std::move(picture.pixels), picture.depth);
    progress.finished(frame - frames.first + 1);
  }
}

}  // namespace

void runRender(const RenderOptions& options) {
  checkTime(options.time);
  checkRate(options.rate);
  const auto size = parsedSize(options.size);
  const OutputConversion conversion{parsedLayout(options.layout), parsedOutputAlpha(options.alpha)};
  auto depth = parsedDepth(options.depth);
  if (depth && conversion.layout) {
    throw Failure(ExitCode::Usage, "--pixel-format " + options.layout + " has its own depth: leave --depth out");
  }
  if (conversion.layout) depth = conversion.layout->depth;
  fileFormatOf(options.output);
  const auto outputPattern = framePattern(options.output);
  checkOutput(options.output);

  loadEffects();
  EffectRendering rendering(options.effect, options.inputs.size(), size, depth);
  setParameters(rendering, options.values, options.states);
  Inputs inputs(options.inputs, depth, conversion.layout);
  const auto frames = framesToRender(options, inputs, outputPattern);
  if (frames) {
    renderSequence(options, rendering, inputs, *outputPattern, *frames, conversion);
  } else {
    Picture picture = rendered(rendering, inputs.pictures(), options.time.value_or(0), conversion);
    writeImageFile(options.output, std::move(picture.pixels), picture.depth);
  }
}

}  // namespace host

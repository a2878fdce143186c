#include "Host/RenderCommand.h"

#include "Host/CloseNames.h"
#include "Host/EffectRendering.h"
#include "Host/Effects.h"
#include "Host/Failure.h"
#include "Host/FileFormat.h"
#include "Host/FrameFiles.h"
#include "Host/ImageFileLoader.h"
#include "Host/Inputs.h"
#include "Host/OutputFile.h"
#include "Host/Parameters.h"
#include "Host/Progress.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <cmath>
#include <cstdio>

namespace host {
namespace {

std::optional<PictureSize> parsedSize(const std::string& text) {
  if (text.empty()) return std::nullopt;
  unsigned width = 0;
  unsigned height = 0;
  int used = 0;
  const bool digitsOnly = text.find_first_not_of("0123456789x") == std::string::npos && text.size() <= 21;
  if (!digitsOnly || std::sscanf(text.c_str(), "%9ux%9u%n", &width, &height, &used) != 2 ||
      static_cast<std::size_t>(used) != text.size() || width == 0 || height == 0) {
    throw Failure(ExitCode::Usage, "--size " + text + ": give a width and a height in pixels, as in 1920x1080");
  }
  return PictureSize{width, height};
}

std::optional<Depth> parsedDepth(const std::string& text) {
  if (text.empty()) return std::nullopt;
  const auto depth = depthNamed(text);
  if (!depth) throw Failure(ExitCode::Usage, "--depth " + text + ": give 8, 16, half or float");
  return depth;
}

void checkNumbers(const RenderOptions& options) {
  if (options.time && !std::isfinite(*options.time)) throw Failure(ExitCode::Usage, "--time: give a finite number");
  if (!std::isfinite(options.rate) || options.rate <= 0) {
    throw Failure(ExitCode::Usage, "--rate: give a number of frames per second above 0");
  }
}

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

// Transitions run from 0 at the first frame to 1 at the last; other effects in seconds from the first frame on.
double timeOfFrame(const RenderOptions& options, EffectKind kind, const FrameRange& frames, std::uint64_t frame) {
  if (options.time) return *options.time;
  const auto since = static_cast<double>(frame - frames.first);
  if (kind != EffectKind::Transition) return since / options.rate;
  return frames.count() > 1 ? since / static_cast<double>(frames.last - frames.first) : 0;
}

void renderSequence(const RenderOptions& options, EffectRendering& rendering, Inputs& inputs,
                    const FramePattern& output, const FrameRange& frames) {
  Progress progress(frames.count());
  for (std::uint64_t frame = frames.first; frame <= frames.last; ++frame) {
    const auto number = static_cast<std::uint32_t>(frame);
    const double time = timeOfFrame(options, rendering.kind(), frames, frame);
    Picture picture = rendering.render(inputs.picturesAt(number), time);
    writeImageFile(output.path(number), std::move(picture.pixels), picture.depth);
    progress.finished(frame - frames.first + 1);
  }
}

}  // namespace

void runRender(const RenderOptions& options) {
  checkNumbers(options);
  const auto size = parsedSize(options.size);
  const auto depth = parsedDepth(options.depth);
  fileFormatOf(options.output);
  const auto outputPattern = framePattern(options.output);
  checkOutput(options.output);

  loadEffects();
  EffectRendering rendering(options.effect, options.inputs.size(), size, depth);
  setParameters(rendering, options.values, options.states);
  Inputs inputs(options.inputs, depth);
  const auto frames = framesToRender(options, inputs, outputPattern);
  if (frames) {
    renderSequence(options, rendering, inputs, *outputPattern, *frames);
  } else {
    Picture picture = rendering.render(inputs.pictures(), options.time.value_or(0));
    writeImageFile(options.output, std::move(picture.pixels), picture.depth);
  }
}

}  // namespace host

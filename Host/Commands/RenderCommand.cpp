// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/RenderCommand.h"

#include "Host/Clips/OpenClips.h"
#include "Host/Commands/OptionValues.h"
#include "Host/Commands/RenderTiming.h"
#include "Host/Files/PictureSink.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Progress.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/FrameRendering.h"

namespace host {
namespace {

RenderSetup setupOf(const RenderOptions& options) {
  RenderSetup setup;
  setup.effect = options.effect;
  setup.inputs = options.inputs;
  setup.values = options.values;
  setup.states = options.states;
  setup.framing = parsedFraming(options.framing);
  setup.layout = parsedLayout(options.layout);
  setup.alpha = parsedOutputAlpha(options.alpha);
  setup.channels = parsedChannels(options.channels);
  setup.depth = parsedDepth(options.depth);
  if (setup.depth && setup.layout) {
    throw Failure(ExitCode::Usage, "--pixel-format " + options.layout + " has its own depth: leave --depth out");
  }
  if (setup.layout) setup.depth = setup.layout->depth;
  setup.colors = parsedColors(options.colors, options.inputs);
  return setup;
}

// In this process, one after another.
void renderHere(FrameRendering& rendering, const RenderTiming& timing, PictureSink& sink) {
  const RenderPlan& plan = timing.plan();
  const PlanPart part = timing.part();
  const OutputDescription output{sink.name(), [&](Depth depth) { return sink.format(depth); }};
  if (!timing.isSingle()) rendering.begin(plan.frame(0), nullptr, output);
  Progress progress(part.count);
  for (std::uint64_t done = 0; done < part.count; ++done) {
    const PlannedFrame frame = plan.frame(part.first + done);
    sink.write(rendering.render(frame, output), frame.number);
    progress.finished(done + 1);
  }
  tellOfClipping(sink.clippedPixels(), rendering.inputs().colors().clippedSpace());
}

}  // namespace

void runRender(const RenderOptions& options) {
  checkTime(options.time);
  if (options.timing.rate) checkRate(*options.timing.rate);
  const RenderSetup setup = setupOf(options);
  PictureSink sink(options.output, options.encoding.format, parsedSettings(options.encoding),
                   options.timing.rate.value_or(25), options.isVerbose);

  loadEffects();
  FrameRendering rendering(setup);
  OpenClips clips(setup.inputs.size());
  const RenderTiming timing(options, rendering.effect().kind(), rendering.inputs(), clips.infos());
  renderHere(rendering, timing, sink);
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/RenderCommand.h"

#include "Host/Commands/OptionValues.h"
#include "Host/Files/FrameFiles.h"
#include "Host/Files/PictureSink.h"
#include "Host/Files/PictureWriting.h"
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
  const bool isStream = options.output == "-";
  if (!output && !isStream && (inputs.areSequence() || !options.frames.empty())) {
    throw Failure(ExitCode::Usage, "the output of a sequence needs the frame's number in its name, as in out.%04d.png");
  }
  const bool isSequence = inputs.areSequence() || !options.frames.empty();
  if (!output && !(isStream && isSequence)) return std::nullopt;
  if (options.frames.empty() && !inputs.areSequence()) {
    throw Failure(ExitCode::Usage, "--output " + options.output + " is a sequence: give its frames with --frames A-B");
  }
  return inputs.checkedFrames(options.frames.empty() ? std::nullopt : std::optional(parsedFrameRange(options.frames)));
}

// How a result is made into a picture to be written.
struct OutputConversion {
  std::optional<Layout> layout;
  OutputAlpha alpha = OutputAlpha::Keep;
  std::optional<Channels> channels;
};

// What the files of the inputs have together.
Channels channelsOf(const InputPictures& pictures) {
  bool gray = !pictures.infos.empty();
  bool alpha = pictures.infos.empty();
  for (const auto& info : pictures.infos) {
    gray = gray && isGray(info->channels);
    alpha = alpha || hasAlpha(info->channels);
  }
  if (gray) return alpha ? Channels::GrayAlpha : Channels::Gray;
  return alpha ? Channels::RGBA : Channels::RGB;
}

OutputPicture rendered(EffectRendering& rendering, const InputPictures& pictures, double time,
                       const OutputConversion& conversion, const PictureSink& sink, ColorFlow& colors) {
  rendering.connect(pictures);
  BitmapRef result = rendering.result(time);
  if (conversion.layout) result = throughLayout(result, *conversion.layout, "the result");
  OutputPicture picture;
  picture.bitmap = outputConverted(result, conversion.alpha);
  picture.depth = rendering.depthOf(*picture.bitmap);
  picture.channels = conversion.channels ? *conversion.channels : keptChannels(*picture.bitmap, channelsOf(pictures));
  picture.areChannelsTold = conversion.channels.has_value();
  if (!pictures.infos.empty()) picture.metadata = pictures.infos[0]->metadata;
  if (conversion.alpha == OutputAlpha::Gray) {
    picture.metadata.color = {};  // alpha is no color
  } else {
    colors.toOutput(picture, sink.format(picture.depth), sink.name());
  }
  return picture;
}

void renderSequence(const RenderOptions& options, EffectRendering& rendering, Inputs& inputs, PictureSink& sink,
                    const FrameRange& frames, const OutputConversion& conversion) {
  Progress progress(frames.count());
  for (std::uint64_t frame = frames.first; frame <= frames.last; ++frame) {
    const auto number = static_cast<std::uint32_t>(frame);
    const double time = options.time.value_or(timeOfFrame(rendering.kind(), frames, frame, options.rate));
    sink.write(rendered(rendering, inputs.picturesAt(number), time, conversion, sink, inputs.colors()), number);
    progress.finished(frame - frames.first + 1);
  }
}

}  // namespace

void runRender(const RenderOptions& options) {
  checkTime(options.time);
  checkRate(options.rate);
  const Framing framing = parsedFraming(options.framing);
  const OutputConversion conversion{parsedLayout(options.layout), parsedOutputAlpha(options.alpha),
                                    parsedChannels(options.channels)};
  auto depth = parsedDepth(options.depth);
  if (depth && conversion.layout) {
    throw Failure(ExitCode::Usage, "--pixel-format " + options.layout + " has its own depth: leave --depth out");
  }
  if (conversion.layout) depth = conversion.layout->depth;
  const ColorWishes colors = parsedColors(options.colors, options.inputs);
  const auto outputPattern = framePattern(options.output);
  PictureSink sink(options.output, options.encoding.format, parsedSettings(options.encoding), options.rate,
                   options.isVerbose);

  loadEffects();
  EffectRendering rendering(options.effect, options.inputs.size(), framing, depth);
  setParameters(rendering, options.values, options.states);
  Inputs inputs(options.inputs, depth, conversion.layout, colors);
  const auto frames = framesToRender(options, inputs, outputPattern);
  if (frames) {
    renderSequence(options, rendering, inputs, sink, *frames, conversion);
  } else {
    const double time = options.time.value_or(0);
    sink.write(rendered(rendering, inputs.pictures(), time, conversion, sink, inputs.colors()), 0);
  }
  inputs.colors().tellOfClipping(sink.clippedPixels());
}

}  // namespace host

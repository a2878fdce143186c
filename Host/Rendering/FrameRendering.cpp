// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/FrameRendering.h"

#include "Host/Clips/ClipInfo.h"
#include "Host/Rendering/Parameters.h"

#include <utility>

namespace host {
Channels commonChannels(const std::vector<std::shared_ptr<const PictureInfo>>& infos) {
  bool gray = !infos.empty();
  bool alpha = infos.empty();
  for (const auto& info : infos) {
    gray = gray && isGray(info->channels);
    alpha = alpha || hasAlpha(info->channels);
  }
  if (gray) return alpha ? Channels::GrayAlpha : Channels::Gray;
  return alpha ? Channels::RGBA : Channels::RGB;
}

FrameRendering::FrameRendering(const RenderSetup& setup)
    : setup_(setup),
      effect_(setup.effect, setup.inputs.size(), setup.framing, setup.depth),
      states_(statesWithFiles(effect_, setup.states)),
      inputs_(setup.inputs, setup.depth, setup.layout, setup.colors) {
  setParameters(effect_, setup.values, states_);
}

void FrameRendering::begin(const PlannedFrame& first, ClipFrames* clips, const OutputDescription& output) {
  clips_ = clips;
  inputs_.begin(first, clips);
  if (const auto depth = inputs_.depth(); depth && setup_.alpha != OutputAlpha::Gray) {
    inputs_.colors().expectOutput(output.format(*depth), *depth, setup_.channels, output.name);
  }
}

OutputPicture FrameRendering::render(const PlannedFrame& frame, const OutputDescription& output) {
  const InputPictures pictures = inputs_.picturesAt(frame, clips_);
  effect_.connect(pictures);
  BitmapRef result = effect_.result(frame.time);
  if (setup_.layout) result = throughLayout(result, *setup_.layout, "the result");
  OutputPicture picture;
  picture.bitmap = outputConverted(result, setup_.alpha);
  picture.depth = effect_.depthOf(*picture.bitmap);
  const std::optional<Channels> told = setup_.channels ? setup_.channels : output.channels;
  picture.channels = told ? *told : keptChannels(*picture.bitmap, commonChannels(pictures.infos));
  picture.areChannelsTold = setup_.channels.has_value();
  if (!pictures.infos.empty()) picture.metadata = pictures.infos[0]->metadata;
  if (setup_.alpha == OutputAlpha::Gray) {
    picture.metadata.color = {};  // alpha is no color
  } else {
    inputs_.colors().toOutput(picture, output.format(picture.depth), output.name);
  }
  picture.isConverted = picture.isConverted || inputs_.areHeldWider();
  return picture;
}

}  // namespace host

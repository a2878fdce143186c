// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewFrames.h"

#include "Host/Clips/TimeCodes.h"
#include "Host/Messages/Failure.h"
#include "Host/Preview/QuickSize.h"
#include "Host/Rendering/FrameTimes.h"
#include "Registry/VRTExecutionTraits.h"
#include "TarnCore/TCBitmap.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace host {
namespace {

PictureSize sizeOf(const VortoBitmap& bitmap) {
  return {bitmap.width, bitmap.height};
}

std::uint64_t bytesOf(const BitmapRef& bitmap) {
  return bitmap ? bitmap->allocSize : 0;
}

std::uint64_t bytesOf(const InputPictures& pictures) {
  const auto sum = [](const std::vector<BitmapRef>& bitmaps) {
    return std::accumulate(bitmaps.begin(), bitmaps.end(), std::uint64_t{0},
                           [](std::uint64_t total, const BitmapRef& bitmap) { return total + bytesOf(bitmap); });
  };
  return sum(pictures.bitmaps) + sum(pictures.fileBitmaps);
}

}  // namespace

PreviewFrames::PreviewFrames(const PreviewSetup& setup, const EffectRendering& effect, std::uint64_t bytes)
    : setup_(setup),
      kind_(effect.kind()),
      inputs_(setup.inputs, setup.depth, {}, setup.colors),
      clips_(inputs_),
      plan_(previewPlan(setup, effect.kind(), effect.roles().time, inputs_, clips_.infos())),
      firstInfos_(inputs_.begin(plan_.frames->frame(0), &clips_)),
      mostBytes_(bytes) {
  inputs_.keepFileBitmaps();
  space_ = inputs_.colors().workingSpace();
}

PreviewOpened PreviewFrames::opened(const EffectRendering& effect) const {
  const RenderPlan& plan = *plan_.frames;
  const PlannedFrame first = plan.frame(0);
  PreviewOpened opened;
  opened.kind = kind_;
  opened.keepsState = keepsState(const_cast<EffectRendering&>(effect).patch());
  opened.timing = plan_.timing;
  opened.count = plan.count();
  opened.start = plan_.start;
  opened.firstNumber = first.number;
  opened.rate = plan.rate();
  opened.timeBase = plan.timeBase();
  opened.end = plan.end();
  for (std::uint64_t i = 0; !plan.isEven() && i < plan.count(); ++i) opened.shown.push_back(plan.frame(i).shown);
  opened.depth = inputs_.depth();
  opened.space = space();
  const std::vector<const ClipInfo*> clips = clips_.infos();
  for (std::size_t i = 0; i < inputs_.count(); ++i) {
    PreviewInput input{inputs_.path(i), inputs_.kind(i), firstInfos_[i], nullptr};
    if (clips[i]) input.clip = std::make_shared<const ClipInfo>(*clips[i]);
    const auto& code = input.info.metadata.timeCode;
    if (code && !opened.timeCode && input.kind != Inputs::Kind::Still) {
      opened.timeCode = clips[i] ? advancedTimeCode(*code, valueOf(clips[i]->rate), first.sources[i]) : code;
    }
    opened.inputs.push_back(std::move(input));
  }
  return opened;
}

std::list<PreviewFrames::Kept>::const_iterator PreviewFrames::find(const PlannedFrame& planned) const {
  return std::ranges::find_if(kept_, [&](const Kept& kept) { return kept.frame.planned.sources == planned.sources; });
}

bool PreviewFrames::has(std::uint64_t frame) const {
  return frame < plan_.frames->count() && find(plan_.frames->frame(frame)) != kept_.end();
}

PreviewFrames::Kept& PreviewFrames::keptAt(std::uint64_t index) {
  if (index >= plan_.frames->count()) {
    throw Failure(ExitCode::Usage,
                  "there is no frame " + std::to_string(index) + " of " + std::to_string(plan_.frames->count()));
  }
  const PlannedFrame planned = plan_.frames->frame(index);
  if (const auto found = find(planned); found != kept_.end()) {
    kept_.splice(kept_.begin(), kept_, found);
    kept_.front().frame.planned = planned;
    return kept_.front();
  }
  makeRoom();
  Kept kept;
  kept.frame.planned = planned;
  kept.frame.pictures = inputs_.picturesAt(planned, &clips_);
  kept.frame.pictures.bitmaps = onOneCanvas(std::move(kept.frame.pictures.bitmaps), setup_.framing);
  kept.bytes = bytesOf(kept.frame.pictures);
  kept_.push_front(std::move(kept));
  return kept_.front();
}

// Before the next frame is read. A frame that is let go is not in memory beside it.
void PreviewFrames::makeRoom() {
  std::uint64_t bytes = 0;
  auto last = kept_.begin();
  while (last != kept_.end() && (bytes += last->bytes) <= mostBytes_) ++last;
  kept_.erase(last, kept_.end());
}

const PreviewFrames::Frame& PreviewFrames::at(std::uint64_t frame) {
  return keptAt(frame).frame;
}

PreviewInputs PreviewFrames::scaled(std::uint64_t frame, const PictureSize& size) {
  Kept& kept = keptAt(frame);
  const InputPictures& pictures = kept.frame.pictures;
  if (pictures.bitmaps.empty()) throw Failure(ExitCode::Usage, "a generator has no inputs that can be scaled");
  if (!kept.scaled || kept.scaledFor != size) {
    PreviewInputs inputs;
    inputs.fullSize = sizeOf(*pictures.bitmaps[0]);
    // Filters have their inputs in their own size, and their results scaled; others have all in one.
    const bool isResultScaled = kind_ == EffectKind::Filter && setup_.framing.size;
    inputs.fullResult = isResultScaled ? *setup_.framing.size : inputs.fullSize;
    inputs.resultSize = quickSize(inputs.fullResult, size);
    const PictureSize inputSize = quickSize(inputs.fullSize, size);
    for (const BitmapRef& bitmap : pictures.bitmaps) {
      inputs.bitmaps.push_back(scaledBitmap(bitmap, inputSize, kQuickScaling));
    }
    inputs.depth = pictures.depth;
    inputs.space = space();
    kept.scaled = std::move(inputs);
    kept.scaledFor = size;
  }
  PreviewInputs inputs = *kept.scaled;
  inputs.frame = frame;
  inputs.time = kept.frame.planned.time;
  return inputs;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Inputs.h"

#include "Host/Clips/ClipInfo.h"
#include "Host/Clips/ClipReader.h"
#include "Host/Files/FileFormat.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Alpha.h"
#include "TarnCore/TCBitmap.h"

#include <algorithm>
#include <utility>

namespace host {
Depth commonDepth(Depth a, Depth b) {
  const bool integerAndHalf = (a == Depth::Bits16 && b == Depth::Half) || (a == Depth::Half && b == Depth::Bits16);
  return integerAndHalf ? Depth::Float : std::max(a, b);
}

Inputs::Inputs(const std::vector<std::string>& paths, std::optional<Depth> depth, std::optional<Layout> layout,
               ColorWishes colors)
    : depth_(layout ? std::optional(layout->depth) : depth), layout_(layout), colors_(std::move(colors)) {
  if (std::ranges::count(paths, "-") > 1) throw Failure(ExitCode::Usage, "--input -: the standard input is given once");
  for (const std::string& path : paths) {
    Source source;
    source.path = path;
    source.pattern = framePattern(path);
    source.isClip = !source.pattern && path != "-" && isClip(path);
    sources_.push_back(std::move(source));
  }
}

Inputs::Kind Inputs::kind(std::size_t input) const {
  const Source& source = sources_[input];
  return source.pattern ? Kind::Sequence : source.isClip ? Kind::Clip : Kind::Still;
}

bool Inputs::areSequence() const {
  return std::ranges::any_of(sources_, [](const Source& source) { return source.pattern.has_value(); });
}

bool Inputs::haveClip() const {
  return std::ranges::any_of(sources_, &Source::isClip);
}

FrameRange Inputs::existingFramesOf(std::size_t input) const {
  const FramePattern& pattern = *sources_[input].pattern;
  const FrameRange range = existingFrames(pattern);
  checkFramesExist(pattern, range);
  return range;
}

FrameRange Inputs::checkedFrames(std::optional<FrameRange> wanted) const {
  std::optional<FrameRange> range = wanted;
  for (const Source& source : sources_) {
    if (!source.pattern || wanted) continue;
    const FrameRange existing = existingFrames(*source.pattern);
    range = range ? FrameRange{std::min(range->first, existing.first), std::max(range->last, existing.last)} : existing;
  }
  for (const Source& source : sources_) {
    if (source.pattern && range) checkFramesExist(*source.pattern, *range);
  }
  return range.value_or(FrameRange{});
}

void Inputs::begin(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos) {
  colors_.begin(paths, infos);
  if (!depth_) {
    for (const PictureInfo* info : infos) depth_ = depth_ ? commonDepth(*depth_, info->depth) : info->depth;
  }
  for (std::size_t i = 0; i < infos.size(); ++i) {
    areHeldWider_ = areHeldWider_ || (sources_[i].isClip && infos[i]->alpha == AlphaKind::Straight);
  }
  hasBegun_ = true;
}

std::vector<PictureInfo> Inputs::begin(const PlannedFrame& first, ClipFrames* clips) {
  std::vector<std::string> paths;
  std::vector<PictureInfo> infos;
  for (std::size_t i = 0; i < count(); ++i) {
    paths.push_back(fileAt(i, first));
    infos.push_back(kind(i) == Kind::Clip ? clips->info(i).picture : readPictureInfo(paths.back()));
  }
  std::vector<const PictureInfo*> known;
  known.reserve(infos.size());
  for (const PictureInfo& info : infos) known.push_back(&info);
  begin(paths, known);
  return infos;
}

std::string Inputs::fileAt(std::size_t input, const PlannedFrame& frame) const {
  const Source& source = sources_[input];
  return source.pattern ? source.pattern->path(frame.sources[input]) : source.path;
}

// What was there before is let go first.
FilePicture Inputs::readAt(std::size_t input, const PlannedFrame& frame, ClipFrames* clips) {
  Source& source = sources_[input];
  source.frame.reset();
  source.bitmap = nullptr;
  source.fileBitmap = nullptr;
  if (!source.isClip) return readPicture(fileAt(input, frame));
  if (!clips) throw Failure(ExitCode::Usage, source.path + " is a clip: this takes pictures and sequences");
  return clips->frame(input, frame.sources[input]);
}

// A frame that stays is taken again from its file where other samples are needed beside other inputs: narrowed or
// widened it would not be the same.
void Inputs::takeMoving(std::size_t input, FilePicture file, const PlannedFrame& frame, ClipFrames* clips) {
  Source& source = sources_[input];
  const SampleType working = workingSample(colors_.needsFloat());
  if (!file.bitmap && source.sample == working) return;
  if (!file.bitmap) file = readAt(input, frame, clips);
  source.bitmap = bitmapOf(input, std::move(file), fileAt(input, frame), working);
  source.sample = working;
}

InputPictures Inputs::picturesAt(std::uint32_t frame) {
  PlannedFrame planned;
  for (const Source& source : sources_) planned.sources.push_back(source.pattern ? frame : 0);
  return picturesAt(planned, nullptr);
}

InputPictures Inputs::picturesAt(const PlannedFrame& frame, ClipFrames* clips) {
  InputPictures pictures;
  std::vector<FilePicture> files(sources_.size());
  std::vector<const PictureInfo*> infos;
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    pictures.paths.push_back(fileAt(i, frame));
    if (sources_[i].frame != frame.sources[i]) files[i] = readAt(i, frame, clips);
    infos.push_back(files[i].info.get());
  }
  if (!hasBegun_) begin(pictures.paths, infos);
  colors_.meet(pictures.paths, infos);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    Source& source = sources_[i];
    if (files[i].info) source.info = files[i].info;
    if (source.isMoving()) {
      takeMoving(i, std::move(files[i]), frame, clips);
    } else if (!source.bitmap) {
      source.bitmap = bitmapOf(i, std::move(files[i]), pictures.paths[i], workingSample(colors_.alwaysNeedsFloat()));
    }
    source.frame = frame.sources[i];
    pictures.bitmaps.push_back(source.isMoving() ? source.bitmap : stillOf(source));
    pictures.fileBitmaps.push_back(source.fileBitmap);
    pictures.infos.push_back(source.info);
  }
  pictures.depth = depth_.value_or(Depth::Bits8);
  return pictures;
}

// A layout has its own.
SampleType Inputs::workingSample(bool needsFloat) const {
  return (needsFloat || areHeldWider_) && !layout_ ? SampleType::Float : sampleTypeOf(*depth_);
}

// Floats are needed as long as a frame is converted beside it.
BitmapRef Inputs::stillOf(Source& source) const {
  const bool isWiderNow = workingSample(colors_.needsFloat()) != workingSample(colors_.alwaysNeedsFloat());
  if (!isWiderNow) return source.bitmap;
  if (!source.stillAsFloat) source.stillAsFloat = inDepth(source.bitmap, SampleType::Float, source.path);
  return source.stillAsFloat;
}

BitmapRef Inputs::bitmapOf(std::size_t index, FilePicture file, const std::string& path, SampleType working) {
  MutableBitmapRef kept = keepsFileBitmaps_ ? file.bitmap : nullptr;
  if (MutableBitmapRef converted = colors_.toWorking(index, file, path)) {
    file.bitmap = std::move(converted);
  } else if (file.info->alpha == AlphaKind::Straight) {
    // Premultiplied in fewer bits than they are worked on in, colors would lose most of what they are under a small
    // alpha.
    if (bytesPerSample(working) > bytesPerSample(file.info->sample)) {
      file.bitmap = inDepth(file.bitmap, working, path);
    } else if (kept && !isOpaque(*kept)) {
      kept = std::make_shared<VortoBitmap>(*kept);
    }
    premultiply(*file.bitmap);
  }
  BitmapRef bitmap = std::move(file.bitmap);
  bitmap = layout_ ? throughLayout(bitmap, *layout_, path) : inDepth(bitmap, working, path);
  sources_[index].fileBitmap = kept == bitmap ? nullptr : kept;
  return bitmap;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Inputs.h"

#include "Host/Clips/ClipReader.h"
#include "Host/Files/FileFormat.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Alpha.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

// The depth that holds the values of both.
Depth commonDepth(Depth a, Depth b) {
  const bool integerAndHalf = (a == Depth::Bits16 && b == Depth::Half) || (a == Depth::Half && b == Depth::Bits16);
  return integerAndHalf ? Depth::Float : std::max(a, b);
}

}  // namespace

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

std::string Inputs::fileOf(const Source& source, std::uint32_t frame) const {
  return source.pattern ? source.pattern->path(frame) : source.path;
}

InputPictures Inputs::picturesAt(std::uint32_t frame) {
  PlannedFrame planned;
  for (const Source& source : sources_) planned.sources.push_back(source.pattern ? frame : 0);
  return picturesAt(planned, nullptr);
}

InputPictures Inputs::picturesAt(const PlannedFrame& frame, ClipFrames* clips) {
  InputPictures pictures;
  std::vector<FilePicture> files(sources_.size());
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    Source& source = sources_[i];
    const std::uint32_t wanted = frame.sources[i];
    pictures.paths.push_back(fileOf(source, wanted));
    if (source.frame == wanted) continue;
    source.frame.reset();
    source.bitmap = nullptr;
    if (source.isClip && !clips) {
      throw Failure(ExitCode::Usage, source.path + " is a clip: this takes pictures and sequences");
    }
    files[i] = source.isClip ? clips->frame(i, wanted) : readPicture(pictures.paths[i]);
  }
  std::vector<const PictureInfo*> infos;
  infos.reserve(files.size());
  for (const FilePicture& file : files) infos.push_back(file.info.get());
  colors_.meet(pictures.paths, infos);
  if (!depth_) decideDepth(files);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    Source& source = sources_[i];
    const bool isKept = source.frame == frame.sources[i];
    if (!isKept) source.info = files[i].info;
    source.bitmap = isKept ? keptOf(source) : bitmapOf(i, std::move(files[i]), pictures.paths[i]);
    source.frame = frame.sources[i];
    pictures.bitmaps.push_back(source.bitmap);
    pictures.infos.push_back(source.info);
  }
  pictures.depth = depth_.value_or(Depth::Bits8);
  return pictures;
}

// A layout has its own.
SampleType Inputs::workingSample() const {
  return colors_.needsFloat() && !layout_ ? SampleType::Float : sampleTypeOf(*depth_);
}

// Floats are needed as soon as a later frame is converted.
BitmapRef Inputs::keptOf(const Source& source) const {
  return layout_ ? source.bitmap : inDepth(source.bitmap, workingSample(), source.path);
}

BitmapRef Inputs::bitmapOf(std::size_t index, FilePicture file, const std::string& path) {
  const SampleType working = workingSample();
  if (MutableBitmapRef converted = colors_.toWorking(index, file, path)) {
    file.bitmap = std::move(converted);
  } else if (file.info->alpha == AlphaKind::Straight) {
    // Premultiplied in fewer bits than they are worked on in, colors would lose most of what they are under a small
    // alpha.
    if (bytesPerSample(working) > bytesPerSample(file.info->sample)) file.bitmap = inDepth(file.bitmap, working, path);
    premultiply(*file.bitmap);
  }
  const BitmapRef bitmap = std::move(file.bitmap);
  return layout_ ? throughLayout(bitmap, *layout_, path) : inDepth(bitmap, working, path);
}

void Inputs::decideDepth(const std::vector<FilePicture>& files) {
  for (const FilePicture& file : files) depth_ = depth_ ? commonDepth(*depth_, file.info->depth) : file.info->depth;
}

}  // namespace host

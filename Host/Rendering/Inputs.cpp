// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Inputs.h"

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
  for (const std::string& path : paths) sources_.push_back({path, framePattern(path), nullptr, nullptr});
}

bool Inputs::areSequence() const {
  for (const Source& source : sources_) {
    if (source.pattern) return true;
  }
  return false;
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

InputPictures Inputs::picturesAt(std::uint32_t frame) {
  InputPictures pictures;
  std::vector<FilePicture> files(sources_.size());
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    const Source& source = sources_[i];
    pictures.paths.push_back(source.pattern ? source.pattern->path(frame) : source.path);
    if (!source.still) files[i] = readPicture(pictures.paths[i]);
  }
  std::vector<const PictureInfo*> infos;
  infos.reserve(files.size());
  for (const FilePicture& file : files) infos.push_back(file.info.get());
  colors_.meet(pictures.paths, infos);
  if (!depth_) decideDepth(files);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    Source& source = sources_[i];
    auto info = source.still ? source.stillInfo : files[i].info;
    BitmapRef bitmap = source.still ? stillOf(source) : bitmapOf(i, std::move(files[i]), pictures.paths[i]);
    if (!source.pattern) {
      source.still = bitmap;
      source.stillInfo = info;
    }
    pictures.bitmaps.push_back(std::move(bitmap));
    pictures.infos.push_back(std::move(info));
  }
  pictures.depth = depth_.value_or(Depth::Bits8);
  return pictures;
}

// A layout has its own.
SampleType Inputs::workingSample() const {
  return colors_.needsFloat() && !layout_ ? SampleType::Float : sampleTypeOf(*depth_);
}

// Floats are needed as soon as a later frame is converted.
BitmapRef Inputs::stillOf(const Source& source) const {
  return layout_ ? source.still : inDepth(source.still, workingSample(), source.path);
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

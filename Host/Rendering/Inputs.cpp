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
  for (const std::string& path : paths) sources_.push_back({path, framePattern(path), nullptr, nullptr, nullptr});
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

void Inputs::begin(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos) {
  colors_.begin(paths, infos);
  if (!depth_) {
    for (const PictureInfo* info : infos) depth_ = depth_ ? commonDepth(*depth_, info->depth) : info->depth;
  }
  hasBegun_ = true;
}

InputPictures Inputs::picturesAt(std::uint32_t frame) {
  InputPictures pictures;
  std::vector<FilePicture> files(sources_.size());
  std::vector<const PictureInfo*> infos;
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    const Source& source = sources_[i];
    pictures.paths.push_back(source.pattern ? source.pattern->path(frame) : source.path);
    if (!source.still) files[i] = readPicture(pictures.paths[i]);
    infos.push_back(files[i].info.get());
  }
  if (!hasBegun_) begin(pictures.paths, infos);
  colors_.meet(pictures.paths, infos);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    Source& source = sources_[i];
    const std::string& path = pictures.paths[i];
    auto info = source.still ? source.stillInfo : files[i].info;
    if (!source.pattern && !source.still) {
      source.still = bitmapOf(i, std::move(files[i]), path, workingSample(colors_.alwaysNeedsFloat()));
      source.stillInfo = info;
    }
    pictures.bitmaps.push_back(
        source.pattern ? bitmapOf(i, std::move(files[i]), path, workingSample(colors_.needsFloat())) : stillOf(source));
    pictures.infos.push_back(std::move(info));
  }
  pictures.depth = depth_.value_or(Depth::Bits8);
  return pictures;
}

// A layout has its own.
SampleType Inputs::workingSample(bool needsFloat) const {
  return needsFloat && !layout_ ? SampleType::Float : sampleTypeOf(*depth_);
}

// Floats are needed as long as a frame is converted beside it.
BitmapRef Inputs::stillOf(Source& source) const {
  const bool isWiderNow = workingSample(colors_.needsFloat()) != workingSample(colors_.alwaysNeedsFloat());
  if (!isWiderNow) return source.still;
  if (!source.stillAsFloat) source.stillAsFloat = inDepth(source.still, SampleType::Float, source.path);
  return source.stillAsFloat;
}

BitmapRef Inputs::bitmapOf(std::size_t index, FilePicture file, const std::string& path, SampleType working) {
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

}  // namespace host

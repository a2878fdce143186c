// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Inputs.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Messages/Failure.h"

#include <utility>

namespace host {
namespace {

// The depth that holds the values of both.
Depth commonDepth(Depth a, Depth b) {
  const bool integerAndHalf = (a == Depth::Bits16 && b == Depth::Half) || (a == Depth::Half && b == Depth::Bits16);
  return integerAndHalf ? Depth::Float : std::max(a, b);
}

// Straight colors in the samples of a deeper depth: premultiplied in fewer bits they would lose most of what they are
// under a small alpha. The same where the depth is no deeper.
ImagePixels widened(ImagePixels image, SampleType sample, const std::string& path) {
  if (bytesPerSample(sample) <= bytesPerSample(image.sample)) return image;
  image.alpha = AlphaKind::Premultiplied;  // so that the colors go through as they are
  const BitmapRef wide = inDepth(makeBitmap(std::move(image), path), sample, path);
  ImagePixels pixels = pixelsOfBitmap(*wide, path);
  pixels.alpha = AlphaKind::Straight;
  return pixels;
}

}  // namespace

Inputs::Inputs(const std::vector<std::string>& paths, std::optional<Depth> depth, std::optional<Layout> layout)
    : depth_(layout ? std::optional(layout->depth) : depth), layout_(layout) {
  for (const std::string& path : paths) sources_.push_back({path, framePattern(path), nullptr});
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
  std::vector<ImagePixels> images(sources_.size());
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    const Source& source = sources_[i];
    pictures.paths.push_back(source.pattern ? source.pattern->path(frame) : source.path);
    if (!source.still) images[i] = readImageFile(pictures.paths[i]);
  }
  if (!depth_) decideDepth(images);
  for (std::size_t i = 0; i < sources_.size(); ++i) {
    Source& source = sources_[i];
    BitmapRef bitmap = source.still;
    if (!bitmap) bitmap = bitmapOf(std::move(images[i]), pictures.paths[i]);
    if (!source.pattern) source.still = bitmap;
    pictures.bitmaps.push_back(std::move(bitmap));
  }
  pictures.depth = depth_.value_or(Depth::Bits8);
  return pictures;
}

BitmapRef Inputs::bitmapOf(ImagePixels image, const std::string& path) const {
  if (image.alpha == AlphaKind::Straight) image = widened(std::move(image), sampleTypeOf(*depth_), path);
  const BitmapRef bitmap = makeBitmap(std::move(image), path);
  return layout_ ? throughLayout(bitmap, *layout_, path) : inDepth(bitmap, sampleTypeOf(*depth_), path);
}

void Inputs::decideDepth(const std::vector<ImagePixels>& images) {
  for (const ImagePixels& image : images) depth_ = depth_ ? commonDepth(*depth_, image.depth) : image.depth;
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadClip.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/OpenInput.h"
#include "Host/Clips/Program/ReadDescription.h"
#include "Host/Clips/Program/ReadOrientation.h"
#include "Host/Messages/Failure.h"

namespace host {
namespace {

std::string sizeText(int width, int height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

FrameDecoder openedDecoder(const std::string& path) {
  AvInput input = openInput(path);
  const AVCodec* decoder = nullptr;
  const int stream = av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
  if (stream == AVERROR_DECODER_NOT_FOUND) throw Failure(ExitCode::Input, "nothing decodes its codec");
  // The cover of a piece of music is no clip.
  if (stream < 0 || (input->streams[stream]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
    throw Failure(ExitCode::Input, "it holds no moving pictures");
  }
  return {path, std::move(input), stream};
}

}  // namespace

Clip::Clip(const std::string& path, const std::function<void()>& goesOn) : decoder_(openedDecoder(path)) {
  decoder_.begin(goesOn);
  const AVFrame& first = *decoder_.frame(0).frame;
  width_ = first.width;
  height_ = first.height;
  const PixelKind kind = pixelKindOf(first);
  target_ = {kind.sample, hasAlpha(kind.channels), orientationOf(decoder_.stream())};
  const std::uint64_t bytes = std::uint64_t{4} * bytesPerSample(kind.sample) * first.width * first.height;
  if (bytes >= std::uint64_t{1} << 32) {
    throw Failure(ExitCode::Input,
                  "its frames of " + sizeText(width_, height_) + " pixels are more than a bitmap can hold");
  }
  info_ = describedClip(decoder_, first);
}

bool Clip::read(std::size_t place, FrameSlots& slots, std::size_t slot) {
  const FrameDecoder::Decoded decoded = decoder_.frame(place);
  const AVFrame& frame = *decoded.frame;
  if (frame.width != width_ || frame.height != height_) {
    throw Failure(ExitCode::Input, "it has " + sizeText(frame.width, frame.height) + " pixels, the first one has " +
                                       sizeText(width_, height_));
  }
  const PictureInfo& picture = info_.picture;
  std::byte* pixels = slots.fill(slot, {picture.width, picture.height, picture.sample, Channels::RGBA, picture.alpha});
  pixels_.read(frame, target_, pixels);
  return decoded.isDamaged;
}

}  // namespace host

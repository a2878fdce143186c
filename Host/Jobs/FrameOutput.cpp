// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/FrameOutput.h"

#include "TarnCore/TCBitmap.h"

#include <cstring>

namespace host {
namespace {

std::uint64_t leaveInFile(const OutputPicture& picture, const FrameTask& task, PictureSink& sink) {
  const std::uint64_t before = sink.clippedPixels();
  sink.write(picture, task.frame.number);
  return sink.clippedPixels() - before;
}

std::uint64_t leaveBytes(const OutputPicture& picture, const FrameTask& task, PictureSink& sink, FrameSlots& slots,
                         StoredFrame* stored) {
  sink.tellOfLosses(picture);
  Bytes bytes;
  const auto append = [&](std::span<const std::uint8_t> piece) {
    bytes.insert(bytes.end(), piece.begin(), piece.end());
  };
  const std::uint64_t clipped = sink.encode(picture, append);
  slots.put(task.outputSlot, bytes);
  stored->stream = streamFrameOf(picture);
  return clipped;
}

std::uint64_t leaveRows(const OutputPicture& picture, const FrameTask& task, const JobOutput& output, FrameSlots& slots,
                        StoredFrame* stored) {
  if (task.isFirst && output.isVerbose) tellOfLosses("a clip", FileFormat::Clip, picture);
  const FrameKind kind = clipKindOf(picture, output.clipHoldsAlpha);
  OutputRows rows = rowsOf(picture, kind.sample, kind.channels, kind.alpha);
  std::byte* target = slots.fill(task.outputSlot, kind);
  for (std::uint32_t y = 0; y < kind.height; ++y, target += kind.rowBytes()) {
    std::memcpy(target, rows.row(y), kind.rowBytes());
  }
  stored->depth = picture.depth;
  stored->metadata = picture.metadata;
  return rows.clippedPixels();
}

}  // namespace

std::uint64_t leaveFrame(const OutputPicture& picture, const FrameTask& task, const JobOutput& output,
                         FrameSlots& slots, StoredFrame* stored) {
  if (output.isClip()) return leaveRows(picture, task, output, slots, stored);
  PictureSink& sink = *output.sink;
  if (!task.isFirst) sink.leaveLossesUntold();
  return sink.isPrinted() ? leaveBytes(picture, task, sink, slots, stored) : leaveInFile(picture, task, sink);
}

FrameKind clipKindOf(const OutputPicture& picture, bool holdsAlpha) {
  const bool hasAlphaToo = holdsAlpha && hasAlpha(picture.channels);
  FrameKind kind;
  kind.width = picture.bitmap->width;
  kind.height = picture.bitmap->height;
  kind.sample = picture.depth == Depth::Bits8 ? SampleType::UInt8 : SampleType::UInt16;
  kind.channels = hasAlphaToo ? Channels::RGBA : Channels::RGB;
  kind.alpha = hasAlphaToo ? AlphaKind::Straight : AlphaKind::None;
  return kind;
}

}  // namespace host

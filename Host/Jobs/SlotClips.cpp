// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/SlotClips.h"

#include "Host/Clips/TimeCodes.h"
#include "Host/Messages/Failure.h"
#include "TarnCore/TCBitmap.h"

#include <cstring>

namespace host {
namespace {

// The clip's time code is that of its first frame.
std::shared_ptr<const PictureInfo> infoOf(const std::shared_ptr<const ClipInfo>& clip, std::uint32_t frame) {
  const auto& code = clip->picture.metadata.timeCode;
  if (!code) return {clip, &clip->picture};
  auto info = std::make_shared<PictureInfo>(clip->picture);
  const double rate = static_cast<double>(clip->rate.numerator) / clip->rate.denominator;
  info->metadata.timeCode = advancedTimeCode(*code, rate, frame);
  return info;
}

}  // namespace

FilePicture pictureInSlot(const std::shared_ptr<const ClipInfo>& clip, const std::string& path, std::uint32_t frame,
                          FrameSlots& slots, std::size_t slot) {
  const PictureInfo& info = clip->picture;
  const FrameKind kind = slots.kind(slot);
  if (kind != FrameKind{info.width, info.height, info.sample, Channels::RGBA, info.alpha}) {
    throw Failure(ExitCode::Unexpected,
                  "cannot read " + path + ": frame " + std::to_string(frame) + " is of another kind than the clip");
  }
  FilePicture picture;
  picture.bitmap = newUnsetBitmap(kind.width, kind.height, formatCodeOf(kind.sample), path);
  std::memcpy(picture.bitmap->data, slots.pixels(slot), kind.bytes());
  picture.info = infoOf(clip, frame);
  return picture;
}

FilePicture SlotClips::frame(std::size_t input, std::uint32_t frame) {
  return pictureInSlot(infos_.at(input), paths_[input], frame, slots_, places_.at(input));
}

}  // namespace host

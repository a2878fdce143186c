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

FilePicture SlotClips::frame(std::size_t input, std::uint32_t frame) {
  const std::shared_ptr<const ClipInfo> clip = infos_.at(input);
  const PictureInfo& info = clip->picture;
  const std::size_t slot = places_.at(input);
  const FrameKind kind = slots_.kind(slot);
  if (kind != FrameKind{info.width, info.height, info.sample, Channels::RGBA, info.alpha}) {
    throw Failure(ExitCode::Unexpected, "cannot read " + paths_[input] + ": frame " + std::to_string(frame) +
                                            " is of another kind than the clip");
  }
  FilePicture picture;
  picture.bitmap = newUnsetBitmap(kind.width, kind.height, formatCodeOf(kind.sample), paths_[input]);
  std::memcpy(picture.bitmap->data, slots_.pixels(slot), kind.bytes());
  picture.info = infoOf(clip, frame);
  return picture;
}

}  // namespace host

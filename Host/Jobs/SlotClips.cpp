// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/SlotClips.h"

#include "Host/Messages/Failure.h"
#include "TarnCore/TCBitmap.h"

#include <cstring>
#include <limits>

namespace host {
namespace {

// Pixels of fewer samples get all four.
template <class Sample>
void widen(const std::byte* source, std::size_t pixels, Channels channels, std::uint8_t* target) {
  const std::size_t count = channelCount(channels);
  const bool isColored = !isGray(channels);
  for (std::size_t i = 0; i < pixels; ++i) {
    Sample from[4];
    std::memcpy(from, source + i * count * sizeof(Sample), count * sizeof(Sample));
    const Sample full = std::numeric_limits<Sample>::max();
    const Sample alpha = hasAlpha(channels) ? from[count - 1] : full;
    const Sample to[4] = {from[0], isColored ? from[1] : from[0], isColored ? from[2] : from[0], alpha};
    std::memcpy(target + i * sizeof to, to, sizeof to);
  }
}

}  // namespace

FilePicture SlotClips::frame(std::size_t input, std::uint32_t frame) {
  const std::shared_ptr<const ClipInfo> clip = infos_.at(input);
  const PictureInfo& info = clip->picture;
  const std::size_t slot = places_.at(input);
  const FrameKind kind = slots_.kind(slot);
  if (kind.width != info.width || kind.height != info.height || kind.sample != info.sample ||
      kind.sample == SampleType::Float) {
    throw Failure(ExitCode::Unexpected, "cannot read " + paths_[input] + ": frame " + std::to_string(frame) +
                                            " is of another kind than the clip");
  }
  FilePicture picture;
  picture.bitmap = newUnsetBitmap(kind.width, kind.height, formatCodeOf(kind.sample), paths_[input]);
  const std::byte* const pixels = slots_.pixels(slot);
  const std::size_t count = std::size_t{kind.width} * kind.height;
  if (kind.channels == Channels::RGBA) {
    std::memcpy(picture.bitmap->data, pixels, kind.bytes());
  } else if (kind.sample == SampleType::UInt8) {
    widen<std::uint8_t>(pixels, count, kind.channels, picture.bitmap->data);
  } else {
    widen<std::uint16_t>(pixels, count, kind.channels, picture.bitmap->data);
  }
  picture.info = {clip, &info};
  return picture;
}

}  // namespace host

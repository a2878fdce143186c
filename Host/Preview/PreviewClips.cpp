// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewClips.h"

#include "Host/Jobs/SlotClips.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"

#include <algorithm>

namespace host {
namespace {

constexpr std::size_t kSlots = 4;
constexpr std::chrono::seconds kPatience{60};

}  // namespace

PreviewClips::PreviewClips(const Inputs& inputs) : clips_(inputs.count()) {
  for (std::size_t i = 0; i < inputs.count(); ++i) {
    if (inputs.kind(i) != Inputs::Kind::Clip) continue;
    clips_[i] = std::make_unique<Clip>();
    clips_[i]->path = inputs.path(i);
    open(*clips_[i]);
  }
}

void PreviewClips::open(Clip& clip) {
  auto opened = std::make_unique<OpenClips>(1);
  opened->open(0, clip.path, kSlots, kPatience);
  if (!clip.info) clip.info = std::make_shared<const ClipInfo>(*opened->infos()[0]);
  clip.slots.assign(kSlots, {});
  clip.open = std::move(opened);
}

std::vector<const ClipInfo*> PreviewClips::infos() const {
  std::vector<const ClipInfo*> result;
  for (const auto& clip : clips_) result.push_back(clip ? clip->info.get() : nullptr);
  return result;
}

FilePicture PreviewClips::frame(std::size_t input, std::uint32_t frame) {
  Clip& clip = *clips_.at(input);
  if (!clip.open) open(clip);
  try {
    const std::size_t place = placeOf(clip, frame);
    if (clip.slots[place].isDamaged) {
      remark(clip.path + ": frame " + std::to_string(frame) +
                 " is damaged: what could be decoded of it is shown, or the frame before",
             clip.path + ": damaged frames");
    }
    FilePicture picture = pictureInSlot(clip.info, clip.path, frame, *clip.open->slots(0), place);
    if (frame == clip.last + 1) wantNext(clip, frame);
    clip.last = frame;
    return picture;
  } catch (const Failure&) {
    clip.open.reset();  // what it would say next is not known
    throw;
  }
}

// The next frame that was wanted, and where it lies.
std::size_t PreviewClips::take(Clip& clip) {
  const ClipReader::Frame frame = reader(clip).frame();
  clip.slots.at(frame.slot) = {Slot::Use::There, frame.frame, frame.isDamaged};
  return frame.slot;
}

std::size_t PreviewClips::placeOf(Clip& clip, std::uint32_t frame) {
  const auto isIt = [&](const Slot& slot) { return slot.use != Slot::Use::Free && slot.frame == frame; };
  auto found = std::ranges::find_if(clip.slots, isIt);
  if (found == clip.slots.end()) {
    const std::size_t place = freePlace(clip);
    clip.slots[place] = {Slot::Use::Awaited, frame, false};
    reader(clip).want(frame, place);
    found = clip.slots.begin() + static_cast<std::ptrdiff_t>(place);
  }
  while (found->use == Slot::Use::Awaited) take(clip);
  return static_cast<std::size_t>(found - clip.slots.begin());
}

std::size_t PreviewClips::freePlace(Clip& clip) {
  const auto found = std::ranges::find_if(clip.slots, [](const Slot& slot) { return slot.use != Slot::Use::Awaited; });
  if (found == clip.slots.end()) return take(clip);
  return static_cast<std::size_t>(found - clip.slots.begin());
}

// Where there is room: what is there already and lies ahead stays.
void PreviewClips::wantNext(Clip& clip, std::uint32_t frame) {
  const auto isAhead = [&](const Slot& slot) { return slot.use != Slot::Use::Free && slot.frame > frame; };
  for (std::uint32_t next = frame + 1; next < clip.info->times.size() && next < frame + kSlots; ++next) {
    const bool isWanted =
        std::ranges::any_of(clip.slots, [&](const Slot& slot) { return isAhead(slot) && slot.frame == next; });
    if (isWanted) continue;
    const auto free = std::ranges::find_if(clip.slots, [&](const Slot& slot) {
      return slot.use != Slot::Use::Awaited && !(isAhead(slot) && slot.frame < frame + kSlots);
    });
    if (free == clip.slots.end()) return;
    *free = {Slot::Use::Awaited, next, false};
    reader(clip).want(next, static_cast<std::size_t>(free - clip.slots.begin()));
  }
}

}  // namespace host

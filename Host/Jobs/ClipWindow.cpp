// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/ClipWindow.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"

#include <algorithm>
#include <string>

namespace host {

ClipWindow::ClipWindow(OpenClips& clips, const RenderPlan& plan, const FrameList& frames)
    : clips_(clips), plan_(plan), frames_(frames), inputs_(clips.inputs()) {
  std::uint32_t slots = 0;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    const FrameSlots* const own = clips.slots(i);
    if (!own) continue;
    inputs_[i].firstSlot = slots;
    inputs_[i].slots.resize(own->count());
    slots += static_cast<std::uint32_t>(own->count());
  }
}

void ClipWindow::wantAhead(std::uint64_t end) {
  while (next_ < end && !broken_ && want(next_)) ++next_;
}

std::optional<std::size_t> ClipWindow::placeFor(const Input& input, std::uint32_t frame) {
  std::optional<std::size_t> free;
  for (std::size_t i = 0; i < input.slots.size(); ++i) {
    const Slot& slot = input.slots[i];
    if (slot.frame == frame) return i;
    if (slot.users == 0 && (!free || !slot.frame)) free = i;
  }
  return free;
}

// All that the frame shows, or nothing: else two frames could wait for each other's slots.
bool ClipWindow::want(std::uint64_t frame) {
  const PlannedFrame planned = plan_.frame(frames_[frame]);
  std::vector<std::size_t> places(inputs_.size());
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    if (!inputs_[i].isClip()) continue;
    const auto place = placeFor(inputs_[i], planned.sources[i]);
    if (!place) return false;
    places[i] = *place;
  }
  held_[frame] = places;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    if (!inputs_[i].isClip()) continue;
    Slot& slot = inputs_[i].slots[places[i]];
    ++slot.users;
    if (slot.frame != planned.sources[i]) wantIn(i, places[i], planned.sources[i]);
  }
  return true;
}

void ClipWindow::wantIn(std::size_t input, std::size_t slot, std::uint32_t frame) {
  inputs_[input].slots[slot].frame = frame;
  inputs_[input].slots[slot].isThere = false;
  inputs_[input].awaited.push_back(slot);
  try {
    clips_.reader(input)->want(frame, slot);
  } catch (const Failure&) {
    take(input);  // says why, of the first that does not come
  }
}

void ClipWindow::take(std::size_t input) {
  Input& from = inputs_[input];
  try {
    const ClipReader::Frame frame = clips_.reader(input)->frame();
    const bool isExpected =
        !from.awaited.empty() && frame.slot == from.awaited.front() && from.slots[frame.slot].frame == frame.frame;
    if (!isExpected) {
      throw Failure(ExitCode::Unexpected, "cannot read " + clips_.reader(input)->path() + ": a frame came unwanted");
    }
    from.slots[frame.slot].isDamaged = frame.isDamaged;
    from.slots[frame.slot].isThere = true;
    from.awaited.pop_front();
  } catch (const Failure& failure) {
    breakAt(firstWaitingFor(input), {failure.code, failure.what()});
    from.awaited.clear();
  }
}

std::uint64_t ClipWindow::firstWaitingFor(std::size_t input) const {
  for (const auto& [frame, places] : held_) {
    if (!inputs_[input].slots[places[input]].isThere) return frame;
  }
  return next_;
}

void ClipWindow::breakAt(std::uint64_t frame, const FailureReport& failure) {
  if (!broken_ || frame < broken_->frame) broken_ = Broken{frame, failure};
}

bool ClipWindow::isReady(std::uint64_t frame) const {
  const auto found = held_.find(frame);
  if (found == held_.end()) return false;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    if (inputs_[i].isClip() && !inputs_[i].slots[found->second[i]].isThere) return false;
  }
  return true;
}

std::vector<std::uint32_t> ClipWindow::slotsOf(std::uint64_t frame) const {
  const std::vector<std::size_t>& places = held_.at(frame);
  std::vector<std::uint32_t> slots;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    slots.push_back(inputs_[i].firstSlot + static_cast<std::uint32_t>(places[i]));
  }
  return slots;
}

void ClipWindow::release(std::uint64_t frame) {
  const auto found = held_.find(frame);
  if (found == held_.end()) return;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    if (inputs_[i].isClip()) --inputs_[i].slots[found->second[i]].users;
  }
  held_.erase(found);
}

ClipWindow::Damage ClipWindow::damageIn(std::uint64_t frame) const {
  Damage damage(inputs_.size());
  const auto found = held_.find(frame);
  for (std::size_t i = 0; found != held_.end() && i < inputs_.size(); ++i) {
    if (!inputs_[i].isClip()) continue;
    const Slot& slot = inputs_[i].slots[found->second[i]];
    if (slot.isThere && slot.isDamaged) damage[i] = slot.frame;
  }
  return damage;
}

void ClipWindow::noteDamage(const Damage& damage) {
  for (std::size_t i = 0; i < damage.size(); ++i) {
    if (damage[i]) inputs_[i].damaged.insert(*damage[i]);
  }
}

void ClipWindow::tellOfDamage() const {
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    const Input& input = inputs_[i];
    if (input.damaged.empty()) continue;
    const bool isOne = input.damaged.size() == 1;
    remark(clips_.reader(i)->path() + ": " +
           (isOne ? "frame " : std::to_string(input.damaged.size()) + " frames from frame ") +
           std::to_string(*input.damaged.begin()) + (isOne ? " is damaged: " : " on are damaged: ") +
           "what could be decoded of " + (isOne ? "it" : "them") + " is shown, or the frame before");
  }
}

}  // namespace host

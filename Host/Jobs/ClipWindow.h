// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/OpenClips.h"
#include "Host/Jobs/Task.h"
#include "Host/Rendering/FrameList.h"
#include "Host/Rendering/RenderPlan.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace host {

// The frames of clips that the next frames of a run show: wanted ahead of need as far as there are slots, and decoded
// once where several show them. Frames of the run are counted in the order in which they are rendered.
class ClipWindow {
 public:
  // `frames`: which ones of the plan. All of them outlive it.
  ClipWindow(OpenClips& clips, const RenderPlan& plan, const FrameList& frames);

  // Wants what comes next, of frames below `end`.
  void wantAhead(std::uint64_t end);

  // Whether all that a frame shows has been decoded, and where it lies, by input: as the slots of all clips are counted
  // together. A frame stays where it is until all that show it have been released.
  bool isReady(std::uint64_t frame) const;
  std::vector<std::uint32_t> slotsOf(std::uint64_t frame) const;
  void release(std::uint64_t frame);

  // Waiting for it: readers that have something to say when their descriptor is readable, by input.
  bool isAwaited(std::size_t input) const { return !inputs_[input].awaited.empty(); }
  int descriptor(std::size_t input) { return clips_.reader(input)->descriptor(); }
  void take(std::size_t input);  // waits for the next of its frames

  // The first frame that cannot be rendered because one of a clip cannot be had.
  struct Broken {
    std::uint64_t frame = 0;
    FailureReport failure;
  };
  const std::optional<Broken>& broken() const { return broken_; }

  // The damaged frames of clips that a frame shows, by input, before it is released; and that it has been used. Says
  // which ones those that were used show.
  using Damage = std::vector<std::optional<std::uint32_t>>;
  Damage damageIn(std::uint64_t frame) const;
  void noteDamage(const Damage& damage);
  void tellOfDamage() const;

 private:
  struct Slot {
    std::optional<std::uint32_t> frame;  // of the clip
    bool isThere = false;
    bool isDamaged = false;
    unsigned users = 0;
  };
  struct Input {
    std::uint32_t firstSlot = 0;  // among those of all clips
    std::vector<Slot> slots;
    std::deque<std::size_t> awaited;  // slots, in the order in which they come
    std::set<std::uint32_t> damaged;  // of its frames that were used
    bool isClip() const { return !slots.empty(); }
  };
  // Where a frame is, or may come; nothing while all slots are in use.
  static std::optional<std::size_t> placeFor(const Input& input, std::uint32_t frame);
  bool want(std::uint64_t frame);
  void wantIn(std::size_t input, std::size_t slot, std::uint32_t frame);
  void breakAt(std::uint64_t frame, const FailureReport& failure);
  std::uint64_t firstWaitingFor(std::size_t input) const;

  OpenClips& clips_;
  const RenderPlan& plan_;
  const FrameList& frames_;
  std::vector<Input> inputs_;
  std::map<std::uint64_t, std::vector<std::size_t>> held_;  // frame: its slots by input
  std::uint64_t next_ = 0;                                  // to be wanted
  std::optional<Broken> broken_;
};

}  // namespace host

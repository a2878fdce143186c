// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCHash128.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// Frames from `first` to `last`, both counted.
struct FrameSpan {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  bool operator==(const FrameSpan&) const = default;
};

// Where the frames of a run come from: they are ordered here, and come back sometime through Player::deliver() or
// Player::deliverFailure(), from the thread of the player, also from within order(). Nothing here waits.
class FrameSource {
 public:
  virtual ~FrameSource() = default;

  // How many orders are worth having under way at once, so that nothing that renders is ever idle: 1 or more.
  virtual std::size_t mostOrders() const = 0;

  // What the present parameters are known by. Frames that are ordered from now on are rendered with these; the same
  // parameters have the same fingerprint again.
  virtual VortoHash128 fingerprint() const = 0;

  // A full picture of that frame of the plan. A frame that is under way with the same fingerprint is not begun again.
  virtual void order(std::uint64_t frame) = 0;

  // The frame that people look at, while nothing plays: wanted before all orders, and again whenever the parameters
  // change. `isThere`: the player has a picture of it with the present ones, and waits for none.
  virtual void goTo(std::uint64_t frame, bool isThere) {
    if (!isThere) order(frame);
  }

  // Orders that have not begun are forgotten. Those that have may come or not; if they come, then with the fingerprint
  // that they were ordered with.
  virtual void dropOrders() = 0;

  // Frames whose inputs need not be read or decoded again, ascending, as far as that is known.
  virtual std::vector<FrameSpan> decoded() const { return {}; }
};

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/Rendering/Effects.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host {

// The positions that the inspector's time slider has, from 0 to count() - 1: the frames of a sequence; for a transition
// between stills fine steps of its time; otherwise one.
class Timeline {
 public:
  Timeline() = default;
  static Timeline ofSequence(EffectKind kind, const FrameRange& frames, double rate);
  static Timeline ofTransition(double rate);  // runs in two seconds

  std::uint64_t count() const { return count_; }
  bool isSequence() const { return isSequence_; }
  std::uint32_t frameAt(std::uint64_t position) const;
  double timeAt(std::uint64_t position) const;
  std::string labelAt(std::uint64_t position) const;  // the frame's number, or the time
  // Playing goes round; at `rate` steps a second.
  std::uint64_t next(std::uint64_t position) const;
  double rate() const { return rate_; }

 private:
  EffectKind kind_ = EffectKind::Filter;
  FrameRange frames_;
  bool isSequence_ = false;
  std::uint64_t count_ = 1;
  std::uint64_t stride_ = 1;
  double rate_ = 25;
};

}  // namespace host

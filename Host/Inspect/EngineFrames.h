// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/PreviewEngine.h"
#include "Host/Playback/FrameSource.h"

namespace host {

// The frames of a player, from the processes that render for the window: its present frame, which they render before
// all others, and those ahead of it.
class EngineFrames : public FrameSource {
 public:
  explicit EngineFrames(PreviewEngine*& engine) : engine_(engine) {}  // the window's, null while it has none

  std::size_t mostOrders() const override { return engine_ ? engine_->mostAhead() : 1; }
  VortoHash128 fingerprint() const override { return engine_ ? engine_->fingerprint() : VortoHash128(); }
  void order(std::uint64_t frame) override;
  void dropOrders() override;

 private:
  PreviewEngine*& engine_;
};

}  // namespace host

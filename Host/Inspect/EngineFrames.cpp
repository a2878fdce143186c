// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EngineFrames.h"

namespace host {

void EngineFrames::order(std::uint64_t frame) {
  if (!engine_) return;
  const bool isUnderWay = frame == engine_->frame() && !engine_->isSettled();
  if (!isUnderWay) engine_->orderAhead(frame);
}

void EngineFrames::dropOrders() {
  if (engine_) engine_->dropAhead();
}

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Files/PictureSink.h"
#include "Host/Rendering/FrameRendering.h"

#include <chrono>
#include <optional>

namespace host {

// What a run writes: pictures, or a clip. The coordinator and its workers have the same.
struct JobOutput {
  PictureSink* sink = nullptr;        // for pictures; null for a clip
  ClipTarget clip;                    // without what its first frame says: kind, bits, metadata
  std::chrono::seconds patience{60};  // with the process that writes the clip
  bool keepsTimeCode = true;          // the clip's frames are those of the input that leads, one by one at their rate
  bool clipHoldsAlpha = false;
  bool isVerbose = false;

  bool isClip() const { return !sink; }
  // Whether frames come back to the coordinator, in slots.
  bool usesSlots() const { return isClip() || sink->isPrinted(); }
  OutputDescription description() const;
};

}  // namespace host

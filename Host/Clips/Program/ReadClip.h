// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipInfo.h"
#include "Host/Clips/Program/DecodeFrames.h"
#include "Host/Clips/Program/ReadPixels.h"
#include "Host/Processes/FrameSlots.h"

#include <functional>
#include <string>

namespace host {

// A clip that is open. Failures' messages are only the reasons.
class Clip {
 public:
  // Throws Failure when it is none that can be read. `goesOn` is called again and again while the file is looked
  // through.
  Clip(const std::string& path, const std::function<void()>& goesOn);

  const ClipInfo& info() const { return info_; }

  // Puts a frame into a slot; whether it is damaged. Throws Failure.
  bool read(std::size_t place, FrameSlots& slots, std::size_t slot);

 private:
  FrameDecoder decoder_;
  PixelReader pixels_;
  PixelTarget target_;
  int width_ = 0;  // of what is stored
  int height_ = 0;
  ClipInfo info_;
};

}  // namespace host

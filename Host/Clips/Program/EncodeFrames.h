// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/Clips/Program/EncodeColors.h"

#include <cstddef>

namespace host {

// Turns frames as they are in slots into frames as an encoder takes them.
class EncodeFrames {
 public:
  // The context's size is the kind's. Throws Failure.
  EncodeFrames(const FrameKind& kind, const AVCodecContext& context, const EncodeColors& colors);
  ~EncodeFrames();
  EncodeFrames(const EncodeFrames&) = delete;
  EncodeFrames& operator=(const EncodeFrames&) = delete;

  // Packed rows of the kind. They are not needed any more afterwards.
  AvFrame frame(const std::byte* pixels);

 private:
  AvFrame emptyFrame();

  FrameKind kind_;
  AVPixelFormat from_;
  AVPixelFormat to_;
  EncodeColors colors_;
  AVBufferPool* pool_ = nullptr;
  AvScaler scaler_;
};

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipFormats.h"
#include "Host/Clips/Program/AvObjects.h"
#include "Host/Clips/Program/EncodeColors.h"
#include "Host/Clips/Program/YuvRows.h"

#include <cstddef>
#include <optional>

namespace host {

// Turns frames as they are in slots into frames as an encoder takes them. RGB stays exactly what it is; YUV is computed
// here, as the library's own conversion darkens what has more than 8 bits.
class EncodeFrames {
 public:
  // The context's size is the kind's.
  EncodeFrames(const FrameKind& kind, const AVCodecContext& context, const EncodeColors& colors);
  ~EncodeFrames();
  EncodeFrames(const EncodeFrames&) = delete;
  EncodeFrames& operator=(const EncodeFrames&) = delete;

  // Of packed rows of the kind. They are not needed any more afterwards. Throws Failure.
  AvFrame frame(const std::byte* pixels);

 private:
  AvFrame emptyFrame();
  void packRow(const std::byte* from, std::uint8_t* to) const;
  void convert(const std::byte* pixels, AVFrame& frame);

  FrameKind kind_;
  AVPixelFormat format_;
  EncodeColors colors_;
  AVBufferPool* pool_ = nullptr;
  std::optional<YuvRows> yuv_;
  int rowsOfChroma_ = 1;  // of luma, that one of chroma belongs to
};

}  // namespace host

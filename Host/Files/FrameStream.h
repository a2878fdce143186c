// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/PictureWriting.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host {

// Frames one after another on the standard output, for other programs to read.
//   Raw   rows from the top without padding, of the picture's channels: 8 bits, 16 bits or floats in the machine's
//         order
//   Y4M   YUV4MPEG2 4:4:4 of 8 bits, or of 16 for deeper pictures: Y'CbCr after BT.709 in video range, over black;
//         the frames have one size
enum class FrameStreamKind { Raw, Y4M };
std::optional<FrameStreamKind> frameStreamNamed(const std::string& name);  // "raw", "y4m"

// What the frames of a y4m stream have in common.
struct StreamFrame {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool isDeep = false;  // 16 bits
  bool operator==(const StreamFrame&) const = default;
};

class FrameStream {
 public:
  FrameStream(FrameStreamKind kind, double rate);  // throws Failure for a rate that a y4m header cannot hold

  // The bytes of a frame, piece by piece. Returns of how many pixels integers could not hold the colors.
  std::uint64_t encode(const OutputPicture& picture, const BytesTaker& take) const;

  // What comes before the bytes of the next frame: a header before the first. Throws Failure when frames differ.
  std::string start(const StreamFrame& frame);

 private:
  std::uint64_t encodeRaw(const OutputPicture& picture, const BytesTaker& take) const;

  FrameStreamKind kind_;
  std::string rate_;  // "25:1"
  std::optional<StreamFrame> first_;
};

StreamFrame streamFrameOf(const OutputPicture& picture);

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/PictureWriting.h"

#include <optional>
#include <string>

namespace host {

// Frames one after another on the standard output, for other programs to read.
//   Raw   rows from the top without padding, of the picture's channels: 8 bits, 16 bits or floats in the machine's
//   order Y4M   YUV4MPEG2 4:4:4 of 8 bits, or of 16 for deeper pictures: Y'CbCr after BT.709 in video range, over
//   black; the
//         frames have one size
enum class FrameStreamKind { Raw, Y4M };
std::optional<FrameStreamKind> frameStreamNamed(const std::string& name);  // "raw", "y4m"

class FrameStream {
 public:
  FrameStream(FrameStreamKind kind, double rate);  // throws Failure for a rate that a y4m header cannot hold
  // Returns of how many pixels integers could not hold the colors. Throws Failure when frames differ in size.
  std::uint64_t write(const OutputPicture& picture);

 private:
  std::uint64_t writeRaw(const OutputPicture& picture) const;
  std::uint64_t writeY4M(const OutputPicture& picture);

  FrameStreamKind kind_;
  std::string rate_;  // "25:1"
  std::uint32_t width_ = 0;
  std::uint32_t height_ = 0;
};

}  // namespace host

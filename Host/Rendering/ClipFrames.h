// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/PictureReading.h"

#include <cstddef>
#include <cstdint>

namespace host {

struct ClipInfo;

// Where the frames of those inputs come from that are clips.
class ClipFrames {
 public:
  virtual ~ClipFrames() = default;
  virtual const ClipInfo& info(std::size_t input) = 0;
  // A frame by its place in the clip: a bitmap of the caller's own, with straight alpha or none, as from a file.
  virtual FilePicture frame(std::size_t input, std::uint32_t frame) = 0;
};

}  // namespace host

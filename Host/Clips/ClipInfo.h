// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Processes/Message.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// What is known of a clip before a frame of it is decoded.
struct ClipInfo {
  // Of every frame as readers get it: upright, RGB converted from what the codec holds by the clip's matrix and range;
  // 8 bits, or 16 of clips with more. `depth`, `alpha` (straight or none) and `channels` are the clip's; so is what
  // `metadata` says: its color as code points with matrix 0 and full range (Rec. 709 where the clip says nothing),
  // pixel aspect, frame rate, time code.
  PictureInfo picture;

  Rational rate;      // frames per second that the clip is meant to have; its average where frames come unevenly
  Rational timeBase;  // seconds in a unit of the following
  std::vector<std::int64_t> times;  // of each frame, ascending, no two equal; not empty; the first need not be 0
  std::int64_t end = 0;             // of the last frame
  // Seconds from where the file says that its video begins to times[0]: other than 0 where frames cannot be decoded.
  double delay = 0;
  bool isUneven = false;  // frames do not come at one rate

  bool hasAudio = false;
  std::string codec;     // as people know it: "H.264", "ProRes 4444"
  std::string sampling;  // what it stores: "yuv420p10le"
  std::string remark;    // that the file is cut short and such; empty when all is well

  double seconds(std::size_t frame) const;  // of a frame since the first
  double duration() const;                  // in seconds
};

void put(MessageWriter& message, const ClipInfo& info);
ClipInfo takeClipInfo(MessageReader& message);  // throws Failure for what cannot be

}  // namespace host

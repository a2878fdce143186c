// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/PictureTypes.h"

#include <optional>
#include <span>
#include <string>

namespace host {

// A codec that clips are written with.
struct ClipCodec {
  const char* name;       // of --codec: "h264", "hevc", "vp9", "av1", "prores", "dnxhr", "ffv1", "png"
  const char* title;      // "H.264"
  bool holdsAlpha;        // with --channels rgba, or inputs with alpha
  int deepestBits;        // 8, 10, 12 or 16
  bool isLossless;        // RGB is stored as it is
  const char* samplings;  // of --sampling: "420 422 444 rgb", the usual one first
};

// A kind of file that holds clips.
struct ClipContainer {
  const char* name;        // "MP4"
  const char* extensions;  // in small letters, separated by spaces
  const char* codecs;      // names that it holds, the usual one first
};

// Nothing where the extension, in any case, is none of a clip.
const ClipContainer* clipContainerOf(const std::string& path);

// The codec of that name in a container, its usual one for an empty name. Throws Failure for one that nobody knows, and
// for one that the container cannot hold, with those that it can.
const ClipCodec& clipCodecIn(const ClipContainer& container, const std::string& name);

}  // namespace host

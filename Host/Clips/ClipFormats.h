// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Processes/FrameSlots.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

// How a clip is written, as the user says it.
struct ClipSettings {
  std::string codec;     // as ClipCodec names it; empty: the container's usual
  std::string speed;     // of encoders that know presets: as ClipCodec::speeds; empty: the usual
  std::string sampling;  // "420", "422", "444", "rgb"; empty: the codec's usual
  int quality = -1;      // 1 to 100 of codecs that lose; -1: the usual
};

// How a codec can store frames in one sampling.
struct ClipLayout {
  const char* sampling;          // "420"
  std::vector<int> bits;         // a sample, ascending
  std::vector<int> alphaBits;    // of `bits`, those that hold alpha too, which is straight
  std::uint32_t widthStep = 1;   // widths are multiples of it
  std::uint32_t heightStep = 1;  // and heights
};

// clang-format off
// What a quality means to an encoder: from the value for 1 to that for 100 in equal steps.
//
//   codec   what                              usual  100   75   50   25    1
//   h264    constant rate factor (0-51)          18    8   18   28   39   48
//   hevc    constant rate factor (0-51)          20   10   20   30   41   50
//   vp9     constant quality (0-63)              24   12   24   36   48   60
//   av1     constant rate factor (0-63)          30   19   30   41   52   63
//   prores  422: Proxy to 25, LT to 50, Standard to 75, above and usually HQ
//           444: 4444 to 90 and usually, above 4444 XQ
//   dnxhr   8 bits: LB to 33, SQ to 66, above and usually HQ
//           10 bits: HQX; 444: one quality
//   ffv1    loses nothing, and has none
//   png     loses nothing, and has none
// clang-format on
struct ClipQuality {
  int usual = -1;
  double worst = 0;  // for 1
  double best = 0;   // for 100
};

// A codec that clips are written with.
struct ClipCodec {
  const char* name;       // of --codec: "h264"
  const char* title;      // "H.264"
  bool holdsAlpha;        // in some sampling and container
  int deepestBits;        // 8, 10, 12 or 16
  bool isLossless;        // RGB is stored as it is
  const char* samplings;  // of --sampling: "420 422 444", the usual one first
  const char* speeds;     // of --speed, the slowest last; empty: the encoder knows none
  const char* usualSpeed;
  ClipQuality quality;              // where it is one number
  bool takesQuality;                // ClipSettings::quality has a meaning
  std::uint32_t smallestWidth = 1;  // of a frame
  std::uint32_t smallestHeight = 1;
  std::vector<ClipLayout> layouts;  // one for each sampling
};

// A kind of file that holds clips.
struct ClipContainer {
  const char* name;        // "MP4"
  const char* extensions;  // in small letters, separated by spaces
  const char* codecs;      // names that it holds, the usual one first
  bool holdsUneven;        // frames may come at uneven times
  bool holdsVp9Alpha;      // beside the packets
};

// Nothing where the extension, in any case, is none of a clip.
const ClipContainer* clipContainerOf(const std::string& path);
const ClipContainer* clipContainerNamed(std::string extension);  // without a dot

// The codec of that name in a container, its usual one for an empty name. Throws Failure for one that nobody knows, and
// for one that the container cannot hold, with those that it can.
const ClipCodec& clipCodecIn(const ClipContainer& container, const std::string& name);

// Throws Failure (usage) for a speed, sampling or quality that the codec does not know, saying which it does.
void checkClipSettings(const ClipCodec& codec, const ClipSettings& settings);

// Whether clips of these settings hold alpha.
bool holdsAlpha(const ClipContainer& container, const ClipSettings& settings);

// What is stored of frames.
struct ClipStorage {
  std::string sampling;
  int bits = 8;
  bool hasAlpha = false;
};

// Of frames of a kind of which so many bits are worth keeping. Frames with alpha get a sampling that holds it, unless
// the settings say another. RGB without loss keeps all bits of the frames; codecs that lose take 10 for 16, as players
// do. Throws Failure for settings that the codec does not know, and for sizes and alpha that it cannot hold with them,
// saying what would do.
ClipStorage clipStorage(const ClipContainer& container, const ClipSettings& settings, const FrameKind& kind, int bits);

}  // namespace host

// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipInfo.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Preview/PreviewPicture.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/Inputs.h"
#include "TarnCore/TCHistogram.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace host {

// What a process that renders previews reports.

struct PreviewInput {
  std::string path;
  Inputs::Kind kind = Inputs::Kind::Still;
  PictureInfo info;                      // of the plan's first frame, without Exif and the like
  std::shared_ptr<const ClipInfo> clip;  // null unless it is one
};

// What is known once the inputs are opened, before a frame is decoded.
struct PreviewOpened {
  // What the frames are: one picture, fine steps of a transition between stills from 0 to 1, or frames of sequences
  // and clips.
  enum class Timing { Still, Steps, Frames };

  EffectKind kind = EffectKind::Filter;
  bool keepsState = false;  // frames should be rendered one after another, by one process
  Timing timing = Timing::Still;
  std::uint64_t count = 1;           // of frames; they are named by 0 to count - 1
  std::uint64_t start = 0;           // the one to begin with
  std::uint32_t firstNumber = 0;     // as people count: that of the first file; 0 where a clip leads
  Rational rate{25, 1};              // frames per second
  Rational timeBase{1, 25};          // seconds in a unit of the next two
  std::int64_t end = 1;              // when the last frame is over
  std::optional<TimeCode> timeCode;  // of the first frame, where the first moving input states one
  std::vector<std::int64_t> shown;   // when each frame begins, where they come unevenly; else empty
  std::vector<PreviewInput> inputs;
  std::optional<Depth> depth;  // of what is made of the inputs; nothing of generators
  ColorSpace space;            // that the effect works in
};

struct PreviewRefused {  // instead: it ends
  ExitCode code = ExitCode::Unexpected;
  std::string text;
};

enum class PreviewPhase { Starting, Reading, Rendering };

struct PreviewProgress {
  std::uint64_t id = 0;
  PreviewPhase phase = PreviewPhase::Starting;
};

// The inputs of a frame as the effect takes them, on one canvas, scaled by one factor for all so that the result fits
// the size that was wanted.
struct PreviewInputs {
  std::uint64_t id = 0;
  std::uint64_t frame = 0;
  double time = 0;  // for the effect
  std::vector<BitmapRef> bitmaps;
  Depth depth = Depth::Bits8;
  PictureSize fullSize;    // of the first, unscaled
  PictureSize resultSize;  // that results of these bitmaps have
  PictureSize fullResult;  // that full results have, as far as it is known without rendering
  ColorSpace space;
};

struct PreviewRendered {
  std::uint64_t id = 0;
  PreviewPicture picture;
  bool isAhead = false;
  double reading = 0;    // milliseconds that it took to have the inputs
  double rendering = 0;  // and the result
};

struct PreviewCounts {
  std::uint64_t id = 0;
  std::uint64_t frame = 0;
  TCHistogram input;  // of the first; zeros of generators
  TCHistogram result;
};

struct PreviewFailed {
  std::uint64_t id = 0;
  PreviewPhase phase = PreviewPhase::Rendering;
  ExitCode code = ExitCode::Unexpected;
  std::string text;
};

struct PreviewDropped {  // an order ahead, before it was begun
  std::uint64_t id = 0;
};

struct PreviewDied {  // the last report of all
  std::string cause;  // "signal 11 (Segmentation fault)"
};

using PreviewReport = std::variant<PreviewOpened, PreviewRefused, PreviewProgress, PreviewInputs, PreviewRendered,
                                   PreviewCounts, PreviewFailed, PreviewDropped, Remark, PreviewDied>;

}  // namespace host

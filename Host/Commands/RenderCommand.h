// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Commands/OptionValues.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// How time goes in a run, as the command line says it; empty where it does not.
struct TimingOptions {
  std::string frames;          // "A-B", or "A-BxC" for chunks of C frames
  unsigned chunk = 0;          // which chunk to render, from 1 on; 0: all
  std::optional<double> rate;  // frames per second of sequences
  std::string fps;             // of the result
  bool isRetimed = false;
  std::string start;      // seconds, or M:S, H:M:S
  std::string duration;   // the same
  std::string whenShort;  // "hold", "loop", "end"
};

// How clips are written, as the command line says it.
struct ClipOptions {
  std::string codec;
  std::string speed;
  std::string sampling;
  std::string audio;       // a file whose audio is taken instead of the first clip's
  std::string audioStart;  // seconds, or M:S, H:M:S, of that file
  bool isSilent = false;   // without audio
  double patience = 60;    // seconds that a frame may take to be decoded or encoded
};

struct RenderOptions {
  std::string effect;
  std::vector<std::string> inputs;
  std::string output;
  std::vector<std::string> values;  // "port=value"
  std::vector<std::string> states;  // "port=FILE"
  std::vector<std::string> python;  // files that bring effects
  FramingOptions framing;
  std::optional<double> time;
  std::string depth;     // "8", "16", "half", "float", or empty for that of the inputs
  std::string layout;    // the name of a pixel format (Layouts.h), or empty
  std::string alpha;     // "keep", "opaque", "gray", or empty for keep
  std::string channels;  // "auto", "gray", "gray+alpha", "rgb", "rgba"; auto when empty
  EncodingOptions encoding;
  ColorOptions colors;
  TimingOptions timing;
  ClipOptions clip;
  unsigned jobs = 0;  // processes that render; 0: one for each core where there are many frames
  bool isResumed = false;
  bool isVerbose = false;
  bool tellsProgress = false;            // in lines, to a program that runs this one
  bool isWorker = false;                 // of another that runs with the same options
  std::vector<std::string> commandLine;  // as the program was started, without its name
};

// What is written: one picture, pictures with the frame's number in their name, pictures one after another on the
// standard output, or a clip.
enum class OutputKind { Picture, Sequence, Stream, Clip };

// What is known of a run before anything is rendered.
struct RenderOutlook {
  OutputKind output = OutputKind::Picture;
  bool keepsState = false;  // the effect
  bool readsStandardInput = false;
  bool hasClip = false;  // among the inputs
  std::uint64_t frames = 1;
  std::uint32_t firstNumber = 0;  // of the output's names; the others follow it
  Rational rate;                  // frames per second
  bool isEven = true;             // frames come at that rate
  std::optional<ClipAudio> audio;
  std::vector<std::string> states;        // "port=FILE", with the files of the presets that were named
  std::optional<ColorSpace> outputSpace;  // where the inputs decide it
};

// Looks through a command line as runRender() does, and throws what that would.
RenderOutlook renderOutlook(const RenderOptions& options);

// Renders a picture, one for every frame of a sequence, or a clip, and writes it. What can be checked is checked before
// the first frame is rendered.
void runRender(const RenderOptions& options);

}  // namespace host
